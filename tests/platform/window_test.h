// What windows of every system have to do; a host shows one on a server of the suite's own.
#pragma once

#include "tests/platform/gl_fixture.h"
#include "tests/support/process_use.h"
#include "tests/support/servers.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <fstream>

namespace halvenor {

/// The top-left part of a window, all of which must lie on the screen.
inline Image ReadImage(Display* display, Window window, int width, int height) {
  XImage* read = XGetImage(display, window, 0, 0, static_cast<unsigned>(width),
                           static_cast<unsigned>(height), AllPlanes, ZPixmap);
  Image image{width, height, {}};
  for (int i = 0; i < width * height; ++i) {
    const auto pixel = XGetPixel(read, i % width, i / width);
    image.pixels.push_back({static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
                            static_cast<int>(pixel & 255)});
  }
  XDestroyImage(read);
  return image;
}

inline int MappedPictures() {
  std::ifstream maps("/proc/self/maps");
  int count = 0;
  for (std::string line; std::getline(maps, line);)
    if (line.find("halvenor-picture") != line.npos) ++count;
  return count;
}

template <class Host>
class WindowTest : public GlTest {
protected:
  void SetUp() override { ASSERT_TRUE(host.IsThere()) << "no server started"; }

  void DrawAndExpect(const TestContext& context, int x, int y, int width, int height) {
    std::string fault;
    // A compositor that has not given back a buffer drops pictures: draw until one shows.
    Eventually([&] {
      host.Draw(context, width, height);
      int left = 0;
      int top = 0;
      const Image image = host.Look(left, top);
      fault = QuartersFault(image, left + x, top + port.bounds.bottom - y - height, width, height);
      return fault.empty();
    });
    EXPECT_EQ(fault, "");
  }

  /// Draws so many pictures that no stock of buffers lasts.
  void DrawMany(const TestContext& context) const {
    for (int i = 0; i < 50; ++i) {
      DrawQuarters(port.bounds.right, port.bounds.bottom);
      aglSwapBuffers(context.context);
    }
  }

  void ExpectPicturesInTheirPlaceAtEverySize() {
    host.Show();
    const TestContext context(&port);
    ASSERT_TRUE(aglSetCurrentContext(context.context));
    DrawAndExpect(context, 0, 0, 64, 48);
    context.SetRect(7, 5, 30, 20);
    ASSERT_TRUE(aglUpdateContext(context.context));
    DrawAndExpect(context, 7, 5, 30, 20);
    for (const auto& [width, height] : {std::pair{200, 100}, {32, 20}}) {
      host.Resize(width, height);
      context.SetRect(0, 0, width, height);
      ASSERT_TRUE(aglUpdateContext(context.context));
      DrawAndExpect(context, 0, 0, width, height);
    }
    EXPECT_EQ(log.Take(), std::vector<std::string>());
  }

  void ExpectNothingLeftBehind() {
    host.Show();
    std::ptrdiff_t files = 0;
    for (int i = 0; i < 20; ++i) {
      const TestContext context(&port);
      ASSERT_TRUE(aglSetCurrentContext(context.context));
      DrawMany(context);
      if (i == 5) files = OpenFiles();
    }
    EXPECT_LE(OpenFiles(), files);
    EXPECT_LE(MappedPictures(), 4);
  }

  Host host;
  HalvenorPort& port = host.port;
};

} // namespace halvenor
