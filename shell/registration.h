// How the plug-in makes itself known to a host.
#pragma once

#include "protocol/records.h"

namespace halvenor {

/// Registers with the host of `message`, then makes the renderer and the lock. Returns the host's
/// status. A second call registers again and keeps what the first has made.
Status RegisterVisualPlugin(const PluginInitMessage* message);

/// The handler that is registered. A host sends its messages from one thread at a time, or from
/// inside a request. `refCon` is the record's address, as handed back on 'init'.
Status VisualPluginHandler(FourCharCode message, VisualMessage* record, void* refCon);

/// Stores the four bytes of a version.
void SetNumVersion(NumVersion* version, std::uint8_t major, std::uint8_t minorAndFix,
                   std::uint8_t stage, std::uint8_t nonRelease);

} // namespace halvenor
