// What the module exports; see protocol/configuration_entries.h.
#include "config_window/configuration_window.h"
#include "config_window/live_settings.h"
#include "config_window/module_paths.h"
#include "config_window/preset_chooser.h"
#include "platform/carbon.h"
#include "platform/ports.h"
#include "protocol/configuration_entries.h"
#include "translations/translation.h"

#include <QtCore/QLibraryInfo>
#include <QtCore/QThread>
#include <QtCore/QVersionNumber>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <memory>
#include <string>

namespace halvenor {
namespace {

/// The initializer's status where no window can be: no `QApplication` runs, this is not its thread,
/// or its Qt is older than the one that the module was made with.
constexpr Status kNoApplication = 1002;
/// The status of `AddPreset` when the look could not be kept; the window says why.
constexpr Status kNotKept = 1003;

void Log(const std::string& line) {
  const std::size_t length = std::min<std::size_t>(line.size(), 255);
  std::basic_string<unsigned char> text(1, static_cast<unsigned char>(length));
  text.append(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(length));
  DebugStr(text.data());
}

/// Why this host cannot have the window; empty when it can.
std::string WhyNoWindow() {
  const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
  if (!application) return "the host runs no Qt application (QApplication)";
  if (application->thread() != QThread::currentThread())
    return "the host calls from another thread than its Qt application's";
  if (QLibraryInfo::version() >= QVersionNumber(QT_VERSION_MAJOR, QT_VERSION_MINOR)) return {};
  return "it needs Qt " + std::to_string(QT_VERSION_MAJOR) + '.' +
         std::to_string(QT_VERSION_MINOR) + ", the host has " +
         QLibraryInfo::version().toString().toStdString();
}

// Everything that lives here, from the first need to the end of the application.
class Configuration {
  const Translation translation_{QStringLiteral(HALVENOR_CARRIED_TEXTS),
                                 Translation::Texts::Own}; // before anything that speaks

public:
  LiveSettings live;
  PresetChooser chooser{
      live, {PresetLibrary::DefaultFolder(), PresetLibrary::FactoryFolder(PluginBundlePath())}};

  Configuration() {
    QObject::connect(&live, &LiveSettings::Told, &live,
                     [this](const QString& line) { Tell(line, Urgency::Message); });
    QObject::connect(&live, &LiveSettings::Failed, &live,
                     [this](const QString& line) { Tell(line, Urgency::Failure); });
  }
  ~Configuration() {
    if (window_ && window_->isVisible()) window_->Save();
  }

  ConfigurationWindow& Window() {
    if (!window_) {
      window_ = std::make_unique<ConfigurationWindow>(live, chooser);
      for (const QString& line : std::exchange(untold_, {}))
        window_->Tell(line);
    }
    return *window_;
  }

private:
  enum class Urgency { Message, Failure };

  // While the window is closed, a failure goes to the host, which shows it, and everything else to
  // the log. All of it is in the window when that opens.
  void Tell(const QString& line, Urgency urgency) {
    const bool isHidden = !window_ || !window_->isVisible();
    const bool isNoticed =
        isHidden && urgency == Urgency::Failure && GiveNotice(line.toUtf8().constData()) != 0;
    if (isHidden && !isNoticed) Log(line.toStdString());
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
  if (const std::string reason = WhyNoWindow(); !reason.empty()) {
    Log("Halvenor - No settings window: " + reason);
    return kNoApplication;
  }
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
  return configuration->chooser.AddPresent() ? status::kOk : kNotKept;
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
