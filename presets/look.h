// The look: the fields of the settings block that a preset holds. The display options (frame rate,
// full-screen size, titles, labels, font, frame delay) and the autopilot are no part of it.
#pragma once

#include "protocol/settings.h"

namespace halvenor {

/// Whether two blocks look the same, flags compared as on or off.
bool SameLook(const Settings& one, const Settings& other);

/// Copies the look of `from`; everything else in `to` stays.
void CopyLook(const Settings& from, Settings& to);

/// The look between `from` (`part` 0) and `to` (`part` 1); what is no part of the look is `from`'s.
/// Numbers and colors go in a straight line, an angle the shorter way round, and what cannot lie
/// between two values changes half-way.
Settings BlendLooks(const Settings& from, const Settings& to, double part);

/// The look of `look` with every value in its field's range, the rest as of a first run. Stored
/// blocks may hold anything; what a preset keeps must be readable again.
Settings TidyLook(const Settings& look);

} // namespace halvenor
