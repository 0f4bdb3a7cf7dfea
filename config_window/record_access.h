// The plug-in's record as this module touches it: inside the guard, and for no longer than it takes
// to copy the block.
#pragma once

#include "platform/guard.h"
#include "protocol/configuration_entries.h"
#include "protocol/visual_plugin_data.h"

#include <optional>

namespace halvenor {

/// The host's thread only.
class RecordAccess {
public:
  void SetCallback(ConfigurationCallback callback) { callback_ = callback; }

  /// Lets `edit` change the block and returns what it is then; nothing when there is no record. A
  /// frame may have to be waited for, so do much at once and not often. `edit` must not wait.
  template <typename Edit>
  std::optional<Settings> Change(Edit&& edit) {
    const RecordGuard guard;
    if (!guard.Record()) return std::nullopt;
    edit(guard.Record()->settings);
    return guard.Record()->settings;
  }

  std::optional<Settings> Read() {
    return Change([](const Settings&) {});
  }

  /// Asks the plug-in for `code`; its status, or nothing when there is no record.
  std::optional<Status> Ask(int code) {
    const RecordGuard guard;
    if (!guard.Record() || !callback_) return std::nullopt;
    return callback_(guard.Record(), code);
  }

private:
  ConfigurationCallback callback_ = nullptr;
};

} // namespace halvenor
