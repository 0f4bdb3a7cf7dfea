// What a window of an X server shows.
#pragma once

#include "tests/platform/gl_fixture.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace halvenor {

/// The top-left part of a window that is visible. All of it must lie on the screen.
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

} // namespace halvenor
