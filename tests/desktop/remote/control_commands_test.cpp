#include "desktop/remote/control_commands.h"
#include "desktop/window/user_actions.h"

#include <gtest/gtest.h>

namespace halvenor::test {
namespace {

TEST(ControlCommandsTest, RefusesWhatIsNoCommand) {
  const QStringList good[] = {
      {"play"},         {"open", "a", "b"}, {"key", "h"},       {"volume", "+5"},
      {"seek", "-1.5"}, {"listen"},         {"volume", "-300"}, {"quit"}};
  // Words with "|" between them.
  const QString bad[] = {"",     "Play",   "play|it",     "play\n",     "open",
                         "key",  "volume", "volume|loud", "volume|300", "volume|nan",
                         "seek", "seek|",  "seek|nan",    "seek|1e999", "listen|a|b"};
  for (const QStringList& words : good) {
    EXPECT_EQ(ControlFault(words), QString()) << words.join(' ').toStdString();
    EXPECT_EQ(ReadRequest(WriteRequest(words)), words);
  }
  EXPECT_FALSE(ControlFault({}).isEmpty());
  for (const QString& words : bad)
    EXPECT_FALSE(ControlFault(words.split('|')).isEmpty()) << words.toStdString();
  for (const char* line : {"", "play\n", "{}\n", "[1]\n", "[\"play\"\n", "\xff\xfe\n"})
    EXPECT_FALSE(ReadRequest(line)) << line;
  EXPECT_EQ(ReadAmount("30"), (Amount{30, false}));
  EXPECT_EQ(ReadAmount("-5")->From(30), 25);
}

} // namespace
} // namespace halvenor::test
