#include "desktop/window/key_router.h"

#include "host/text.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeySequence>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>
#include <qpa/qwindowsysteminterface.h>

#include <vector>

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

// Whether somebody types text or uses a menu.
bool BelongsToWidgets() {
  if (QApplication::activePopupWidget() || QApplication::activeModalWidget()) return true;
  const QWidget* focus = QApplication::focusWidget();
  return focus &&
         (focus->testAttribute(Qt::WA_InputMethodEnabled) || qobject_cast<const QMenuBar*>(focus));
}

// What the window system would tell of a key press.
struct Keystroke {
  Qt::Key key = Qt::Key_unknown;
  Qt::KeyboardModifiers modifiers = Qt::NoModifier;
  QString text;
};

std::optional<Keystroke> ReadKeystroke(const QString& name) {
  const bool isCharacter = name.size() == 1 && name.front().isPrint();
  const QKeySequence sequence(name == QLatin1String(" ") ? QStringLiteral("Space") : name);
  const bool isNamed = sequence.count() == 1 && sequence[0].key() != Qt::Key_unknown;
  if (!isCharacter && !isNamed) return std::nullopt;
  Keystroke stroke;
  if (isNamed) {
    stroke.key = sequence[0].key();
    stroke.modifiers = sequence[0].keyboardModifiers();
  }
  if (isCharacter && name.front().isUpper()) stroke.modifiers |= Qt::ShiftModifier;
  if (isCharacter) stroke.text = name;
  if (stroke.key == Qt::Key_Space) stroke.text = QStringLiteral(" ");
  return stroke;
}

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
  // A transliteration to several letters, or the "?" for none, is not what was typed.
  if (encoded.size() != 1 || (encoded == "?" && text != QLatin1String("?"))) return {};
  return encoded.front();
}

void KeyRouter::Watch(QWidget& window, QWindow& area) {
  window_ = window.windowHandle();
  window_->installEventFilter(this);
  area.installEventFilter(this);
}

QString KeyRouter::Press(const QStringList& keys) {
  std::vector<Keystroke> strokes;
  for (const QString& key : keys) {
    const std::optional<Keystroke> stroke = ReadKeystroke(key);
    if (!stroke) return key;
    strokes.push_back(*stroke);
  }
  if (!window_) return {};
  // By the same road as the keyboard's: plug-in, shortcuts, focus.
  for (const auto& [key, modifiers, text] : strokes) {
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease})
      QWindowSystemInterface::handleKeyEvent(window_, type, key, modifiers, text);
  }
  return {};
}

bool KeyRouter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  if (watched != window_) return window_ && QCoreApplication::sendEvent(window_, event);
  if (BelongsToWidgets()) return false;
  emit Pressed();
  const auto& press = *static_cast<QKeyEvent*>(event);
  const std::optional<char> character = PluginCharacter(press);
  return character && visualizer_.Plugin().Key(*character, press.isAutoRepeat());
}

} // namespace halvenor
