// A fixture with a context of the stand-in current, and the log collected.
#pragma once

#include "platform/agl.h"
#include "tests/stand_ins/stand_in_test.h"

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace halvenor {

class ContextTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    const GLint attributes[] = {AGL_RGBA, AGL_NONE};
    format_ = aglChoosePixelFormat(nullptr, 0, attributes);
    context_ = aglCreateContext(format_, nullptr);
    aglSetDrawable(context_, &port_);
    aglSetCurrentContext(context_);
    stand_ins::ClearCalls();
  }
  void TearDown() override {
    EXPECT_EQ(LiveObjects(), 0);
    aglSetCurrentContext(nullptr);
    aglDestroyContext(context_);
    aglDestroyPixelFormat(format_);
    StandInTest::TearDown();
  }
  static std::int64_t LiveObjects() {
    return stand_ins::LivePBuffers() + stand_ins::LiveTextures() + stand_ins::LivePrograms();
  }

  stand_ins::LogLines log_;
  HalvenorPort port_ = stand_ins::OffscreenPort(8, 8);
  AGLPixelFormat format_ = nullptr;
  AGLContext context_ = nullptr;
};

/// The same with a folder of its own as the bundle's resources.
class ResourcesTest : public ContextTest {
protected:
  void SetUp() override {
    ContextTest::SetUp();
    folder_ =
        std::filesystem::temp_directory_path() / ("halvenor-resources-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_);
    stand_ins::SetResourcesFolder(folder_);
  }
  void TearDown() override {
    std::filesystem::remove_all(folder_);
    ContextTest::TearDown();
  }
  void Write(const char* name, std::string_view text) {
    std::ofstream(folder_ / name, std::ios::binary) << text;
  }

  std::filesystem::path folder_;
};

} // namespace halvenor
