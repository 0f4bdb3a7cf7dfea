// What the module exports; see protocol/configuration_entries.h.
#include "config/window/configuration_window.h"
#include "config/window/live_settings.h"
#include "config/window/module_paths.h"
#include "config/window/preset_player.h"
#include "platform/carbon.h"
#include "protocol/configuration_entries.h"

#include <QtCore/QLibraryInfo>
#include <QtCore/QThread>
#include <QtCore/QVersionNumber>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <memory>
#include <string>

namespace halvenor {
namespace {

/// The initialiser's status where no window can be: no `QApplication` runs, this is not its thread,
/// or its Qt is older than the one that the module was made with.
constexpr Status kNoApplication = 1002;
/// The status of `AddPreset` when the look could not be kept; the window says why.
constexpr Status kNotKept = 1003;

bool CanShowWindows() {
  const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  return application && application->thread() == QThread::currentThread() &&
         QLibraryInfo::version() >= QVersionNumber(QT_VERSION_MAJOR, QT_VERSION_MINOR);
}

void Log(const std::string& line) {
  const std::size_t length = std::min<std::size_t>(line.size(), 255);
  std::basic_string<unsigned char> text(1, static_cast<unsigned char>(length));
  text.append(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(length));
  DebugStr(text.data());
}

// Everything that lives here, from the first need to the end of the application.
class Configuration {
public:
  LiveSettings live;
  PresetPlayer player{
      live, {PresetLibrary::DefaultFolder(), PresetLibrary::FactoryFolder(PluginBundlePath())}};

  Configuration() {
    QObject::connect(&live, &LiveSettings::Told, &live,
                     [this](const QString& line) { Tell(line); });
  }
  ~Configuration() {
    if (window_ && window_->isVisible()) window_->Save();
  }

  ConfigurationWindow& Window() {
    if (!window_) {
      window_ = std::make_unique<ConfigurationWindow>(live, player);
      for (const QString& line : std::exchange(untold_, {}))
        window_->Tell(line);
    }
    return *window_;
  }

private:
  // What nobody sees now goes to the log, and waits in the window.
  void Tell(const QString& line) {
    if (!window_ || !window_->isVisible()) Log(line.toStdString());
    if (window_) {
      window_->Tell(line);
    } else {
      untold_.append(line);
    }
  }

  std::unique_ptr<ConfigurationWindow> window_;
  QStringList untold_;
};

std::unique_ptr<Configuration> configuration;

void End() {
  configuration.reset();
}

void Begin() {
  if (configuration) return;
  configuration = std::make_unique<Configuration>();
  // Whichever comes first: a host may destroy its application without having run it.
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &configuration->live, End);
  qAddPostRoutine(End);
}

} // namespace
} // namespace halvenor

extern "C" {

using namespace halvenor;

__attribute__((visibility("default"))) Status initializeBundle(ConfigurationCallback callback,
                                                               VisualPluginData* /*record*/) {
  if (!CanShowWindows()) return kNoApplication;
  Begin();
  configuration->live.Record().SetCallback(callback);
  return status::kOk;
}

__attribute__((visibility("default"))) Status orderWindowFront() {
  if (!configuration) return kNoApplication;
  configuration->Window().OpenInFront();
  return status::kOk;
}

__attribute__((visibility("default"))) Status AddPreset() {
  if (!configuration) return kNoApplication;
  return configuration->player.AddPresent() ? status::kOk : kNotKept;
}

__attribute__((visibility("default"))) Status SwitchToManual() {
  if (!configuration) return kNoApplication;
  configuration->live.StopSwitching();
  return status::kOk;
}

__attribute__((visibility("default"))) Status LogSettings() {
  if (!configuration) return kNoApplication;
  const std::optional<Settings> settings = configuration->live.Record().Read();
  if (!settings) return kNoApplication;
  for (const SettingField& field : SettingFields())
    Log(std::string(field.name) + " = " + ToText(*settings, field));
  return status::kOk;
}

} // extern "C"
