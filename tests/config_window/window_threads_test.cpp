// The window moves everything while another thread draws.
#include "tests/config_window/window_fixture.h"

#include <atomic>
#include <cstring>
#include <thread>

// Qt's own locks are not known to the thread sanitizer. What Qt's libraries themselves do is left
// aside; what this module and the suite do, below Qt or not, is checked.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions() {
  return "called_from_lib:libQt6Core.so.6\n"
         "called_from_lib:libQt6Gui.so.6\n"
         "called_from_lib:libQt6Widgets.so.6\n";
}

namespace halvenor::test {
namespace {

TEST_F(WindowFixture, EveryControlMovesItsFieldAndNothingElseWhileFramesAreDrawn) {
  qputenv("XDG_CACHE_HOME", "/dev/null"); // no pictures: the sanitizer cannot follow Qt's fork
  Open();
  std::atomic<bool> drawing = true;
  std::atomic<int> frames = 0;
  std::size_t seen = 0;
  std::thread render([&] {
    while (drawing) {
      const RecordGuard guard;
      for (const SettingField& field : SettingFields())
        seen += ToText(guard.Record()->settings, field).size();
      ++frames;
      std::this_thread::yield();
    }
  });
  for (const SettingField& moved : SettingFields()) {
    Settings expected = Host::Present();
    const std::string before = ToText(expected, moved);
    Move(moved);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ToText(Host::Present(), moved) != before; }))
        << moved.name;
    const Settings after = Host::Present();
    Set(expected, moved.name, ToText(after, moved));
    EXPECT_EQ(std::memcmp(&after, &expected, sizeof after), 0) << moved.name;
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return frames > 100; }));
  Window()->close();
  drawing = false;
  render.join();
  EXPECT_GT(seen, 0u);
}

} // namespace
} // namespace halvenor::test
