// Any bytes as an image file.
#include "scene/texture_image.h"
#include "tests/stand_ins/bundle_stand_in.h"

#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace halvenor;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// What the next file that is opened would get.
int NextDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

// Reads every byte that a texture would be made from.
std::uint8_t Read(const TextureImage& image) {
  const std::size_t size = std::size_t{image.width} * image.height * (image.bitsPerPixel / 8);
  std::uint8_t all = 0;
  for (std::size_t i = 0; i < size; ++i)
    all = static_cast<std::uint8_t>(all ^ image.pixels[i]);
  return all;
}

} // namespace

// Sizes beyond reason meet a machine without memory. The name is the sanitizer's.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=64";
}

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  Require(std::freopen("/dev/null", "w", stdout) != nullptr);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int file = memfd_create("image", 0);
  Require(ftruncate(file, 0) == 0);
  Require(pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
  stand_ins::SetResourcesFolder("/proc/self/fd");
  const int before = NextDescriptor();

  TextureImage image;
  const int loaded = LoadTGA(image, std::to_string(file).c_str());
  Require((loaded == 1) == (image.pixels != nullptr));
  if (loaded == 1) {
    volatile const std::uint8_t sink = Read(image);
    (void)sink;
  }
  DeleteBuffer(image);
  Require(NextDescriptor() == before);
  return 0;
}
