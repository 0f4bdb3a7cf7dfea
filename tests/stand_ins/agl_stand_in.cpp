#include "tests/stand_ins/agl_stand_in.h"

#include "tests/stand_ins/agl_objects.h"

#include <algorithm>

namespace halvenor::stand_ins {
namespace {

// Never destroyed: threads may still draw while the program ends.
auto& formats = *new Objects<HalvenorPixelFormat>;
auto& contexts = *new Objects<HalvenorContext>;
auto& pbuffers = *new Objects<HalvenorPBuffer>;

std::mutex ports_mutex;
std::vector<GrafPtr> ports;

Relaxed<int> last_thread{0};
Relaxed<int> epoch{0}; // what threads remember from before a Reset does not count

constexpr char kElsewhere[] = "is current on another thread";
constexpr char kDestroyed[] = "was destroyed before";

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

template <class Object>
void ReportMisuseOf(Function function, Object* object, const char* what) {
  ReportMisuse(std::string(NameOf(function)) + ": " + Show(object).first + " " + what);
}

GLboolean Refuse(GLenum error) {
  GLenum& pending = ThisThread().error;
  if (pending == AGL_NO_ERROR) pending = error;
  return GL_FALSE;
}

bool IsUsable(Function function, AGLContext context) {
  if (context == nullptr) return false;
  const int thread = context->current_on;
  const bool isElsewhere = thread != 0 && thread != ThisThread().number;
  if (!context->destroyed && !isElsewhere) return true;
  ReportMisuseOf(function, context, context->destroyed ? kDestroyed : kElsewhere);
  return false;
}

/// Whether nothing keeps `context` from being used, but for a fault, which leaves its error.
bool MayGoOn(Function function, AGLContext context, unsigned fault) {
  if (!IsUsable(function, context) && fault == 0) fault = AGL_BAD_CONTEXT;
  return fault == 0 || Refuse(fault) == GL_TRUE;
}

/// Begins a function of `context`; whether it may go on.
template <class... Values>
bool BeginWith(Function function, AGLContext context, Values... values) {
  return MayGoOn(function, context, Begin(function, context, values...));
}

/// What keeps `pbuffer` from being used on `context`.
GLenum FaultOf(Function function, AGLContext context, AGLPbuffer pbuffer) {
  if (context == nullptr) return AGL_BAD_CONTEXT;
  if (pbuffer == nullptr) return AGL_BAD_VALUE;
  if (!pbuffer->destroyed) return pbuffer->context == context ? AGL_NO_ERROR : AGL_BAD_CONTEXT;
  ReportMisuseOf(function, pbuffer, kDestroyed);
  return AGL_BAD_VALUE;
}

/// Makes `context` (null: none) current on this thread; a misuse when another thread has it.
void Switch(Function function, AGLContext context) {
  ThreadState& thread = ThisThread();
  if (thread.current != nullptr) thread.current->current_on = 0;
  thread.current = context;
  if (context != nullptr && !context->current_on.Replace(0, thread.number))
    ReportMisuseOf(function, context, kElsewhere);
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

std::pair<std::string, double> Show(GrafPtr port) {
  if (port == nullptr) return {"null", 0.0};
  const std::lock_guard lock(ports_mutex);
  const auto found = std::find(ports.begin(), ports.end(), port);
  const auto number = found - ports.begin() + 1;
  if (found == ports.end()) ports.push_back(port);
  return {"port " + std::to_string(number), static_cast<double>(number)};
}

std::int64_t LiveContexts() {
  return contexts.Live();
}
std::int64_t LivePixelFormats() {
  return formats.Live();
}
std::int64_t LivePBuffers() {
  return pbuffers.Live();
}
int CurrentContextNumber() {
  const AGLContext current = ThisThread().current;
  return current == nullptr ? 0 : current->number;
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
  for (; *attributes != AGL_NONE; ++attributes)
    shown.Add(NumberText(*attributes), *attributes);
  if (Recording()) Record(Function::aglChoosePixelFormat, std::move(shown));
  if (fault == 0) return formats.Make();
  Refuse(fault);
  return nullptr;
}

void aglDestroyPixelFormat(AGLPixelFormat format) {
  (void)Begin(Function::aglDestroyPixelFormat, format);
  if (format == nullptr) return;
  if (format->destroyed) ReportMisuseOf(Function::aglDestroyPixelFormat, format, kDestroyed);
  formats.End(format);
}

AGLContext aglCreateContext(AGLPixelFormat format, AGLContext share) {
  GLenum error = Begin(Function::aglCreateContext, format, share);
  if (error == 0 && format == nullptr) error = AGL_BAD_PIXELFORMAT;
  if (error == 0) return contexts.Make();
  Refuse(error);
  return nullptr;
}

GLboolean aglDestroyContext(AGLContext context) {
  if (!BeginWith(Function::aglDestroyContext, context)) return GL_FALSE;
  if (context->live_pbuffers != 0)
    ReportMisuseOf(Function::aglDestroyContext, context, "still has pbuffers");
  if (ThisThread().current == context) Switch(Function::aglDestroyContext, nullptr);
  contexts.End(context);
  return GL_TRUE;
}

GLboolean aglSetInteger(AGLContext context, GLenum parameter, const GLint* values) {
  const auto begin = [&](auto... shown) {
    return BeginWith(Function::aglSetInteger, context, parameter, shown...);
  };
  if (parameter != AGL_BUFFER_RECT) return begin(values[0]) ? GL_TRUE : GL_FALSE;
  if (!begin(values[0], values[1], values[2], values[3])) return GL_FALSE;
  FollowPort(context);
  return GL_TRUE;
}

GLboolean aglEnable(AGLContext context, GLenum parameter) {
  return BeginWith(Function::aglEnable, context, parameter) ? GL_TRUE : GL_FALSE;
}

GLboolean aglSetDrawable(AGLContext context, GrafPtr port) {
  if (!BeginWith(Function::aglSetDrawable, context, port)) return GL_FALSE;
  if (port != nullptr && port != context->last_port) {
    context->last_port = port;
    FollowPort(context);
  }
  context->port = port;
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
  if (ThisThread().current == context) {
    HandOverFrame(*context);
  } else {
    Refuse(AGL_BAD_CONTEXT);
  }
}

GLboolean aglCreatePBuffer(GLint width, GLint height, GLenum target, GLenum internalFormat,
                           GLint maxLevel, AGLPbuffer* pbuffer) {
  const unsigned fault =
      Begin(Function::aglCreatePBuffer, width, height, target, internalFormat, maxLevel);
  *pbuffer = nullptr;
  if (fault != 0) return Refuse(fault);
  const AGLContext context = ThisThread().current;
  if (context == nullptr) return Refuse(AGL_BAD_CONTEXT);
  *pbuffer = pbuffers.Make();
  (*pbuffer)->context = context;
  context->live_pbuffers.Add(1);
  return GL_TRUE;
}

GLboolean aglDestroyPBuffer(AGLPbuffer pbuffer) {
  GLenum error = Begin(Function::aglDestroyPBuffer, pbuffer);
  const AGLContext context = ThisThread().current;
  if (error == 0) error = FaultOf(Function::aglDestroyPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  pbuffers.End(pbuffer);
  context->live_pbuffers.Add(-1);
  return GL_TRUE;
}

GLboolean aglTexImagePBuffer(AGLContext context, AGLPbuffer pbuffer, GLint source) {
  if (!BeginWith(Function::aglTexImagePBuffer, context, pbuffer, static_cast<GLenum>(source)))
    return GL_FALSE;
  const GLenum error = FaultOf(Function::aglTexImagePBuffer, context, pbuffer);
  return error == AGL_NO_ERROR ? GLboolean{GL_TRUE} : Refuse(error);
}

GLboolean aglSetPBuffer(AGLContext context, AGLPbuffer pbuffer, GLint face, GLint level,
                        GLint screen) {
  if (!BeginWith(Function::aglSetPBuffer, context, pbuffer, face, level, screen)) return GL_FALSE;
  const GLenum error = FaultOf(Function::aglSetPBuffer, context, pbuffer);
  if (error != AGL_NO_ERROR) return Refuse(error);
  if (ThisThread().current != context) Switch(Function::aglSetPBuffer, context);
  context->port = nullptr;
  return GL_TRUE;
}

GLint aglGetVirtualScreen(AGLContext context) {
  (void)BeginWith(Function::aglGetVirtualScreen, context);
  return 0;
}

GLenum aglGetError(void) {
  (void)Begin(Function::aglGetError);
  return std::exchange(ThisThread().error, GLenum{AGL_NO_ERROR});
}

const GLubyte* aglErrorString(GLenum code) {
  (void)Begin(Function::aglErrorString, static_cast<GLint>(code));
  thread_local std::string text;
  text = code == AGL_NO_ERROR ? "no error" : "AGL error " + std::to_string(code);
  return reinterpret_cast<const GLubyte*>(text.c_str());
}

void GetFNum(const unsigned char*, int16_t* family) {
  *family = Begin(Function::GetFNum) != 0 ? std::int16_t{0} : kFontFamily;
}

GLboolean aglUseFont(AGLContext context, GLint family, GLint style, GLint size, GLint first,
                     GLint count, GLint base) {
  if (!BeginWith(Function::aglUseFont, context, family, style, size, first, count, base))
    return GL_FALSE;
  if (ThisThread().current != context) return Refuse(AGL_BAD_CONTEXT);
  return size >= 1 && size <= 512 ? GLboolean{GL_TRUE} : Refuse(AGL_BAD_FONT);
}
