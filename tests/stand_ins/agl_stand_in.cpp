#include "tests/stand_ins/agl_stand_in.h"

#include "tests/stand_ins/agl_objects.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <utility>

using halvenor::stand_ins::Function;

struct HalvenorPixelFormat {
  int number = 0;
  std::atomic<bool> destroyed{false};
};

namespace halvenor::stand_ins {
namespace {

// Objects stay in memory after their end, until Reset, so that a later use is told and not a crash.
struct Objects {
  std::mutex mutex;
  std::vector<std::unique_ptr<HalvenorContext>> contexts;
  std::vector<std::unique_ptr<HalvenorPixelFormat>> formats;
  std::vector<GrafPtr> ports;
};

Objects& TheObjects() {
  static Objects& objects = *new Objects;
  return objects;
}

std::atomic<std::int64_t> live_contexts{0};
std::atomic<std::int64_t> live_formats{0};
std::atomic<int> last_thread{0};
std::atomic<int> epoch{0}; // what threads remember from before a Reset does not count

struct ThreadState {
  int number = last_thread.fetch_add(1, std::memory_order_relaxed) + 1;
  int seen_epoch = epoch.load(std::memory_order_relaxed);
  AGLContext current = nullptr;
  GLenum error = AGL_NO_ERROR;

  ThreadState() = default;
  ThreadState(const ThreadState&) = delete;
  ThreadState& operator=(const ThreadState&) = delete;
  ~ThreadState() {
    if (current == nullptr || seen_epoch != epoch.load(std::memory_order_relaxed)) return;
    ReportMisuse("a thread ended with context " + std::to_string(current->number) + " current");
    current->current_on.store(0, std::memory_order_relaxed);
  }
};

ThreadState& ThisThread() {
  thread_local ThreadState state;
  const int now = epoch.load(std::memory_order_relaxed);
  if (state.seen_epoch != now) {
    state.seen_epoch = now;
    state.current = nullptr;
    state.error = AGL_NO_ERROR;
  }
  return state;
}

bool Usable(Function function, AGLContext context) {
  if (context == nullptr) return false;
  if (context->destroyed.load(std::memory_order_relaxed)) {
    ReportContextMisuse(function, context, "was destroyed before");
    return false;
  }
  const int thread = context->current_on.load(std::memory_order_relaxed);
  if (thread != 0 && thread != ThisThread().number) {
    ReportContextMisuse(function, context, "is current on another thread");
    return false;
  }
  return true;
}

} // namespace

AGLContext CurrentContext() {
  return ThisThread().current;
}

void LeaveError(GLenum error) {
  GLenum& pending = ThisThread().error;
  if (pending == AGL_NO_ERROR) pending = error;
}

GLboolean Refuse(GLenum error) {
  LeaveError(error);
  return GL_FALSE;
}

void ReportContextMisuse(Function function, const HalvenorContext* context, const char* what) {
  ReportMisuse(std::string(NameOf(function)) + ": context " + std::to_string(context->number) +
               " " + what);
}

bool MayGoOn(Function function, AGLContext context, unsigned fault) {
  const bool usable = Usable(function, context);
  if (fault != 0 || !usable) LeaveError(fault != 0 ? fault : GLenum{AGL_BAD_CONTEXT});
  return fault == 0 && usable;
}

int NumberOf(AGLContext context) {
  return context == nullptr ? 0 : context->number;
}
int NumberOf(AGLPixelFormat format) {
  return format == nullptr ? 0 : format->number;
}

int NumberOf(GrafPtr port) {
  if (port == nullptr) return 0;
  Objects& objects = TheObjects();
  const std::lock_guard lock(objects.mutex);
  const auto found = std::find(objects.ports.begin(), objects.ports.end(), port);
  const auto number = static_cast<int>(found - objects.ports.begin()) + 1;
  if (found == objects.ports.end()) objects.ports.push_back(port);
  return number;
}

void Switch(Function function, AGLContext context) {
  ThreadState& thread = ThisThread();
  if (thread.current != nullptr) thread.current->current_on.store(0, std::memory_order_relaxed);
  thread.current = context;
  int nobody = 0;
  if (context != nullptr && !context->current_on.compare_exchange_strong(
                                nobody, thread.number, std::memory_order_relaxed)) {
    ReportContextMisuse(function, context, "is current on another thread");
  }
}

namespace {

struct Attribute {
  GLint name;
  int values;
};
constexpr Attribute kAttributes[] = {
    {AGL_RGBA, 0},       {AGL_DOUBLEBUFFER, 0}, {AGL_RED_SIZE, 1},      {AGL_ALPHA_SIZE, 1},
    {AGL_DEPTH_SIZE, 1}, {AGL_NO_RECOVERY, 0},  {AGL_CLOSEST_POLICY, 0}};

struct Parameter {
  GLenum name;
  const char* text;
  int values;
};
constexpr Parameter kParameters[] = {{AGL_BUFFER_RECT, "AGL_BUFFER_RECT", 4},
                                     {AGL_BUFFER_NAME, "AGL_BUFFER_NAME", 1}};

const Parameter* FindParameter(GLenum name) {
  const auto* found = std::find_if(std::begin(kParameters), std::end(kParameters),
                                   [name](const Parameter& known) { return known.name == name; });
  return found == std::end(kParameters) ? nullptr : found;
}

// Records the list and says whether all of its attributes are known.
bool ReadAttributes(const GLint* attributes, Line& line) {
  while (attributes != nullptr && *attributes != AGL_NONE) {
    const auto* known =
        std::find_if(std::begin(kAttributes), std::end(kAttributes),
                     [=](const Attribute& attribute) { return attribute.name == *attributes; });
    line << *attributes;
    if (known == std::end(kAttributes)) return false;
    ++attributes;
    for (int i = 0; i < known->values; ++i)
      line << *attributes++;
  }
  return attributes != nullptr;
}

bool IsDrawable(const HalvenorPort& port) {
  switch (port.kind) {
  case kHalvenorPortX11Window:
    return port.x11Window != 0;
  case kHalvenorPortWaylandSurface:
    return port.waylandDisplay != nullptr && port.waylandSurface != nullptr;
  case kHalvenorPortOffscreen:
    return true;
  }
  return false;
}

// Only where the host's thread calls: in a frame the host may be changing the bounds.
void FollowPort(AGLContext context) {
  if (context->last_port != nullptr) context->port_bounds = context->last_port->bounds;
}

void HandOverFrame(HalvenorContext& context) {
  const GrafPtr port = context.port;
  if (port == nullptr || port->kind != kHalvenorPortOffscreen) return;
  const std::int32_t width = context.port_bounds.right - context.port_bounds.left;
  const std::int32_t height = context.port_bounds.bottom - context.port_bounds.top;
  if (port->frameFinished == nullptr || width <= 0 || height <= 0) return;
  const std::ptrdiff_t stride = std::ptrdiff_t{4} * width;
  context.frame.resize(static_cast<std::size_t>(stride * height));
  const HalvenorFrame frame{context.frame.data(), stride, width, height};
  port->frameFinished(port->frameRefCon, &frame);
}

const char* TextOf(GLenum code) {
  struct Text {
    GLenum code;
    const char* text;
  };
  static constexpr Text kTexts[] = {{AGL_NO_ERROR, "no error"},
                                    {AGL_BAD_ATTRIBUTE, "invalid attribute"},
                                    {AGL_BAD_PIXELFORMAT, "invalid pixel format"},
                                    {AGL_BAD_CONTEXT, "invalid context"},
                                    {AGL_BAD_DRAWABLE, "invalid drawable"},
                                    {AGL_BAD_VALUE, "invalid value"},
                                    {AGL_BAD_ENUM, "invalid enumerant"},
                                    {AGL_BAD_FONT, "invalid font"},
                                    {AGL_NO_DISPLAY, "no display"},
                                    {AGL_NO_OPENGL, "no OpenGL"},
                                    {AGL_NO_BUFFER, "no buffer"}};
  for (const Text& known : kTexts) {
    if (known.code == code) return known.text;
  }
  return "unknown error";
}

} // namespace

std::int64_t LiveContexts() {
  return live_contexts.load(std::memory_order_relaxed);
}
std::int64_t LivePixelFormats() {
  return live_formats.load(std::memory_order_relaxed);
}
int CurrentContextNumber() {
  return NumberOf(ThisThread().current);
}

void ResetAgl() {
  epoch.fetch_add(1, std::memory_order_relaxed);
  live_contexts = 0;
  live_formats = 0;
  Objects& objects = TheObjects();
  const std::lock_guard lock(objects.mutex);
  objects.contexts.clear();
  objects.formats.clear();
  objects.ports.clear();
  ResetPBuffers();
}

} // namespace halvenor::stand_ins

using namespace halvenor::stand_ins;

AGLPixelFormat aglChoosePixelFormat(const void*, GLint, const GLint* attributes) {
  const unsigned fault = Enter(Function::aglChoosePixelFormat);
  Line line(Function::aglChoosePixelFormat);
  if (!ReadAttributes(attributes, line) || fault != 0) {
    LeaveError(fault != 0 ? fault : GLenum{AGL_BAD_ATTRIBUTE});
    return nullptr;
  }
  Objects& objects = TheObjects();
  const std::lock_guard lock(objects.mutex);
  HalvenorPixelFormat& format =
      *objects.formats.emplace_back(std::make_unique<HalvenorPixelFormat>());
  format.number = static_cast<int>(objects.formats.size());
  live_formats.fetch_add(1, std::memory_order_relaxed);
  return &format;
}

void aglDestroyPixelFormat(AGLPixelFormat format) {
  (void)Enter(Function::aglDestroyPixelFormat);
  Line(Function::aglDestroyPixelFormat) << format;
  if (format == nullptr) return;
  if (format->destroyed.exchange(true, std::memory_order_relaxed)) {
    ReportMisuse("aglDestroyPixelFormat: format " + std::to_string(format->number) +
                 " was destroyed before");
    return;
  }
  live_formats.fetch_sub(1, std::memory_order_relaxed);
}

AGLContext aglCreateContext(AGLPixelFormat format, AGLContext share) {
  const unsigned fault = Enter(Function::aglCreateContext);
  Line(Function::aglCreateContext) << format << share;
  const bool spent = format != nullptr && format->destroyed.load(std::memory_order_relaxed);
  if (spent) {
    ReportMisuse("aglCreateContext: format " + std::to_string(format->number) +
                 " was destroyed before");
  }
  if (fault != 0 || format == nullptr || spent || share != nullptr) {
    LeaveError(fault != 0         ? fault
               : share != nullptr ? GLenum{AGL_BAD_CONTEXT}
                                  : GLenum{AGL_BAD_PIXELFORMAT});
    return nullptr;
  }
  Objects& objects = TheObjects();
  const std::lock_guard lock(objects.mutex);
  HalvenorContext& context = *objects.contexts.emplace_back(std::make_unique<HalvenorContext>());
  context.number = static_cast<int>(objects.contexts.size());
  live_contexts.fetch_add(1, std::memory_order_relaxed);
  return &context;
}

GLboolean aglDestroyContext(AGLContext context) {
  const unsigned fault = Enter(Function::aglDestroyContext);
  Line(Function::aglDestroyContext) << context;
  if (!MayGoOn(Function::aglDestroyContext, context, fault)) return GL_FALSE;
  if (context->live_pbuffers.load(std::memory_order_relaxed) != 0) {
    ReportContextMisuse(Function::aglDestroyContext, context, "still has pbuffers");
  }
  if (ThisThread().current == context) ThisThread().current = nullptr;
  ForgetGlState();
  context->current_on.store(0, std::memory_order_relaxed);
  context->destroyed.store(true, std::memory_order_relaxed);
  live_contexts.fetch_sub(1, std::memory_order_relaxed);
  return GL_TRUE;
}

GLboolean aglSetInteger(AGLContext context, GLenum parameter, const GLint* values) {
  const unsigned fault = Enter(Function::aglSetInteger);
  const Parameter* known = FindParameter(parameter);
  {
    Line line(Function::aglSetInteger);
    line << context;
    if (known == nullptr) line << static_cast<GLint>(parameter);
    if (known != nullptr) line.Named(known->text, static_cast<GLint>(parameter));
    for (int i = 0; known != nullptr && values != nullptr && i < known->values; ++i) {
      line << values[i];
    }
  }
  if (!MayGoOn(Function::aglSetInteger, context, fault)) return GL_FALSE;
  if (known == nullptr) return Refuse(AGL_BAD_ENUM);
  const bool negative =
      parameter == AGL_BUFFER_RECT && values != nullptr && (values[2] < 0 || values[3] < 0);
  if (values == nullptr || negative) return Refuse(AGL_BAD_VALUE);
  if (parameter == AGL_BUFFER_NAME) {
    context->buffer_name = values[0];
  } else {
    std::copy_n(values, 4, context->buffer_rect.begin());
    FollowPort(context);
  }
  return GL_TRUE;
}

GLboolean aglEnable(AGLContext context, GLenum parameter) {
  const unsigned fault = Enter(Function::aglEnable);
  const bool known = parameter == AGL_BUFFER_RECT;
  if (Line line(Function::aglEnable); known) {
    (line << context).Named("AGL_BUFFER_RECT", AGL_BUFFER_RECT);
  } else {
    line << context << static_cast<GLint>(parameter);
  }
  if (!MayGoOn(Function::aglEnable, context, fault)) return GL_FALSE;
  if (!known) return Refuse(AGL_BAD_ENUM);
  context->buffer_rect_enabled = true;
  return GL_TRUE;
}

GLboolean aglSetDrawable(AGLContext context, GrafPtr port) {
  const unsigned fault = Enter(Function::aglSetDrawable);
  Line(Function::aglSetDrawable) << context << port;
  if (!MayGoOn(Function::aglSetDrawable, context, fault)) return GL_FALSE;
  if (port != nullptr && port != context->last_port) {
    if (!IsDrawable(*port)) return Refuse(AGL_BAD_DRAWABLE);
    context->last_port = port;
    context->port_bounds = port->bounds;
  }
  context->port = port;
  context->pbuffer = nullptr;
  context->target_destroyed = false;
  return GL_TRUE;
}

GLboolean aglSetCurrentContext(AGLContext context) {
  const unsigned fault = Enter(Function::aglSetCurrentContext);
  Line(Function::aglSetCurrentContext) << context;
  if (context == nullptr ? fault != 0 : !MayGoOn(Function::aglSetCurrentContext, context, fault)) {
    if (fault != 0) LeaveError(fault);
    return GL_FALSE;
  }
  Switch(Function::aglSetCurrentContext, context);
  return GL_TRUE;
}

GLboolean aglUpdateContext(AGLContext context) {
  const unsigned fault = Enter(Function::aglUpdateContext);
  Line(Function::aglUpdateContext) << context;
  if (!MayGoOn(Function::aglUpdateContext, context, fault)) return GL_FALSE;
  FollowPort(context);
  return GL_TRUE;
}

void aglSwapBuffers(AGLContext context) {
  const unsigned fault = Enter(Function::aglSwapBuffers);
  Line(Function::aglSwapBuffers) << context;
  if (!MayGoOn(Function::aglSwapBuffers, context, fault)) return;
  if (ThisThread().current != context) {
    LeaveError(AGL_BAD_CONTEXT);
    return;
  }
  HandOverFrame(*context);
}

GLenum aglGetError(void) {
  (void)Enter(Function::aglGetError);
  (void)Line(Function::aglGetError);
  return std::exchange(ThisThread().error, GLenum{AGL_NO_ERROR});
}

const GLubyte* aglErrorString(GLenum code) {
  (void)Enter(Function::aglErrorString);
  Line(Function::aglErrorString) << static_cast<GLint>(code);
  return reinterpret_cast<const GLubyte*>(TextOf(code));
}

void GetFNum(const unsigned char*, int16_t* family) {
  const unsigned fault = Enter(Function::GetFNum);
  (void)Line(Function::GetFNum);
  *family = fault != 0 ? std::int16_t{0} : kFontFamily;
}

GLboolean aglUseFont(AGLContext context, GLint family, GLint style, GLint size, GLint first,
                     GLint count, GLint base) {
  const unsigned fault = Enter(Function::aglUseFont);
  Line(Function::aglUseFont) << context << family << style << size << first << count << base;
  if (!MayGoOn(Function::aglUseFont, context, fault)) return GL_FALSE;
  if (ThisThread().current != context) return Refuse(AGL_BAD_CONTEXT);
  if (family != kFontFamily || style != 0 || size < 1 || size > 512) return Refuse(AGL_BAD_FONT);
  const bool legal = first >= 0 && count >= 0 && count <= 256 && first <= 256 - count && base > 0;
  return legal ? GLboolean{GL_TRUE} : Refuse(AGL_BAD_VALUE);
}
