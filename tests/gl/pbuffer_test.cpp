#include "gl/pbuffer.h"
#include "tests/gl/context_test.h"

namespace halvenor {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class PBufferTest : public ContextTest {
protected:
  void TearDown() override {
    buffer_.Destroy();
    ContextTest::TearDown();
  }
  PBuffer buffer_;
};

TEST_F(PBufferTest, DoesNothingBeforeItIsCreated) {
  EXPECT_FALSE(buffer_.StartDrawing());
  EXPECT_EQ(buffer_.CurrentTexture(), 0U);
  buffer_.EndDrawing();
  buffer_.BindTexture();
  buffer_.Destroy();
  EXPECT_THAT(stand_ins::CallTexts(), IsEmpty());
}

TEST_F(PBufferTest, AlternatesBetweenTheBuffers) {
  buffer_.Create(context_);
  for (int opening = 0; opening < 2; ++opening) {
    const GLuint second = buffer_.CurrentTexture(); // the last frame is the second one's
    for (int frame = 0; frame < 4; ++frame) {
      stand_ins::ClearCalls();
      EXPECT_TRUE(buffer_.StartDrawing());
      const std::string target = stand_ins::CallTexts()[1];
      buffer_.EndDrawing();
      const GLuint drawn = buffer_.CurrentTexture();
      EXPECT_EQ(drawn, frame % 2 == 0 ? second - 1 : second);
      EXPECT_EQ(target, "aglSetPBuffer(context 1, pbuffer " +
                            std::to_string(2 * opening + 1 + frame % 2) + ", 0, 0, 0)");
    }
    buffer_.StartDrawing();
    buffer_.EndDrawing(); // an odd number: creating starts over with the first
    buffer_.Create(context_);
    EXPECT_EQ(stand_ins::LivePBuffers(), 2);
    EXPECT_EQ(stand_ins::LiveTextures(), 2);
  }
}

TEST_F(PBufferTest, PendingErrorsAreReportedWhereTheyAreLookedFor) {
  const auto leaveError = [] { aglSetPBuffer(nullptr, nullptr, 0, 0, 0); };
  leaveError();
  buffer_.Create(context_);
  leaveError();
  EXPECT_TRUE(buffer_.StartDrawing());
  leaveError();
  buffer_.EndDrawing();
  leaveError();
  buffer_.Destroy();
  EXPECT_THAT(log_.Take(), ElementsAre(StartsWith("PBuffer creation problems : "),
                                       StartsWith("pBuffer start drawing problems : "),
                                       StartsWith("pBuffer end drawing problems : "),
                                       StartsWith("PBuffer destruction problems : ")));
  EXPECT_EQ(LiveObjects(), 0);
}

} // namespace
} // namespace halvenor
