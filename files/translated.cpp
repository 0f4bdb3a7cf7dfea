#include "files/translated.h"

#include <atomic>
#include <cstddef>

namespace halvenor {
namespace {

std::atomic<TextTranslator> textTranslator = nullptr;

} // namespace

void SetTextTranslator(TextTranslator translator) {
  textTranslator = translator;
}

std::string Translated(const char* context, const char* text) {
  const TextTranslator translator = textTranslator;
  return translator ? translator(context, text) : text;
}

std::string Filled(const std::string& text, std::initializer_list<std::string> values) {
  std::string filled;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t place =
        text[i] == '%' && i + 1 < text.size() ? static_cast<std::size_t>(text[i + 1] - '1') : 9;
    if (place < values.size()) {
      filled += values.begin()[place];
      ++i;
    } else {
      filled += text[i];
    }
  }
  return filled;
}

} // namespace halvenor
