// Draws frames with libprojectM and writes them to standard output as raw RGBA, so that bench/peers
// can count them as it counts everybody's.
//
// usage: projectm-frames WIDTH HEIGHT FRAMES PRESET... < 16-bit stereo samples at 44.1 kHz
//
// Each preset draws an equal share of the frames, with 735 samples (1/60 s) before each frame.
#include <libprojectM/projectM.hpp>

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kSamplesPerFrame = 735;

[[noreturn]] void Fail(const char* reason) {
  std::fprintf(stderr, "projectm-frames: %s\n", reason);
  std::exit(1);
}

/// Makes an OpenGL context current whose default frame buffer is an offscreen surface.
void MakeContext(int width, int height) {
  EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
  if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
    Fail("no EGL display");
  const std::array<EGLint, 13> wanted{EGL_SURFACE_TYPE,
                                      EGL_PBUFFER_BIT,
                                      EGL_RENDERABLE_TYPE,
                                      EGL_OPENGL_BIT,
                                      EGL_RED_SIZE,
                                      8,
                                      EGL_GREEN_SIZE,
                                      8,
                                      EGL_BLUE_SIZE,
                                      8,
                                      EGL_ALPHA_SIZE,
                                      8,
                                      EGL_NONE};
  std::array<EGLConfig, 64> configs{};
  EGLint count = 0;
  eglChooseConfig(display, wanted.data(), configs.data(), static_cast<EGLint>(configs.size()),
                  &count);
  EGLConfig chosen = nullptr;
  for (EGLint i = 0; i < count && chosen == nullptr; ++i) {
    EGLint red = 0;
    eglGetConfigAttrib(display, configs[static_cast<std::size_t>(i)], EGL_RED_SIZE, &red);
    if (red == 8) chosen = configs[static_cast<std::size_t>(i)];
  }
  if (chosen == nullptr) Fail("no EGL config with 8 bits a color");
  const std::array<EGLint, 5> size{EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  EGLSurface surface = eglCreatePbufferSurface(display, chosen, size.data());
  eglBindAPI(EGL_OPENGL_API);
  const std::array<EGLint, 7> version{EGL_CONTEXT_MAJOR_VERSION,
                                      3,
                                      EGL_CONTEXT_MINOR_VERSION,
                                      3,
                                      EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                      EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                      EGL_NONE};
  EGLContext context = eglCreateContext(display, chosen, EGL_NO_CONTEXT, version.data());
  if (surface == EGL_NO_SURFACE || context == EGL_NO_CONTEXT ||
      !eglMakeCurrent(display, surface, surface, context))
    Fail("no OpenGL context");
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 5) Fail("usage: projectm-frames WIDTH HEIGHT FRAMES PRESET...");
  const int width = std::atoi(argv[1]);
  const int height = std::atoi(argv[2]);
  const int frames = std::atoi(argv[3]);
  const int presets = argc - 4;
  MakeContext(width, height);

  projectM::Settings settings;
  settings.windowWidth = width;
  settings.windowHeight = height;
  settings.presetURL = "/nonexistent";
  settings.shuffleEnabled = false;
  settings.presetDuration = 3600;
  projectM visualizer(settings, projectM::FLAG_DISABLE_PLAYLIST_LOAD);
  visualizer.projectM_resetGL(width, height);
  for (int i = 0; i < presets; ++i)
    visualizer.addPresetURL(argv[4 + i], argv[4 + i], RatingList(TOTAL_RATING_TYPES, 3));
  visualizer.setPresetLock(true);

  std::vector<short> samples(2 * kSamplesPerFrame);
  std::vector<unsigned char> picture(std::size_t{4} * static_cast<std::size_t>(width) *
                                     static_cast<std::size_t>(height));
  int preset = -1;
  for (int frame = 0; frame < frames; ++frame) {
    if (const int due = frame * presets / frames; due != preset) {
      preset = due;
      visualizer.selectPreset(static_cast<unsigned>(preset));
      if (visualizer.getErrorLoadingCurrentPreset()) Fail(argv[4 + preset]);
    }
    if (std::fread(samples.data(), 2 * sizeof(short), kSamplesPerFrame, stdin) == 0) break;
    visualizer.pcm()->addPCM16Data(samples.data(), kSamplesPerFrame);
    visualizer.renderFrame();
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, picture.data());
    if (std::fwrite(picture.data(), 1, picture.size(), stdout) != picture.size())
      Fail("standard output does not take the picture");
  }
  std::fflush(stdout);
  std::_Exit(0);
}
