// Reads drawn strings back from recorded display-list calls.
#pragma once

#include "tests/stand_ins/call_log.h"

#include <string>
#include <vector>

namespace halvenor::stand_ins {

struct DrawnText {
  double x;
  double y;
  std::string text;
};

/// One entry per raster position that glyphs were drawn from; `base` is the font's first list.
inline std::vector<DrawnText> DrawnTexts(const std::vector<Call>& calls, double base) {
  std::vector<DrawnText> texts;
  for (const Call& call : calls) {
    if (call.function == "glRasterPos3f") {
      texts.push_back({call.arguments[0], call.arguments[1], ""});
    } else if (call.function == "glCallList" && !texts.empty()) {
      const int character = static_cast<int>(call.arguments[0] - base);
      texts.back().text += static_cast<char>(character);
    }
  }
  return texts;
}

} // namespace halvenor::stand_ins
