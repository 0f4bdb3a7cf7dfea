#include "scene/texture_image.h"
#include "tests/gl/context_test.h"

#include <cstring>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace halvenor {
namespace {

using stand_ins::CallTexts;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

constexpr char kRaw = 2;
constexpr char kRunLength = 10;

std::string Header(char type, int width, int height, char depth) {
  std::string header(18, '\0');
  header[2] = type;
  header[12] = static_cast<char>(width & 0xFF);
  header[13] = static_cast<char>(width >> 8);
  header[14] = static_cast<char>(height & 0xFF);
  header[15] = static_cast<char>(height >> 8);
  header[16] = depth;
  return header;
}

// A file of one raw pixel, but with `value` at `offset` of its header.
std::string With(std::size_t offset, char value) {
  std::string file = Header(kRaw, 1, 1, 24) + "pqr";
  file[offset] = value;
  return file;
}

std::string Repeated(std::string_view pixel, int times) {
  std::string all;
  for (int i = 0; i < times; ++i)
    all += pixel;
  return all;
}

// What the next file that is opened would get.
int NextDescriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

class TextureImageTest : public ResourcesTest {
protected:
  void TearDown() override {
    DeleteTexture(image_);
    DeleteBuffer(image_);
    ResourcesTest::TearDown();
  }

  // Loads what is called `name` into the image; what it printed.
  std::string Load(const char* name) {
    testing::internal::CaptureStdout();
    const int before = NextDescriptor();
    loaded_ = LoadTGA(image_, name);
    EXPECT_EQ(NextDescriptor(), before) << "the file was left open";
    EXPECT_EQ(loaded_ == 1, image_.pixels != nullptr);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
  }
  std::string LoadFile(std::string_view bytes) {
    Write("image", bytes);
    return Load("image");
  }
  [[nodiscard]] std::string Pixels() const {
    const std::size_t size = std::size_t{image_.width} * image_.height * (image_.bitsPerPixel / 8);
    return {reinterpret_cast<const char*>(image_.pixels), loaded_ == 1 ? size : 0};
  }

  TextureImage image_;
  int loaded_ = -1;
};

TEST_F(TextureImageTest, GoodFilesBecomePixels) {
  const struct {
    const char* what;
    std::string file, pixels;
  } cases[] = {
      {"raw, 24 bits", Header(kRaw, 2, 1, 24) + "pqrstu", "rqputs"},
      {"raw, 32 bits", Header(kRaw, 1, 2, 32) + "pqrstuvw", "rqpsvutw"},
      {"a top-left origin", With(17, 0x20), "rqp"},
      {"more than the pixels", Header(kRaw, 1, 1, 24) + "pqrstu", "rqp"},
      {"24 bits", Header(kRunLength, 3, 1, 24) + "\x81pqr\0stu"s, "rqprqputs"},
      {"32 bits", Header(kRunLength, 3, 1, 32) + "\1ghijklmn\x80pqrs...", "ihgjmlknrqps"},
      {"a run over row ends", Header(kRunLength, 2, 2, 24) + "\x83pqr", Repeated("rqp", 4)},
      {"packets of 128, a width of two bytes",
       Header(kRunLength, 256, 1, 24) + "\xFFpqr\x7F" + Repeated("stu", 128),
       Repeated("rqp", 128) + Repeated("uts", 128)},
  };
  for (const auto& [what, file, pixels] : cases) {
    EXPECT_EQ(LoadFile(file), "") << what;
    EXPECT_EQ(Pixels(), pixels) << what;
  }
  // GLU reads one pixel beyond the last.
  ASSERT_EQ(LoadFile(Header(kRaw, 2, 4, 24) + Repeated("pqr", 8)), "");
  EXPECT_GE(malloc_usable_size(image_.pixels), 27U);
  EXPECT_EQ(std::memcmp(image_.pixels + 24, "\0\0", 3), 0);
}

TEST_F(TextureImageTest, BrokenFilesAreRefusedWithOneLine) {
  const char* kFormat = "error, invalid format!\n";
  const char* kDamaged = "error, file appears to be damaged!\n";
  const char* kNoHeader = "error, could not read RLE header.\n";
  const char* kNoRaw = "error, could not read image data.\n";
  const char* kNoRun = "error, could not read from file.\n";
  const char* kTooMany = "error, too many pixels read.\n";
  const std::string raw = Header(kRaw, 1, 1, 24);
  const std::string packets = Header(kRunLength, 2, 1, 24);
  const struct {
    const char* what;
    std::string file;
    const char* line;
  } cases[] = {
      {"empty", "", kFormat},
      {"11 bytes", raw.substr(0, 11), kFormat},
      {"17 bytes", raw.substr(0, 17), kFormat},
      {"image ID", With(0, 1), kFormat},
      {"color map", With(1, 1), kFormat},
      {"gray", With(2, 3), kFormat},
      {"x origin", With(8, 1), kFormat},
      {"y origin", With(11, 1), kFormat},
      {"no width", With(12, 0), kFormat},
      {"no height", With(14, 0), kFormat},
      {"depth 8", With(16, 8), kFormat},
      {"one byte short", raw + "pq", kDamaged},
      {"one byte of alpha short", Header(kRaw, 1, 1, 32) + "pqr", kDamaged},
      {"no packets", packets, kNoHeader},
      {"a packet missing", packets + "\x80pqr", kNoHeader},
      {"a raw packet without pixels", packets + "\1", kNoRaw},
      {"a raw packet cut short", packets + "\1pqrst", kNoRaw},
      {"a run without its pixel", packets + "\x81", kNoRun},
      {"a run cut short", packets + "\x81pq", kNoRun},
      {"a run too long", packets + "\x82pqr", kTooMany},
      {"a raw packet too long", packets + "\2pqrstuvwx", kTooMany},
      {"a surplus pixel that is cut short", packets + "\2pqrstuvw", kNoRaw},
      {"a claim beyond the file", Header(kRunLength, 5000, 5000, 24) + "\x80pqr", kNoHeader},
  };
  for (const auto& [what, file, line] : cases) {
    EXPECT_EQ(LoadFile(file), line) << what;
    EXPECT_EQ(loaded_, 0) << what;
  }
  EXPECT_EQ(LoadFile(Header(kRaw, 0x0102, 0x0304, 16)), kFormat); // has stored the sizes
  EXPECT_EQ(image_.width, 0x0102U);
  EXPECT_EQ(image_.height, 0x0304U);
  EXPECT_EQ(image_.bitsPerPixel, 16U);
}

TEST_F(TextureImageTest, WhatIsNotThereIsRefused) {
  ASSERT_EQ(LoadFile(With(17, 0)), "");
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", folder_ / "endless");
  for (const std::string name : {"missing.tga", ".", "pipe", "endless"}) {
    EXPECT_EQ(Load(name.c_str()), "error, " + name + " not found!\n");
    EXPECT_EQ(image_.pixels, nullptr); // not those of the image before
  }
  // Without the folder, which has been reported, nothing more is said.
  stand_ins::Fail("CFBundleGetBundleWithIdentifier", 1, 1, 1);
  EXPECT_EQ(Load("image"), "");
  EXPECT_EQ(loaded_, 0);
  EXPECT_THAT(log_.Take(), ElementsAre("Bad bundle"));
}

#ifdef __has_feature
#define HALVENOR_HAS(feature) __has_feature(feature)
#else
#define HALVENOR_HAS(feature) 0
#endif
#if !HALVENOR_HAS(address_sanitizer) // which needs more address space than the limit leaves
TEST_F(TextureImageTest, SizesBeyondTheMemoryAreRefused) {
  rlimit former;
  ASSERT_EQ(getrlimit(RLIMIT_AS, &former), 0);
  rlimit limited = former;
  limited.rlim_cur = rlim_t{1} << 31;
  ASSERT_EQ(setrlimit(RLIMIT_AS, &limited), 0);
  for (const char type : {kRaw, kRunLength}) {
    EXPECT_EQ(LoadFile(Header(type, 65535, 65535, 32)), "error, unable to allocate memory!\n");
  }
  ASSERT_EQ(setrlimit(RLIMIT_AS, &former), 0);
}
#endif

TEST_F(TextureImageTest, TexturesAreMadeFromPixels) {
  ASSERT_EQ(LoadFile(Header(kRaw, 1, 2, 32) + "abcdefgh"), "");
  stand_ins::ClearCalls();
  CreateTexture(image_, 1);
  EXPECT_EQ(CallTexts(),
            stand_ins::Listed(
                "glGenTextures(1, pointer); glBindTexture(GL_TEXTURE_2D, 1); "
                "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE); "
                "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE); "
                "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR); "
                "glPixelStorei(GL_UNPACK_ALIGNMENT, 1); "
                "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR); "
                "gluBuild2DMipmaps(GL_TEXTURE_2D, 3, 1, 2, GL_RGBA, GL_UNSIGNED_BYTE, pointer); "
                "glPixelStorei(GL_UNPACK_ALIGNMENT, 4)"));
  const auto last = [this](const char* function, int mipmaps) {
    CreateTexture(image_, mipmaps);
    EXPECT_EQ(stand_ins::LiveTextures(), 1) << "the former one is gone";
    return stand_ins::CallsOf(function).back().text;
  };
  EXPECT_EQ(last("glTexParameteri", 0),
            "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)");
  EXPECT_EQ(last("glTexImage2D", 0),
            "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, pointer)");
  ASSERT_EQ(LoadFile(With(17, 0)), "");
  EXPECT_EQ(last("glTexImage2D", 0),
            "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 1, 0, GL_RGB, GL_UNSIGNED_BYTE, pointer)");
  EXPECT_EQ(last("gluBuild2DMipmaps", 1),
            "gluBuild2DMipmaps(GL_TEXTURE_2D, 3, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pointer)");

  DeleteTexture(image_);
  EXPECT_EQ(image_.textureId, 0U);
  EXPECT_EQ(stand_ins::LiveTextures(), 0);
  stand_ins::ClearCalls();
  DeleteTexture(image_);
  DeleteBuffer(image_);
  DeleteBuffer(image_);
  CreateTexture(image_, 1); // there are no pixels any more
  CreateTexture(image_, 0);
  EXPECT_THAT(CallTexts(), IsEmpty());
}

using ShippedImage = stand_ins::StandInTest;

TEST_F(ShippedImage, OurLogoIsUprightOnBlack) {
  TextureImage image;
  ASSERT_EQ(LoadTGA(image, "Halvenor.tga"), 1);
  EXPECT_EQ(image.width * 3, image.height * 4);
  const auto isLit = [&image](std::uint32_t x, std::uint32_t y) {
    const std::uint8_t* pixel = image.pixels + std::size_t{3} * (y * image.width + x);
    return pixel[0] + pixel[1] + pixel[2] > 0;
  };
  // On the left there is nothing but the first letter of the name, which is wider than the mark.
  int lit[2] = {};
  for (std::uint32_t y = 0; y < image.height; ++y) {
    EXPECT_FALSE(isLit(0, y) || isLit(image.width - 1, y));
    for (std::uint32_t x = 0; x < image.width / 8; ++x)
      lit[y < image.height / 2 ? 0 : 1] += isLit(x, y) ? 1 : 0;
  }
  EXPECT_GT(lit[0], 100);
  EXPECT_EQ(lit[1], 0);
  DeleteBuffer(image);
}

} // namespace
} // namespace halvenor
