// When the picture may stand still.
#include "desktop/window/idle_hold.h"

#include <gtest/gtest.h>

namespace halvenor::test {
namespace {

using namespace std::chrono_literals;

TEST(IdleRuleTest, HoldsOnlyWhatNobodyMisses) {
  constexpr IdleRule::Time kNow = 100s;
  const IdleRule::Time justNow = kNow - IdleRule::kRest + 1ms;
  const IdleRule::Time longAgo = kNow - IdleRule::kRest;
  const struct {
    const char* state;
    IdleRule::Time stirred;
    bool seen, accompanied, keepsDrawing;
    bool holds;
  } cases[] = {
      {"just stirred", justNow, true, false, false, false},
      {"at rest", longAgo, true, false, false, true},
      {"at rest beside the settings", longAgo, true, true, false, false},
      {"at rest, to be drawn all the same", longAgo, true, false, true, false},
      {"away", kNow, false, false, false, true},
      {"away with the settings open", kNow, false, true, false, true},
      {"away, to be drawn all the same", kNow, false, false, true, false},
  };
  for (const auto& row : cases) {
    IdleRule rule;
    rule.Stir(row.stirred);
    rule.SetSeen(row.seen);
    rule.SetAccompanied(row.accompanied);
    rule.SetKeepsDrawing(row.keepsDrawing);
    EXPECT_EQ(rule.Holds(kNow), row.holds) << row.state;
  }
}

} // namespace
} // namespace halvenor::test
