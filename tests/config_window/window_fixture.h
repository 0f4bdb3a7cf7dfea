// A host of the configuration window's module.
#pragma once

#include "platform/guard.h"
#include "protocol/configuration_entries.h"
#include "protocol/visual_plugin_data.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace halvenor::test {

/// The five entries of the module, which stays loaded.
struct Module {
  InitializeConfigurationEntry initialize;
  ConfigurationActionEntry orderWindowFront, addPreset, switchToManual, logSettings;
};
const Module& LoadedModule();

/// The record that the guard yields, under a lock like the plug-in's.
struct Host {
  static VisualPluginData record;
  static bool hasRecord;
  static int guards;             ///< how often the lock was taken
  static std::vector<int> codes; ///< of every callback
  static Status refusal;         ///< what the callback returns

  static Settings Present();
  static void Change(const std::function<void(Settings&)>& change);
  /// From the plug-in's point of view: with the lock held, initialized first.
  static Status CallLocked(ConfigurationActionEntry entry);
};

/// Sets `field` and fails the test where it cannot.
void Set(Settings& settings, std::string_view field, std::string_view text);

/// An application with folders of its own and a record of a first run.
class WindowFixture : public testing::Test {
protected:
  WindowFixture();
  ~WindowFixture() override;

  QString Folder(const QString& name) const { return folder_.filePath(name); }
  QString PresetsFolder() const { return Folder("data/halvenor/presets"); }
  void EndApplication() { application_.reset(); }

  /// Brings it to the front, as the plug-in does.
  void Open();
  /// Until the window has looked at the record a few times more.
  static void AwaitLooks();
  QWidget* Window() const;
  template <typename Widget>
  Widget* Find(const char* name) const {
    auto* found = Window()->findChild<Widget*>(name);
    if (!found) ADD_FAILURE() << "there is no " << name;
    return found;
  }
  void Click(const char* name) const;
  QString Message() const { return Find<QLabel>("message")->toolTip(); }
  /// Moves the control of `field` by mouse or keys, as a person would.
  void Move(const SettingField& field) const;

private:
  QTemporaryDir folder_;
  std::unique_ptr<QApplication> application_;
};

} // namespace halvenor::test
