#include "platform/x11/x11_connection.h"

#include "platform/agl_errors.h"

#include <X11/Xlibint.h>

#include <array>
#include <atomic>
#include <cstdio>

namespace halvenor::agl {

struct X11Connection::ErrorSink {
  _XAsyncHandler hook{};
  std::atomic<int> fresh = 0; ///< errors since the connection was last settled
  std::atomic<bool> isLogged = false;

  /// Sees what arrives on the connection before any error handler does.
  static Bool Receive(Display* /*display*/, xReply* reply, char* /*buffer*/, int /*length*/,
                      XPointer self) {
    if (reply->generic.type != X_Error) return False;
    auto* sink = reinterpret_cast<ErrorSink*>(self);
    ++sink->fresh;
    if (!sink->isLogged.exchange(true)) {
      std::array<char, 80> text{};
      std::snprintf(text.data(), text.size(), "X error %u on request %u, window 0x%x",
                    reply->error.errorCode, reply->error.majorCode,
                    static_cast<unsigned>(reply->error.resourceID));
      Log(text.data());
    }
    return True;
  }
};

X11Connection::X11Connection(_XDisplay* display)
    : display_(display), sink_(std::make_unique<ErrorSink>()) {
  LockDisplay(display_);
  sink_->hook.handler = &ErrorSink::Receive;
  sink_->hook.data = reinterpret_cast<XPointer>(sink_.get());
  sink_->hook.next = display_->async_handlers;
  display_->async_handlers = &sink_->hook;
  UnlockDisplay(display_);
}

X11Connection::~X11Connection() {
  XCloseDisplay(display_);
}

std::unique_ptr<X11Connection> X11Connection::Open(const char* name) {
  XInitThreads();
  if (Display* display = XOpenDisplay(name))
    return std::unique_ptr<X11Connection>(new X11Connection(display));
  Log("no connection to the X display \"" + FullName(name) + "\"");
  return nullptr;
}

std::string X11Connection::FullName(const char* name) {
  return XDisplayName(name);
}

bool X11Connection::Settle() {
  XSync(display_, False);
  return sink_->fresh.exchange(0) == 0;
}

} // namespace halvenor::agl
