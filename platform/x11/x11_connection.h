// A connection to an X server on which errors are survived.
#pragma once

#include <memory>
#include <string>

struct _XDisplay; // NOLINT(bugprone-reserved-identifier): Xlib's own name

namespace halvenor::agl {

/// This layer's own connection. Its errors reach neither the host's X error handler nor Xlib's,
/// which ends the process: windows belong to hosts and may vanish at any moment. Several threads
/// may use it. When the server itself is gone, Xlib ends the process as it does for the host's
/// connection.
class X11Connection {
public:
  /// To the display called `name`, null for $DISPLAY. Null when there is no connection.
  static std::unique_ptr<X11Connection> Open(const char* name);
  /// The full name that `name` stands for.
  static std::string FullName(const char* name);

  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  [[nodiscard]] _XDisplay* Get() const { return display_; }
  /// Waits until the server has done all that was asked of it; false when any of it failed since
  /// the last call.
  bool Settle();

private:
  struct ErrorSink;

  explicit X11Connection(_XDisplay* display);

  _XDisplay* display_;
  std::unique_ptr<ErrorSink> sink_;
};

} // namespace halvenor::agl
