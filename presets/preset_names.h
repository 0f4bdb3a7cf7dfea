// How presets are called, among people and on the disk.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace halvenor {

/// What two names have in common that people take for the same. `text` is UTF-8.
std::string Folded(std::string_view text);

/// A key whose order is the order in which people sort names: "Look 9" comes before "Look 10".
std::string SortKey(std::string_view name);

/// `wish`, tidied, with a number when `taken` has it. `taken` holds folded names.
std::string FreshNameFor(std::string_view wish, const std::set<std::string>& taken);

/// Whether a file may have this name before its extension: a-z, 0-9, "-" and "_", at most 100.
bool IsPresetId(std::string_view id);

/// An id made from `name`, with a number when `taken` has it.
std::string FreshIdFor(std::string_view name, const std::set<std::string>& taken);

} // namespace halvenor
