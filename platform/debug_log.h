// Where the messages of `DebugStr` go.
#pragma once

#include "platform/export.h"

#include <string_view>

namespace halvenor::debug_log {

/// Receives one message, on the thread that wrote it, possibly while the plug-in's lock is held: it
/// must not send messages and not wait. Messages are UTF-8, as libraries and file names have it,
/// and have no line end; but any byte may come along, and a long message may be cut within a
/// character: `Printable` makes them fit to be shown.
using Receiver = void (*)(void* refCon, std::string_view message);

/// From now on messages go to `receiver`; null puts back standard error, one printable line per
/// message with the program's name. When this returns, the previous receiver is not running and
/// will not be called again. Any thread but from inside a receiver.
HALVENOR_PLATFORM void SetReceiver(Receiver receiver, void* refCon);

} // namespace halvenor::debug_log
