#include "scene/texture_image.h"

#include "files/file_bytes.h"
#include "files/released_by.h"
#include "gl/resource_file.h"
#include "gl_calls/gl.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace halvenor {
namespace {

constexpr char kInvalidFormat[] = "error, invalid format!";
constexpr char kNoMemory[] = "error, unable to allocate memory!";

// A file is of a kind when its first bytes are the kind's.
struct Kind {
  std::array<std::uint8_t, 12> start;
  int (*load)(TextureImage& image, std::FILE* file);
};
constexpr Kind kKinds[] = {{{0, 0, 2}, LoadTGA_RAW}, {{0, 0, 10}, LoadTGA_CMP}};

constexpr std::size_t kLargestPixel = 4;
constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 30; // bytes
constexpr int kFirstRunHeader = 128;
constexpr GLint kDefaultAlignment = 4;

using File = std::unique_ptr<std::FILE, ReleasedBy<std::fclose>>;

int Fail(const char* line) {
  std::puts(line);
  return 0;
}

File OpenResource(const char* fileName) {
  std::string path;
  const ResourceLookup lookup = FindResource(fileName, path);
  if (lookup == ResourceLookup::NoFolder) return nullptr; // already reported
  OpenedFile opened;
  if (lookup == ResourceLookup::Found)
    opened = OpenRegularFile(AT_FDCWD, path, Links::Follow, kLargestFile);
  File file(opened ? fdopen(opened.descriptor.Get(), "rb") : nullptr);
  if (file) static_cast<void>(opened.descriptor.Release());
  if (!file) std::printf("error, %s not found!\n", fileName);
  return file;
}

bool Read(std::FILE* file, std::uint8_t* target, std::size_t size) {
  return std::fread(target, 1, size, file) == size;
}

std::uint32_t LittleEndian(const std::uint8_t* bytes) {
  return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8;
}

std::size_t BytesPerPixel(const TextureImage& image) {
  return image.bitsPerPixel / 8;
}

std::size_t NumPixels(const TextureImage& image) {
  return std::size_t{image.width} * image.height;
}

/// Reads up to the pixels and stores the sizes. Null when the format is not one of ours.
const Kind* ReadHeader(TextureImage& image, std::FILE* file) {
  std::array<std::uint8_t, 12> start;
  if (!Read(file, start.data(), start.size())) return nullptr;
  const Kind* kind = nullptr;
  for (const Kind& known : kKinds)
    if (known.start == start) kind = &known;
  if (kind == nullptr) return nullptr;

  std::array<std::uint8_t, 6> sizes;
  if (!Read(file, sizes.data(), sizes.size())) return nullptr;
  image.width = LittleEndian(&sizes[0]);
  image.height = LittleEndian(&sizes[2]);
  image.bitsPerPixel = sizes[4];
  if (NumPixels(image) == 0) return nullptr;
  return image.bitsPerPixel == 24 || image.bitsPerPixel == 32 ? kind : nullptr;
}

bool AllocatePixels(TextureImage& image) {
  // Where pointers have four bytes, legal sizes can ask for more than can be counted.
  if (NumPixels(image) >= std::numeric_limits<std::size_t>::max() / kLargestPixel) return false;
  // Not cleared: a header that claims more pixels than the file holds then costs no memory.
  const std::size_t size = NumPixels(image) * BytesPerPixel(image);
  image.pixels = static_cast<std::uint8_t*>(std::malloc(size + BytesPerPixel(image)));
  if (image.pixels == nullptr) return false;
  // `gluBuild2DMipmaps` reads one pixel beyond the last, without using it, where it scales only one
  // way.
  std::memset(image.pixels + size, 0, BytesPerPixel(image));
  return true;
}

/// Appends pixels in the file's order of components to an image.
class PixelWriter {
public:
  explicit PixelWriter(TextureImage& image)
      : bytes(BytesPerPixel(image)), next(image.pixels), left(NumPixels(image)) {}

  [[nodiscard]] bool IsDone() const { return left == 0; }

  /// False, and nothing stored, when the image is full.
  bool Store(const std::uint8_t* pixel) {
    if (left == 0) return false;
    std::memcpy(next, pixel, bytes);
    std::swap(next[0], next[2]);
    next += bytes;
    --left;
    return true;
  }

private:
  std::size_t bytes;
  std::uint8_t* next;
  std::size_t left;
};

} // namespace

int LoadTGA(TextureImage& image, const char* fileName) {
  DeleteBuffer(image);
  const File file = OpenResource(fileName);
  if (!file) return 0;
  const Kind* kind = ReadHeader(image, file.get());
  if (kind == nullptr) return Fail(kInvalidFormat);
  if (!AllocatePixels(image)) return Fail(kNoMemory);
  if (kind->load(image, file.get()) != 0) return 1;
  DeleteBuffer(image);
  return 0;
}

int LoadTGA_RAW(TextureImage& image, std::FILE* file) {
  const std::size_t bytes = BytesPerPixel(image);
  const std::size_t size = NumPixels(image) * bytes;
  if (!Read(file, image.pixels, size)) return Fail("error, file appears to be damaged!");
  for (std::size_t i = 0; i < size; i += bytes)
    std::swap(image.pixels[i], image.pixels[i + 2]);
  return 1;
}

int LoadTGA_CMP(TextureImage& image, std::FILE* file) {
  const std::size_t bytes = BytesPerPixel(image);
  std::array<std::uint8_t, kLargestPixel> pixel;
  PixelWriter writer(image);
  while (!writer.IsDone()) {
    const int header = std::fgetc(file);
    if (header == EOF) return Fail("error, could not read RLE header.");
    const bool isRun = header >= kFirstRunHeader;
    const int count = isRun ? header - kFirstRunHeader + 1 : header + 1;
    for (int i = 0; i < count; ++i) {
      if ((i == 0 || !isRun) && !Read(file, pixel.data(), bytes)) {
        return Fail(isRun ? "error, could not read from file."
                          : "error, could not read image data.");
      }
      if (!writer.Store(pixel.data())) return Fail("error, too many pixels read.");
    }
  }
  return 1;
}

void CreateTexture(TextureImage& image, int mipmaps) {
  DeleteTexture(image);
  if (image.pixels == nullptr) return;
  const GLenum format = image.bitsPerPixel == 24 ? GL_RGB : GL_RGBA;
  const auto width = static_cast<GLsizei>(image.width);
  const auto height = static_cast<GLsizei>(image.height);
  glGenTextures(1, &image.textureId);
  glBindTexture(GL_TEXTURE_2D, image.textureId);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  // Rows follow each other without gaps, whatever their length.
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  if (mipmaps != 0) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    gluBuild2DMipmaps(GL_TEXTURE_2D, 3, width, height, format, GL_UNSIGNED_BYTE, image.pixels);
  } else {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format,
                 GL_UNSIGNED_BYTE, image.pixels);
  }
  glPixelStorei(GL_UNPACK_ALIGNMENT, kDefaultAlignment);
}

void DeleteTexture(TextureImage& image) {
  if (image.textureId != 0) glDeleteTextures(1, &image.textureId);
  image.textureId = 0;
}

void DeleteBuffer(TextureImage& image) {
  std::free(image.pixels);
  image.pixels = nullptr;
}

} // namespace halvenor
