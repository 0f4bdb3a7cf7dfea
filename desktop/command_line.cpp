#include "desktop/command_line.h"

#include "audio/sound_server.h"
#include "desktop/media_names.h"
#include "desktop/messages.h"
#include "desktop/remote/control_commands.h"
#include "desktop/shown_text.h"
#include "desktop/window/main_window.h"
#include "host/install_paths.h"
#include "platform/gl_choice.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace halvenor {
namespace {

constexpr std::string_view kControl = "--control";
const QString kDefaultSource = QStringLiteral("default");

// The names of the options, as the parser knows them.
const QString kHelp = QStringLiteral("help");
const QString kVersion = QStringLiteral("version");
const QString kDemo = QStringLiteral("demo");
const QString kGl = QStringLiteral("gl");
const QString kListSources = QStringLiteral("list-sources");
const QString kPlugin = QStringLiteral("plugin");
const QString kSource = QStringLiteral("source");
const QString kVerbose = QStringLiteral("verbose");

void Describe(QCommandLineParser& parser) {
  parser.setApplicationDescription(
      QStringLiteral("Shows music as a moving picture: what the computer plays, or audio files,\n"
                     "folders, playlists and internet radio, which it plays itself."));
  parser.addOption({{QStringLiteral("h"), kHelp}, QStringLiteral("Show this help.")});
  parser.addOption({{QStringLiteral("v"), kVersion}, QStringLiteral("Show the version.")});
  parser.addOption({kSource,
                    QStringLiteral("Listen to this source, now and on later starts; \"default\" "
                                   "follows the default output again."),
                    QStringLiteral("NAME")});
  parser.addOption(
      {kListSources, QStringLiteral("List the sources that can be listened to. The default "
                                    "output is marked with *.")});
  parser.addOption({kDemo, QStringLiteral("Play the built-in tune.")});
  parser.addOption({kGl,
                    QStringLiteral("Who draws: \"cpu\", this program on the processor, or "
                                   "\"driver\", the installed OpenGL driver."),
                    QStringLiteral("cpu|driver")});
  parser.addOption({kPlugin,
                    QStringLiteral("Show this visualizer, a bundle or a module, instead of the "
                                   "installed one."),
                    QStringLiteral("PATH")});
  parser.addOption(
      {kVerbose, QStringLiteral("Show everything that the visualizer logs, not only errors.")});
  parser.addOption({QStringLiteral("control"),
                    QStringLiteral("Send a command to the running program (see below). Must be "
                                   "the first option."),
                    QStringLiteral("COMMAND")});
  parser.addPositionalArgument(
      QStringLiteral("FILE"),
      QStringLiteral("Audio files, folders, playlists or addresses to play, one after the other. "
                     "Without any, the program listens to what the computer plays."),
      QStringLiteral("[FILE...]"));
}

int ShowHelp(const QCommandLineParser& parser) {
  const QString text = parser.helpText() + '\n' + QStringLiteral("Keys:") + '\n' +
                       MainWindow::KeyHelp() + QStringLiteral("\n\n") +
                       QStringLiteral("Commands of --control:") + '\n' + ControlHelp();
  std::fputs(text.toLocal8Bit().constData(), stdout);
  return EXIT_SUCCESS;
}

int ShowVersion() {
  std::printf("%s %s\n", kProgramName, qPrintable(QCoreApplication::applicationVersion()));
  return EXIT_SUCCESS;
}

int ListSources() {
  std::string error;
  const std::optional<std::vector<SoundSource>> sources = ListSoundSources(error);
  if (!sources) {
    PrintError(QString::fromStdString(error));
    return EXIT_FAILURE;
  }
  std::size_t column = 0;
  for (const SoundSource& source : *sources)
    column = std::max(column, source.name.size());
  for (const SoundSource& source : *sources) {
    const bool isMicrophone = source.kind == SoundSource::Kind::Microphone;
    std::printf("%s %-*s  %s%s\n", source.isDefault && !isMicrophone ? "*" : " ",
                static_cast<int>(column), source.name.c_str(),
                qPrintable(ShownLine(source.description)),
                isMicrophone ? qPrintable(QStringLiteral(" (microphone)")) : "");
  }
  return EXIT_SUCCESS;
}

QString BuiltInTune() {
  return QString::fromStdString(
      (ExecutableFolder().parent_path() / "share/halvenor/halvenor-demo.opus").string());
}

int Refuse(const QString& line) {
  PrintError(line);
  return EXIT_FAILURE;
}

// If only some media are missing, the player reports them. If all are, no window opens.
bool ReportsThatAllAreMissing(const QStringList& media) {
  QStringList faults;
  for (const QString& medium : media)
    faults.append(ObviousFault(medium));
  if (media.isEmpty() || faults.contains(QString())) return false;
  for (const QString& fault : faults)
    PrintError(fault);
  return true;
}

} // namespace

ProgramWords::ProgramWords(int argc, char** argv) {
  for (int i = 0; i < argc; ++i) {
    const bool followed = i > 0 && i + 1 < argc && std::string_view(argv[i]) == "--plugin";
    words_.push_back(followed ? std::string("--plugin=") + argv[i + 1] : argv[i]);
    if (followed) ++i;
  }
  for (std::string& word : words_)
    pointers_.push_back(word.data());
  count_ = static_cast<int>(pointers_.size());
  pointers_.push_back(nullptr);
}

std::optional<QStringList> ProgramWords::Control() const {
  if (words_.size() < 2 || !words_[1].starts_with(kControl)) return std::nullopt;
  QStringList words;
  if (words_[1].size() > kControl.size()) {
    if (words_[1][kControl.size()] != '=') return std::nullopt;
    words.append(QString::fromLocal8Bit(words_[1].c_str() + kControl.size() + 1));
  }
  for (std::size_t i = 2; i < words_.size(); ++i)
    words.append(QString::fromLocal8Bit(words_[i].c_str()));
  return words;
}

bool ProgramWords::AsksOnlyForText() const {
  constexpr std::string_view kTextOptions[] = {"-h", "--help", "-v", "--version", "--list-sources"};
  return std::ranges::any_of(kTextOptions, [this](std::string_view option) {
    return std::ranges::count(words_, option) > 0;
  });
}

std::optional<StartOptions> ReadCommandLine(int& exitStatus) {
  QCommandLineParser parser;
  Describe(parser);
  const auto end = [&exitStatus](int status) {
    exitStatus = status;
    return std::nullopt;
  };
  if (!parser.parse(QCoreApplication::arguments())) {
    return end(Refuse(QStringLiteral("%1 (see --help)").arg(parser.errorText())));
  }
  if (parser.isSet(kHelp)) return end(ShowHelp(parser));
  if (parser.isSet(kVersion)) return end(ShowVersion());
  if (parser.isSet(kListSources)) return end(ListSources());
  if (parser.isSet(QStringLiteral("control")))
    return end(Refuse(QStringLiteral("--control must be the first option")));

  StartOptions options{InstalledPluginPath(), parser.positionalArguments(), std::nullopt,
                       parser.isSet(kVerbose)};
  if (parser.isSet(kPlugin)) options.plugin = parser.value(kPlugin).toStdString();
  if (parser.isSet(kGl)) {
    const auto choice = GlChoiceFrom(parser.value(kGl).toStdString());
    if (!choice) return end(Refuse(QStringLiteral("--gl must be cpu or driver")));
    ChooseGl(*choice);
  }
  if (parser.isSet(kDemo)) options.media.prepend(BuiltInTune());
  if (parser.isSet(kSource)) {
    if (!options.media.isEmpty())
      return end(Refuse(QStringLiteral("Give either --source or something to play, not both")));
    const QString source = parser.value(kSource);
    options.source = source == kDefaultSource ? QString() : source;
  }
  if (ReportsThatAllAreMissing(options.media)) return end(EXIT_FAILURE);
  for (QString& medium : options.media)
    medium = ToAbsolute(medium);
  return options;
}

} // namespace halvenor
