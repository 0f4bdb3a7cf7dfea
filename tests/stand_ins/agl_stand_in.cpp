#include "tests/stand_ins/agl_stand_in.h"

#include "tests/stand_ins/agl_objects.h"

#include <algorithm>

namespace halvenor::stand_ins {
namespace {

std::mutex ports_mutex;
std::vector<GrafPtr> ports;

Relaxed<int> last_thread{0};
Relaxed<int> epoch{0}; // what threads remember from before a Reset does not count

struct ThreadState {
  int number = last_thread.Add(1) + 1;
  int seen_epoch = epoch;
  AGLContext current = nullptr;
  GLenum error = AGL_NO_ERROR;

  ThreadState() = default;
  ThreadState(const ThreadState&) = delete;
  ThreadState& operator=(const ThreadState&) = delete;
  ~ThreadState() {
    if (current == nullptr || seen_epoch != epoch) return;
    ReportMisuse("a thread ended with " + Show(current).first + " current");
    current->current_on = 0;
  }
};

ThreadState& ThisThread() {
  thread_local ThreadState state;
  if (std::exchange(state.seen_epoch, epoch) != epoch) {
    state.current = nullptr;
    state.error = AGL_NO_ERROR;
  }
  return state;
}

constexpr char kElsewhere[] = "is current on another thread";

bool IsUsable(Function function, AGLContext context) {
  if (context == nullptr) return false;
  const int thread = context->current_on;
  const char* fault = nullptr;
  if (thread != 0 && thread != ThisThread().number) fault = kElsewhere;
  if (context->destroyed) fault = "was destroyed before";
  if (fault != nullptr) ReportMisuseOf(function, Show(context).first, fault);
  return fault == nullptr;
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

void ReportMisuseOf(Function function, const std::string& object, const char* what) {
  ReportMisuse(std::string(NameOf(function)) + ": " + object + " " + what);
}

bool MayGoOn(Function function, AGLContext context, unsigned fault) {
  if (!IsUsable(function, context) && fault == 0) fault = AGL_BAD_CONTEXT;
  return fault == 0 || Refuse(fault) == GL_TRUE;
}

std::pair<std::string, double> Show(GrafPtr port) {
  if (port == nullptr) return {"null", 0.0};
  const std::lock_guard lock(ports_mutex);
  const auto found = std::find(ports.begin(), ports.end(), port);
  const auto number = found - ports.begin() + 1;
  if (found == ports.end()) ports.push_back(port);
  return {"port " + std::to_string(number), static_cast<double>(number)};
}

void Switch(Function function, AGLContext context) {
  ThreadState& thread = ThisThread();
  if (thread.current != nullptr) thread.current->current_on = 0;
  thread.current = context;
  if (context != nullptr && !context->current_on.Replace(0, thread.number))
    ReportMisuseOf(function, Show(context).first, kElsewhere);
}

namespace {

/// What may stand in the list for a format or be set, and how many values follow.
struct Parameter {
  GLenum name;
  int values;
};
constexpr Parameter kAttributes[] = {
    {AGL_RGBA, 0},       {AGL_DOUBLEBUFFER, 0}, {AGL_RED_SIZE, 1},      {AGL_ALPHA_SIZE, 1},
    {AGL_DEPTH_SIZE, 1}, {AGL_NO_RECOVERY, 0},  {AGL_CLOSEST_POLICY, 0}};

// Shows the list and says whether all of its attributes are known.
bool ReadAttributes(const GLint* attributes, Arguments& shown) {
  const auto add = [&shown](GLint number) { shown.Add(NumberText(number), number); };
  while (attributes != nullptr && *attributes != AGL_NONE) {
    const auto* known =
        std::find_if(std::begin(kAttributes), std::end(kAttributes), [=](const Parameter& one) {
          return one.name == static_cast<GLenum>(*attributes);
        });
    add(*attributes++);
    if (known == std::end(kAttributes)) return false;
    for (int i = 0; i < known->values; ++i)
      add(*attributes++);
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

} // namespace

std::int64_t LiveContexts() {
  return contexts.Live();
}
std::int64_t LivePixelFormats() {
  return formats.Live();
}
int CurrentContextNumber() {
  return CurrentContext() == nullptr ? 0 : CurrentContext()->number;
}

void ResetAgl() {
  epoch.Add(1);
  contexts.Reset();
  formats.Reset();
  pbuffers.Reset();
  const std::lock_guard lock(ports_mutex);
  ports.clear();
}

} // namespace halvenor::stand_ins

using namespace halvenor::stand_ins;

AGLPixelFormat aglChoosePixelFormat(const void*, GLint, const GLint* attributes) {
  const unsigned fault = Enter(Function::aglChoosePixelFormat);
  Arguments shown;
  const bool known = ReadAttributes(attributes, shown);
  if (Recording()) Record(Function::aglChoosePixelFormat, std::move(shown));
  if (known && fault == 0) return formats.Make();
  LeaveError(fault != 0 ? fault : GLenum{AGL_BAD_ATTRIBUTE});
  return nullptr;
}

void aglDestroyPixelFormat(AGLPixelFormat format) {
  (void)Begin(Function::aglDestroyPixelFormat, format);
  if (format != nullptr && !formats.End(format))
    ReportMisuseOf(Function::aglDestroyPixelFormat, Show(format).first, "was destroyed before");
}

AGLContext aglCreateContext(AGLPixelFormat format, AGLContext share) {
  GLenum error = Begin(Function::aglCreateContext, format, share);
  const bool spent = format != nullptr && format->destroyed;
  if (spent) ReportMisuseOf(Function::aglCreateContext, Show(format).first, "was destroyed before");
  if (error == 0 && share != nullptr) error = AGL_BAD_CONTEXT;
  if (error == 0 && (format == nullptr || spent)) error = AGL_BAD_PIXELFORMAT;
  if (error == 0) return contexts.Make();
  LeaveError(error);
  return nullptr;
}

GLboolean aglDestroyContext(AGLContext context) {
  if (!BeginWith(Function::aglDestroyContext, context)) return GL_FALSE;
  if (context->live_pbuffers != 0)
    ReportMisuseOf(Function::aglDestroyContext, Show(context).first, "still has pbuffers");
  if (CurrentContext() == context) Switch(Function::aglDestroyContext, nullptr);
  ForgetGlState();
  contexts.End(context);
  return GL_TRUE;
}

GLboolean aglSetInteger(AGLContext context, GLenum parameter, const GLint* values) {
  const bool named = parameter == AGL_BUFFER_NAME;
  const bool rect = parameter == AGL_BUFFER_RECT;
  unsigned fault = 0;
  if (rect && values != nullptr) {
    fault = Begin(Function::aglSetInteger, context, parameter, values[0], values[1], values[2],
                  values[3]);
  } else {
    fault = Begin(Function::aglSetInteger, context, parameter, values == nullptr ? 0 : values[0]);
  }
  if (!MayGoOn(Function::aglSetInteger, context, fault)) return GL_FALSE;
  if (!named && !rect) return Refuse(AGL_BAD_ENUM);
  if (values == nullptr || (rect && (values[2] < 0 || values[3] < 0))) return Refuse(AGL_BAD_VALUE);
  if (rect) FollowPort(context);
  return GL_TRUE;
}

GLboolean aglEnable(AGLContext context, GLenum parameter) {
  if (!BeginWith(Function::aglEnable, context, parameter)) return GL_FALSE;
  return parameter == AGL_BUFFER_RECT ? GLboolean{GL_TRUE} : Refuse(AGL_BAD_ENUM);
}

GLboolean aglSetDrawable(AGLContext context, GrafPtr port) {
  if (!BeginWith(Function::aglSetDrawable, context, port)) return GL_FALSE;
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
  const unsigned fault = Begin(Function::aglSetCurrentContext, context);
  if (context == nullptr && fault != 0) return Refuse(fault);
  if (context != nullptr && !MayGoOn(Function::aglSetCurrentContext, context, fault))
    return GL_FALSE;
  Switch(Function::aglSetCurrentContext, context);
  return GL_TRUE;
}

GLboolean aglUpdateContext(AGLContext context) {
  if (!BeginWith(Function::aglUpdateContext, context)) return GL_FALSE;
  FollowPort(context);
  return GL_TRUE;
}

void aglSwapBuffers(AGLContext context) {
  if (!BeginWith(Function::aglSwapBuffers, context)) return;
  if (CurrentContext() == context) {
    HandOverFrame(*context);
  } else {
    LeaveError(AGL_BAD_CONTEXT);
  }
}

GLenum aglGetError(void) {
  (void)Begin(Function::aglGetError);
  return std::exchange(ThisThread().error, GLenum{AGL_NO_ERROR});
}

const GLubyte* aglErrorString(GLenum code) {
  (void)Begin(Function::aglErrorString, static_cast<GLint>(code));
  static constexpr const char* kTexts[] = {"invalid attribute", "invalid pixel format",
                                           "invalid context",   "invalid drawable",
                                           "invalid value",     "invalid enumerant",
                                           "invalid font",      "no display",
                                           "no OpenGL",         "no buffer"};
  const char* text = code == AGL_NO_ERROR ? "no error" : "unknown error";
  if (code >= AGL_BAD_ATTRIBUTE && code <= AGL_NO_BUFFER) text = kTexts[code - AGL_BAD_ATTRIBUTE];
  return reinterpret_cast<const GLubyte*>(text);
}

void GetFNum(const unsigned char*, int16_t* family) {
  *family = Begin(Function::GetFNum) != 0 ? std::int16_t{0} : kFontFamily;
}

GLboolean aglUseFont(AGLContext context, GLint family, GLint style, GLint size, GLint first,
                     GLint count, GLint base) {
  if (!BeginWith(Function::aglUseFont, context, family, style, size, first, count, base))
    return GL_FALSE;
  if (CurrentContext() != context) return Refuse(AGL_BAD_CONTEXT);
  if (family != kFontFamily || style != 0 || size < 1 || size > 512) return Refuse(AGL_BAD_FONT);
  const bool legal = first >= 0 && count >= 0 && count <= 256 && first <= 256 - count && base > 0;
  return legal ? GLboolean{GL_TRUE} : Refuse(AGL_BAD_VALUE);
}
