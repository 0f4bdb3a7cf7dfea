// Lists of extensions as EGL and OpenGL give them.
#pragma once

#include <algorithm>
#include <string_view>

namespace halvenor::agl {

/// Whether `list`, names with blanks between them (null: none), has the whole word `name`.
inline bool HasExtension(const char* list, std::string_view name) {
  std::string_view rest = list != nullptr ? list : "";
  while (!rest.empty()) {
    const auto end = std::min(rest.find(' '), rest.size());
    if (rest.substr(0, end) == name) return true;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return false;
}

} // namespace halvenor::agl
