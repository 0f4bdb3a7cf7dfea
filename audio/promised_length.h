// How much sound a medium promises, and how much of that is missing.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace halvenor {

/// Sound that a medium promises but does not have: it is cut off or damaged. Seconds.
struct MissingSound {
  double promised;
  double missing;
};

/// What of the promise was not decoded; none if hardly anything: less than half a second or 1 %.
std::optional<MissingSound> FindMissingSound(double promised, double decoded);

/// One line about the medium of that name.
std::string DescribeMissingSound(const std::string& name, const MissingSound& missing);

/// Seconds of sound that the header of a WAVE, AIFF, AU or MP3 file (with a Xing or Info frame)
/// gives, whether or not the file has them: GStreamer reports only what is there. None for other
/// kinds, for what is no regular file and for headers without a length. Any thread.
std::optional<double> PromisedByHeader(const std::filesystem::path& file);

} // namespace halvenor
