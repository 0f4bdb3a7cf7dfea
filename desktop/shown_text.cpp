#include "desktop/shown_text.h"

#include <algorithm>

namespace halvenor {
namespace {

// Enough for `limit` characters after blanks have been joined, short of a hostile megabyte.
constexpr qsizetype kLooksAt = 4;

bool IsInvisible(QChar character) {
  constexpr char16_t kFirstEmbedding = 0x202A;
  constexpr char16_t kLastEmbedding = 0x202E;
  constexpr char16_t kFirstIsolate = 0x2066;
  constexpr char16_t kLastIsolate = 0x2069;
  const char16_t code = character.unicode();
  return character.category() == QChar::Other_Control ||
         (code >= kFirstEmbedding && code <= kLastEmbedding) ||
         (code >= kFirstIsolate && code <= kLastIsolate);
}

} // namespace

QString ShownLine(const QString& text, qsizetype limit) {
  QString line = text.left(limit * kLooksAt);
  std::replace_if(line.begin(), line.end(), IsInvisible, QLatin1Char(' '));
  line = line.simplified();
  if (line.size() <= limit) return line;
  line.truncate(limit - 1);
  if (line.back().isHighSurrogate()) line.chop(1);
  return line + QChar(0x2026);
}

QString ShownLine(const std::string& text) {
  return ShownLine(QString::fromStdString(text));
}

} // namespace halvenor
