// Messages of the rooms that know no window, in the language of the person who reads them.
#pragma once

#include <initializer_list>
#include <string>

/// Marks a text of a table for translation; `Translated` looks it up where it is shown.
#define HALVENOR_TEXT(context, text) text

namespace halvenor {

/// The text in the language of the person for an English one; called from any thread.
using TextTranslator = std::string (*)(const char* context, const char* text);

/// Of this program or module. Null, as at the start: texts stay in English.
void SetTextTranslator(TextTranslator translator);

/// `text` as the translator has it. The tools find the texts in these calls, so that both
/// arguments are literals here or in HALVENOR_TEXT.
std::string Translated(const char* context, const char* text);

/// `text` with the values in the places of "%1" to "%9".
std::string Filled(const std::string& text, std::initializer_list<std::string> values);

} // namespace halvenor
