// A fixture with a context of the stand-in current, and the log collected.
#pragma once

#include "tests/platform/gl_fixture.h"
#include "tests/stand_ins/stand_in_test.h"
#include "tests/support/scratch_folder.h"

#include <optional>

namespace halvenor {

class ContextTest : public stand_ins::StandInTest {
protected:
  void SetUp() override {
    StandInTest::SetUp();
    made_.emplace(&port_);
    context_ = made_->context;
    aglSetCurrentContext(context_);
    stand_ins::ClearCalls();
  }
  void TearDown() override {
    EXPECT_EQ(LiveObjects(), 0);
    made_.reset();
    StandInTest::TearDown();
  }
  static std::int64_t LiveObjects() {
    return stand_ins::LivePBuffers() + stand_ins::LiveTextures() + stand_ins::LivePrograms();
  }

  HalvenorPort port_ = stand_ins::OffscreenPort(8, 8);
  std::optional<TestContext> made_;
  AGLContext context_ = nullptr;
};

/// The same with a folder of its own as the bundle's resources.
class ResourcesTest : public ContextTest {
protected:
  void SetUp() override {
    ContextTest::SetUp();
    stand_ins::SetResourcesFolder(folder_);
  }
  void Write(const char* name, std::string_view text) {
    WriteText(folder_ / name, std::string(text));
  }

  const ScratchFolder scratch_;
  const std::filesystem::path& folder_ = scratch_.Path();
};

} // namespace halvenor
