// One setting as a person moves it.
#pragma once

#include "protocol/settings.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtWidgets/QWidget>

#include <memory>
#include <optional>

namespace halvenor {

/// Shows one field of the block, and changes it: that field and nothing else, and only when a
/// person moves the control. Values out of the control's range are shown as near as it gets and
/// stay as they are. Owns its editor until that has a parent.
class SettingControl : public QObject {
  Q_OBJECT

public:
  [[nodiscard]] const SettingField& Field() const { return field_; }
  /// The widget, or the row of widgets.
  [[nodiscard]] QWidget* Editor() const { return editor_; }
  /// Of these the one that takes the keyboard first.
  [[nodiscard]] QWidget* KeyboardTarget() const {
    return editor_->focusProxy() ? editor_->focusProxy() : editor_;
  }
  /// Whether the editor brings its own label: then it is a button that has it.
  [[nodiscard]] virtual bool HasOwnLabel() const { return false; }

  /// Shows the value that `settings` has, unless a person is just moving the control.
  void Show(const Settings& settings);
  /// What is shown counts for nothing: there is no block.
  void Forget() { shown_.reset(); }
  /// Puts into `settings` what the control shows.
  void Store(Settings& settings);

signals:
  /// A person moved it.
  void Edited();

protected:
  SettingControl(const SettingField& field, QWidget* editor);

  virtual void Display(const Settings& settings) = 0;
  virtual void Write(Settings& settings) const = 0;
  [[nodiscard]] virtual bool IsHeld() const { return false; }
  /// For the widgets' signals: what `Display` causes is no edit.
  void OnMoved();

private:
  const SettingField& field_;
  QWidget* editor_;
  std::optional<std::string> shown_; ///< the field as text: a NaN is the same as a NaN
  bool displaying_ = false;
};

/// The control that suits `field`, a child of `parent`.
SettingControl* MakeSettingControl(const SettingField& field, QObject* parent);

/// A text of the table of settings in the person's language.
QString SettingText(const char* text);

/// The name of `field` for people, for labels and for screen readers.
QString SettingLabel(const SettingField& field);

} // namespace halvenor
