// What is done to rows of components, for all of one plane. On each machine the widest vectors it
// has do it; all give the same numbers.
#pragma once

#include "raster/commands.h"
#include "raster/pixels.h"

#include <cstddef>
#include <cstdint>

namespace halvenor::raster {

/// Factors are shares of 32768, from 0 to `kOne`; a product is rounded to the nearest number. Sums
/// saturate at `kOne`. `out` may be written up to `kRowPadding` components past `n`; `target` is
/// not, and may be an operand, too.
struct Kernels {
  /// For each plane, outs[plane][i] lies between the texels first[i] and second[i] of its row.
  void (*resample)(const Resampling& resampling, const Component* const* rows,
                   Component* const* outs, int planes, int n);
  /// out = a + (b - a) x weight
  void (*mix)(const Component* a, const Component* b, int weight, Component* out, int n);
  /// target = a x factorA + b x factorB - loss, or that much more, if `adds`. Not below 0.
  void (*put)(const Component* a, const Component* b, int factorA, int factorB, int loss, bool adds,
              Component* target, int n);
  /// target = target x keep + add
  void (*fade)(int keep, int add, Component* target, int n);
  /// target += a x factor
  void (*accumulate)(const Component* a, int factor, Component* target, int n);
  /// target = target + a - target x a
  void (*screen)(const Component* a, Component* target, int n);
  /// target = p[0] + target x (p[1] + target x (p[2] + target x p[3]))
  void (*polynomial)(const int* p, Component* target, int n);
  /// The polynomial of `mix`, screened over the target (alpha < 0), or added x alpha.
  void (*shine)(const Component* a, const Component* b, int weight, const int* p, int alpha,
                Component* target, int n);
  /// target = the sum of (rows[i] + offset) x factors[i]
  void (*filter)(const Component* const* rows, std::ptrdiff_t offset, const int* factors, int count,
                 Component* target, int n);
  /// target[i] += (color + i x slope) / 32768; what is added lies in 0..kOne.
  void (*shade)(std::int32_t color, std::int32_t slope, Component* target, int n);
  /// Adds row `y` of a sheet to three planes of a row that begin at column 0. False when there is
  /// nothing in that row.
  bool (*shadeColumns)(const Sheet& sheet, int y, Component* const* planes);
  /// Bytes of red, green, blue and alpha (null: opaque) in this order; `swaps`: blue first.
  void (*toBytes)(const Component* const* planes, bool swaps, std::uint8_t* bytes, int n);
  /// Bytes of opaque black.
  void (*blackBytes)(std::uint8_t* bytes, int n);
};

/// The best for this machine. What it says is fixed by the first call, but for `UseKernels`.
const Kernels& GetKernels();

/// For tests: how many kinds the machine has, and the choice of one, 0 to that less 1. Only while
/// nothing is drawn.
int NumKernels();
void UseKernels(int number);

} // namespace halvenor::raster
