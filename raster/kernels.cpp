// Compiled once for each kind of vector, and once with none (HWY_SCALAR), which the others follow.
#include "raster/kernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "raster/kernels.cpp"
#include <algorithm>
#include <cstring>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace halvenor::raster::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class D, class V>
V Times(D /*d*/, V a, V b) {
#if HWY_TARGET == HWY_SCALAR
  return V(static_cast<std::int16_t>((a.raw * b.raw + 16384) >> 15));
#else
  return hn::MulFixedPoint15(a, b);
#endif
}

template <class D>
auto Broadcast(D d, int value) {
  return hn::Set(d, static_cast<std::int16_t>(value));
}

/// Calls `step(tag, i)` for blocks of `n` components and for single ones after them.
template <class Step>
void ForEach(int n, const Step& step) {
  const hn::ScalableTag<std::int16_t> d;
  const hn::CappedTag<std::int16_t, 1> single;
  const int width = static_cast<int>(hn::Lanes(d));
  int i = 0;
  for (; i + width <= n; i += width)
    step(d, i);
  for (; i < n; ++i)
    step(single, i);
}

#if HWY_TARGET != HWY_SCALAR
/// Rows[plane] of 8 pixels from `begin` on.
inline void ResampleBlock(const Resampling& resampling, const Component* const* rows,
                          Component* const* outs, int planes, int begin) {
  const auto block = static_cast<std::size_t>(begin / 8);
  const hn::FixedTag<std::int16_t, 8> d;
  const hn::FixedTag<std::uint8_t, 16> bytes;
  const auto shuffle = hn::LoadU(bytes, &resampling.blockShuffle[16 * block]);
  const auto weight = hn::LoadU(d, resampling.weight.data() + begin);
  for (int plane = 0; plane < planes; ++plane) {
    const Component* const texels = rows[plane] + resampling.blockStart[block];
    const auto a =
        hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(bytes, hn::LoadU(d, texels)), shuffle));
    const auto b =
        hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(bytes, hn::LoadU(d, texels + 1)), shuffle));
    hn::StoreU(hn::Add(a, Times(d, hn::Sub(b, a), weight)), d, outs[plane] + begin);
  }
}
#endif

#if HWY_TARGET == HWY_AVX2
/// The same for 16 pixels.
inline void ResampleTwoBlocks(const Resampling& resampling, const Component* const* rows,
                              Component* const* outs, int planes, int begin) {
  const auto block = static_cast<std::size_t>(begin / 8);
  const hn::FixedTag<std::int16_t, 16> d;
  const hn::Half<decltype(d)> half;
  const hn::FixedTag<std::uint8_t, 32> bytes;
  const auto shuffle = hn::LoadU(bytes, &resampling.blockShuffle[16 * block]);
  const auto weight = hn::LoadU(d, resampling.weight.data() + begin);
  const int first = resampling.blockStart[block];
  const int second = resampling.blockStart[block + 1];
  for (int plane = 0; plane < planes; ++plane) {
    const auto load = [=](int shift) {
      const Component* const row = rows[plane] + shift;
      const auto texels =
          hn::Combine(d, hn::LoadU(half, row + second), hn::LoadU(half, row + first));
      return hn::BitCast(d, hn::TableLookupBytes(hn::BitCast(bytes, texels), shuffle));
    };
    const auto a = load(0);
    hn::StoreU(hn::Add(a, Times(d, hn::Sub(load(1), a), weight)), d, outs[plane] + begin);
  }
}
#endif

#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
/// The same for 32 pixels; false where their texels lie too far from each other.
inline bool ResampleLongBlock(const Resampling& resampling, const Component* const* rows,
                              Component* const* outs, int planes, int begin) {
  const auto block = static_cast<std::size_t>(begin / Resampling::kLongBlock);
  const hn::FixedTag<std::int16_t, Resampling::kLongBlock> d;
  const int reach = resampling.longReach[block];
  if (reach == 0 || reach > 63) return false;
  const auto index = hn::LoadU(d, resampling.longIndex.data() + begin);
  const auto weight = hn::LoadU(d, resampling.weight.data() + begin);
  const auto put = [&](int plane, auto a, auto b) {
    hn::StoreU(hn::Add(a, Times(d, hn::Sub(b, a), weight)), d, outs[plane] + begin);
  };
  using Texels = hn::VFromD<decltype(d)>;
  for (int plane = 0; plane < planes; ++plane) {
    const Component* const texels = rows[plane] + resampling.longStart[block];
    if (reach <= Resampling::kLongBlock) {
      const Texels a{_mm512_permutexvar_epi16(index.raw, hn::LoadU(d, texels).raw)};
      const Texels b{_mm512_permutexvar_epi16(index.raw, hn::LoadU(d, texels + 1).raw)};
      put(plane, a, b);
    } else {
      const auto low = hn::LoadU(d, texels);
      const auto high = hn::LoadU(d, texels + Resampling::kLongBlock);
      const auto next = hn::Add(index, hn::Set(d, std::int16_t{1}));
      const Texels a{_mm512_permutex2var_epi16(low.raw, index.raw, high.raw)};
      const Texels b{_mm512_permutex2var_epi16(low.raw, next.raw, high.raw)};
      put(plane, a, b);
    }
  }
  return true;
}
#endif

void Resample(const Resampling& resampling, const Component* const* rows, Component* const* outs,
              int planes, int n) {
  int begin = 0;
  while (begin < n) {
#if HWY_ARCH_X86 && HWY_TARGET <= HWY_AVX3
    if (begin % Resampling::kLongBlock == 0 &&
        ResampleLongBlock(resampling, rows, outs, planes, begin)) {
      begin += Resampling::kLongBlock;
      continue;
    }
#endif
#if HWY_TARGET != HWY_SCALAR
    const auto block = static_cast<std::size_t>(begin / 8);
#if HWY_TARGET == HWY_AVX2
    if (begin + 8 < n && resampling.blockIsNarrow[block] != 0 &&
        resampling.blockIsNarrow[block + 1] != 0) {
      ResampleTwoBlocks(resampling, rows, outs, planes, begin);
      begin += 16;
      continue;
    }
#endif
    if (resampling.blockIsNarrow[block] != 0) {
      ResampleBlock(resampling, rows, outs, planes, begin);
      begin += 8;
      continue;
    }
#endif
    const int end = std::min(begin + 8, n);
    for (int plane = 0; plane < planes; ++plane) {
      const Component* const row = rows[plane];
      for (int i = begin; i < end; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const int a = row[resampling.first[at]];
        const int way = (row[resampling.second[at]] - a) * resampling.weight[at];
        outs[plane][i] = static_cast<Component>(a + ((way + 16384) >> 15));
      }
    }
    begin = end;
  }
}

void Mix(const Component* a, const Component* b, int weight, Component* out, int n) {
  ForEach(n, [=](auto d, int i) {
    const auto from = hn::LoadU(d, a + i);
    const auto way = Times(d, hn::Sub(hn::LoadU(d, b + i), from), Broadcast(d, weight));
    hn::StoreU(hn::Add(from, way), d, out + i);
  });
}

void Put(const Component* a, const Component* b, int factorA, int factorB, int loss, bool adds,
         Component* target, int n) {
  const auto sum = [=](auto d, int i) {
    const auto all = hn::SaturatedAdd(Times(d, hn::LoadU(d, a + i), Broadcast(d, factorA)),
                                      Times(d, hn::LoadU(d, b + i), Broadcast(d, factorB)));
    return hn::Max(hn::Sub(all, Broadcast(d, loss)), hn::Zero(d));
  };
  if (adds) {
    ForEach(n, [=](auto d, int i) {
      hn::StoreU(hn::SaturatedAdd(hn::LoadU(d, target + i), sum(d, i)), d, target + i);
    });
  } else {
    ForEach(n, [=](auto d, int i) { hn::StoreU(sum(d, i), d, target + i); });
  }
}

void Fade(int keep, int add, Component* target, int n) {
  ForEach(n, [=](auto d, int i) {
    const auto kept = Times(d, hn::LoadU(d, target + i), Broadcast(d, keep));
    hn::StoreU(hn::SaturatedAdd(kept, Broadcast(d, add)), d, target + i);
  });
}

void Accumulate(const Component* a, int factor, Component* target, int n) {
  ForEach(n, [=](auto d, int i) {
    const auto part = Times(d, hn::LoadU(d, a + i), Broadcast(d, factor));
    hn::StoreU(hn::SaturatedAdd(hn::LoadU(d, target + i), part), d, target + i);
  });
}

void Screen(const Component* a, Component* target, int n) {
  ForEach(n, [=](auto d, int i) {
    const auto source = hn::LoadU(d, a + i);
    const auto before = hn::LoadU(d, target + i);
    const auto kept = hn::Sub(before, Times(d, before, source));
    hn::StoreU(hn::SaturatedAdd(kept, source), d, target + i);
  });
}

void Filter(const Component* const* rows, std::ptrdiff_t offset, const int* factors, int count,
            Component* target, int n) {
  const hn::ScalableTag<std::int16_t> d;
  const int width = static_cast<int>(hn::Lanes(d));
  int begin = 0;
  // Several vectors share each factor.
  for (; begin + 4 * width <= n; begin += 4 * width) {
    auto sum0 = hn::Zero(d);
    auto sum1 = sum0;
    auto sum2 = sum0;
    auto sum3 = sum0;
    for (int k = 0; k < count; ++k) {
      const Component* const row = rows[k] + offset + begin;
      const auto factor = Broadcast(d, factors[k]);
      sum0 = hn::SaturatedAdd(sum0, Times(d, hn::LoadU(d, row), factor));
      sum1 = hn::SaturatedAdd(sum1, Times(d, hn::LoadU(d, row + width), factor));
      sum2 = hn::SaturatedAdd(sum2, Times(d, hn::LoadU(d, row + 2 * width), factor));
      sum3 = hn::SaturatedAdd(sum3, Times(d, hn::LoadU(d, row + 3 * width), factor));
    }
    hn::StoreU(sum0, d, target + begin);
    hn::StoreU(sum1, d, target + begin + width);
    hn::StoreU(sum2, d, target + begin + 2 * width);
    hn::StoreU(sum3, d, target + begin + 3 * width);
  }
  ForEach(n - begin, [=](auto tag, int i) {
    auto sum = hn::Zero(tag);
    for (int k = 0; k < count; ++k)
      sum = hn::SaturatedAdd(sum, Times(tag, hn::LoadU(tag, rows[k] + offset + begin + i),
                                        Broadcast(tag, factors[k])));
    hn::StoreU(sum, tag, target + begin + i);
  });
}

/// Calls `use` with a function that computes the polynomial.
template <class Use>
void WithPolynomial(const int* p, const Use& use) {
  const int p0 = p[0];
  const int p1 = p[1];
  const int p2 = p[2];
  const int p3 = p[3];
  if (p0 == 0 && p3 == 0) {
    use([=](auto d, auto x) {
      return Times(d, x, hn::SaturatedAdd(Times(d, x, Broadcast(d, p2)), Broadcast(d, p1)));
    });
    return;
  }
  use([=](auto d, auto x) {
    auto y = Times(d, x, Broadcast(d, p3));
    y = Times(d, x, hn::SaturatedAdd(y, Broadcast(d, p2)));
    y = Times(d, x, hn::SaturatedAdd(y, Broadcast(d, p1)));
    return hn::SaturatedAdd(y, Broadcast(d, p0));
  });
}

void ApplyPolynomial(const int* p, Component* target, int n) {
  WithPolynomial(p, [=](const auto& polynomial) {
    ForEach(n, [=](auto d, int i) {
      hn::StoreU(polynomial(d, hn::LoadU(d, target + i)), d, target + i);
    });
  });
}

void Shine(const Component* a, const Component* b, int weight, const int* p, int alpha,
           Component* target, int n) {
  WithPolynomial(p, [=](const auto& polynomial) {
    ForEach(n, [=](auto d, int i) {
      const auto from = hn::LoadU(d, a + i);
      const auto way = Times(d, hn::Sub(hn::LoadU(d, b + i), from), Broadcast(d, weight));
      const auto source = polynomial(d, hn::Add(from, way));
      const auto before = hn::LoadU(d, target + i);
      if (alpha < 0)
        hn::StoreU(hn::SaturatedAdd(hn::Sub(before, Times(d, before, source)), source), d,
                   target + i);
      else
        hn::StoreU(hn::SaturatedAdd(before, Times(d, source, Broadcast(d, alpha))), d, target + i);
    });
  });
}

void Shade(std::int32_t color, std::int32_t slope, Component* target, int n) {
  int i = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<std::int32_t> d;
  const hn::Rebind<std::int16_t, decltype(d)> d16;
  const int width = static_cast<int>(hn::Lanes(d));
  auto value = hn::Add(hn::Set(d, color), hn::Mul(hn::Iota(d, 0), hn::Set(d, slope)));
  const auto step = hn::Set(d, static_cast<std::int32_t>(static_cast<std::uint32_t>(slope) *
                                                         static_cast<std::uint32_t>(width)));
  for (; i + width <= n; i += width) {
    const auto add = hn::DemoteTo(d16, hn::ShiftRight<15>(value));
    hn::StoreU(hn::SaturatedAdd(hn::LoadU(d16, target + i), add), d16, target + i);
    value = hn::Add(value, step);
  }
#endif
  for (; i < n; ++i) {
    const auto single = static_cast<std::int32_t>(static_cast<std::uint32_t>(color) +
                                                  static_cast<std::uint32_t>(slope) *
                                                      static_cast<std::uint32_t>(i));
    target[i] = static_cast<Component>(std::min(target[i] + (single >> 15), kOne));
  }
}

bool ShadeColumns(const Sheet& sheet, int y, Component* const* planes) {
  const int blocks = static_cast<int>(sheet.blockFirst.size());
  bool isAny = false;
  for (int block = 0; block < blocks; ++block) {
    const auto number = static_cast<std::size_t>(block);
    if (y < sheet.blockFirst[number] || y >= sheet.blockEnd[number]) continue;
    isAny = true;
    const int begin = block * Sheet::kBlock;
#if HWY_TARGET != HWY_SCALAR
    const hn::CappedTag<std::int32_t, Sheet::kBlock> d;
    const hn::Rebind<std::int16_t, decltype(d)> d16;
    const auto row = hn::Set(d, y);
    for (int x = begin; x < begin + Sheet::kBlock; x += static_cast<int>(hn::Lanes(d))) {
      const auto isIn = hn::AndNot(hn::Lt(row, hn::LoadU(d, sheet.first.data() + x)),
                                   hn::Lt(row, hn::LoadU(d, sheet.end.data() + x)));
      for (std::size_t plane = 0; plane < 3; ++plane) {
        const auto color = hn::LoadU(d, sheet.color[plane].data() + x);
        const auto slope = hn::LoadU(d, sheet.slope[plane].data() + x);
        const auto value = hn::ShiftRight<15>(hn::Add(color, hn::Mul(slope, row)));
        const auto add = hn::DemoteTo(d16, hn::IfThenElseZero(isIn, value));
        Component* const place = planes[plane] + x;
        hn::StoreU(hn::SaturatedAdd(hn::LoadU(d16, place), add), d16, place);
      }
    }
#else
    for (int x = begin; x < begin + Sheet::kBlock; ++x) {
      const auto column = static_cast<std::size_t>(x);
      if (y < sheet.first[column] || y >= sheet.end[column]) continue;
      for (std::size_t plane = 0; plane < 3; ++plane) {
        const auto value = static_cast<std::int32_t>(
            static_cast<std::uint32_t>(sheet.color[plane][column]) +
            static_cast<std::uint32_t>(sheet.slope[plane][column]) * static_cast<std::uint32_t>(y));
        Component& place = planes[plane][x];
        place = static_cast<Component>(std::min(place + (value >> 15), kOne));
      }
    }
#endif
  }
  return isAny;
}

void ToBytes(const Component* const* planes, bool swaps, std::uint8_t* bytes, int n) {
  const Component* const first = planes[swaps ? 2 : 0];
  const Component* const second = planes[1];
  const Component* const third = planes[swaps ? 0 : 2];
  const Component* const alpha = planes[3];
  int i = 0;
#if HWY_TARGET <= HWY_AVX2 && HWY_ARCH_X86
  const hn::FixedTag<std::int16_t, 16> d;
  const auto byte = [=](const Component* row, int at) {
    return Times(d, hn::LoadU(d, row + at), Broadcast(d, 255));
  };
  for (; i + 16 <= n; i += 16) {
    const auto low = hn::Or(byte(first, i), hn::ShiftLeft<8>(byte(second, i)));
    const auto a = alpha != nullptr ? byte(alpha, i) : Broadcast(d, 255);
    const auto high = hn::Or(byte(third, i), hn::ShiftLeft<8>(a));
    // Pixels 0 to 3 and 8 to 11; 4 to 7 and 12 to 15.
    const auto even = hn::InterleaveLower(d, low, high);
    const auto odd = hn::InterleaveUpper(d, low, high);
    auto* const place = reinterpret_cast<std::int16_t*>(bytes + std::ptrdiff_t{4} * i);
    hn::StoreU(hn::ConcatLowerLower(d, odd, even), d, place);
    hn::StoreU(hn::ConcatUpperUpper(d, odd, even), d, place + 16);
  }
#elif HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<std::uint8_t> d8;
  const hn::Half<decltype(d8)> half8;
  const hn::ScalableTag<std::int16_t> d16;
  const int width = static_cast<int>(hn::Lanes(half8));
  const auto convert = [=](const Component* row, int at) {
    return hn::DemoteTo(half8, Times(d16, hn::LoadU(d16, row + at), Broadcast(d16, 255)));
  };
  for (; i + width <= n; i += width) {
    const auto a = alpha != nullptr ? convert(alpha, i) : hn::Set(half8, 255);
    hn::StoreInterleaved4(convert(first, i), convert(second, i), convert(third, i), a, half8,
                          bytes + 4 * i);
  }
#endif
  const auto convert1 = [](Component value) {
    return static_cast<std::uint8_t>((value * 255 + 16384) >> 15);
  };
  for (; i < n; ++i) {
    bytes[4 * i] = convert1(first[i]);
    bytes[4 * i + 1] = convert1(second[i]);
    bytes[4 * i + 2] = convert1(third[i]);
    bytes[4 * i + 3] = alpha != nullptr ? convert1(alpha[i]) : std::uint8_t{255};
  }
}

void BlackBytes(std::uint8_t* bytes, int n) {
  constexpr std::uint8_t kPixel[4] = {0, 0, 0, 255};
  std::uint32_t pixel;
  std::memcpy(&pixel, kPixel, sizeof pixel);
  int i = 0;
#if HWY_TARGET != HWY_SCALAR
  const hn::ScalableTag<std::uint32_t> d;
  const hn::Repartition<std::uint8_t, decltype(d)> d8;
  const auto pixels = hn::BitCast(d8, hn::Set(d, pixel));
  for (; i + static_cast<int>(hn::Lanes(d)) <= n; i += static_cast<int>(hn::Lanes(d)))
    hn::StoreU(pixels, d8, bytes + 4 * i);
#endif
  for (; i < n; ++i)
    std::memcpy(bytes + 4 * i, &pixel, sizeof pixel);
}

const Kernels* Table() {
  static constexpr Kernels kTable = {Resample,        Mix,   Put,    Fade,  Accumulate,   Screen,
                                     ApplyPolynomial, Shine, Filter, Shade, ShadeColumns, ToBytes,
                                     BlackBytes};
  return &kTable;
}

} // namespace halvenor::raster::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace halvenor::raster {
namespace {

HWY_EXPORT(Table);

std::vector<std::int64_t> Targets() {
  std::vector<std::int64_t> targets;
  hwy::SetSupportedTargetsForTest(0);
  for (std::int64_t left = hwy::SupportedTargets() & HWY_TARGETS; left != 0; left &= left - 1)
    targets.push_back(left & -left);
  return targets;
}

std::atomic<const Kernels*> chosen = nullptr;

} // namespace

const Kernels& GetKernels() {
  const Kernels* kernels = chosen.load(std::memory_order_acquire);
  if (kernels == nullptr) {
    kernels = HWY_DYNAMIC_DISPATCH(Table)();
    chosen.store(kernels, std::memory_order_release);
  }
  return *kernels;
}

int NumKernels() {
  return static_cast<int>(Targets().size());
}

void UseKernels(int number) {
  hwy::SetSupportedTargetsForTest(Targets()[static_cast<std::size_t>(number)]);
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  chosen.store(HWY_DYNAMIC_DISPATCH(Table)(), std::memory_order_release);
  hwy::SetSupportedTargetsForTest(0);
}

} // namespace halvenor::raster
#endif
