// Any sequence of GL calls with any numbers, drawn twice: on one thread, and on several with other
// vectors. The errors and all bytes have to be the same.
#include "raster/kernels.h"
#include "tests/raster/call_sequence.h"

#include <cstdlib>

using namespace halvenor;

namespace {

class Bytes : public Choices {
public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  unsigned Below(unsigned limit) override {
    unsigned value = Next();
    if (limit > 256) value = value << 8U | Next();
    return value % limit;
  }
  [[nodiscard]] bool AreLeft() const override { return at_ < size_; }

private:
  unsigned Next() { return at_ < size_ ? data_[at_++] : 0U; }

  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

using Pictures = std::array<std::vector<std::uint8_t>, 2>;

Pictures Draw(const std::uint8_t* data, std::size_t size, int threads, int kernels) {
  raster::UseKernels(kernels);
  RasterPlayer player(threads);
  GlPlayer* const players[] = {&player};
  Bytes bytes(data, size);
  PlaySequence(bytes, players, 200, true);
  return {player.Pixels(kWindow), player.Pixels(kTrails)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Pictures expected = Draw(data, size, 1, raster::NumKernels() - 1);
  const int other = size % 2 == 0 ? 0 : raster::NumKernels() / 2;
  if (Draw(data, size, 3, other) != expected) std::abort();
  return 0;
}
