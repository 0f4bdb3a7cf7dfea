#include "desktop/keys.h"

#include "host/text.h"

namespace halvenor {
namespace {

struct NamedKey {
  int key;
  char character;
};

constexpr NamedKey kNamedKeys[] = {
    {Qt::Key_Home, 0x01}, {Qt::Key_Enter, 0x03},  {Qt::Key_End, 0x04},    {Qt::Key_Backspace, 0x08},
    {Qt::Key_Tab, 0x09},  {Qt::Key_PageUp, 0x0B}, {Qt::Key_Return, 0x0D}, {Qt::Key_PageDown, 0x0C},
    {Qt::Key_Left, 0x1C}, {Qt::Key_Escape, 0x1B}, {Qt::Key_Right, 0x1D},  {Qt::Key_Up, 0x1E},
    {Qt::Key_Down, 0x1F}, {Qt::Key_Delete, 0x7F},
};

constexpr char kFunctionKey = 0x10; // all of them

} // namespace

std::optional<char> PluginCharacter(const QKeyEvent& event) {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return {};
  if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F15) return kFunctionKey;
  for (const NamedKey& named : kNamedKeys) {
    if (event.key() == named.key) return named.character;
  }
  const QString text = event.text();
  if (text.isEmpty() || !text.front().isPrint()) return {};
  const std::string encoded = ToMacRoman(text.toStdString());
  // A stand-in of several letters, or the "?" for what has none, is not what was typed.
  if (encoded.size() != 1 || (encoded == "?" && text != QLatin1String("?"))) return {};
  return encoded.front();
}

} // namespace halvenor
