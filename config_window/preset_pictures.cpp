#include "config_window/preset_pictures.h"

#include "config_window/module_paths.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <unistd.h>

namespace halvenor {
namespace {

constexpr int kKeptPictures = 400;
constexpr int kMostWishes = 60;
constexpr qint64 kKeptUnused = 3600; // seconds
constexpr int kPriority = 10;        // drawing by software would starve the lowest
// Another one whenever pictures of the same look would come out differently.
constexpr char kRecipe[] = "2";

QString FileName(const Settings& look) {
  QCryptographicHash hash(QCryptographicHash::Sha1);
  hash.addData(QByteArrayView(kRecipe));
  for (const SettingField& field : SettingFields()) {
    if (field.look) hash.addData(QByteArray::fromStdString(ToText(look, field) + '\n'));
  }
  return QString::fromLatin1(hash.result().toHex()) + QStringLiteral(".png");
}

// Nearly as the pictures of the factory presets are made, and with less than half of the frames: by
// software they cost seconds. The emblem is gone after two of the tune's.
QStringList Arguments(const Settings& look, const QString& output,
                      const std::filesystem::path& program) {
  const std::filesystem::path tune =
      program.parent_path().parent_path() / "share/halvenor/halvenor-demo.opus";
  QStringList arguments{"--quiet",
                        "--set",
                        "showFrameRate=off",
                        "--set",
                        "numFrequencyLabels=0",
                        "--set",
                        "trackTextDuration=0"};
  arguments << "--size"
            << QStringLiteral("%1x%2")
                   .arg(PresetPictures::kSize.width())
                   .arg(PresetPictures::kSize.height())
            << "--fps"
            << "40"
            << "--start"
            << "42"
            << "--duration"
            << "2";
  for (const SettingField& field : SettingFields()) {
    if (!field.look) continue;
    arguments << "--set"
              << QString::fromStdString(std::string(field.name) + '=' + ToText(look, field));
  }
  return arguments << "--output" << output << QString::fromStdString(tune.string());
}

} // namespace

PresetPictures::PresetPictures(std::function<bool(const std::string&)> isWanted)
    : isWanted_(std::move(isWanted)),
      folder_(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
              QStringLiteral("/halvenor/presets/")),
      read_(kKeptPictures) {
  render_.setStandardInputFile(QProcess::nullDevice());
  render_.setStandardOutputFile(QProcess::nullDevice());
  render_.setStandardErrorFile(QProcess::nullDevice());
  connect(&render_, &QProcess::finished, this, &PresetPictures::OnRendered);
  render_.setChildProcessModifier([] { [[maybe_unused]] const int is = nice(kPriority); });
}

PresetPictures::~PresetPictures() {
  render_.disconnect(this);
  if (render_.state() == QProcess::NotRunning) return;
  render_.kill();
  render_.waitForFinished();
}

QPixmap PresetPictures::Find(const Preset& preset) {
  const bool came = !preset.picture.empty();
  const QString file =
      came ? QString::fromStdString(preset.picture.string()) : folder_ + FileName(preset.look);
  if (const QPixmap* read = read_.object(file)) return *read;
  if (failed_.contains(file)) return {};
  if (QPixmap picture = Read(file); !picture.isNull()) return picture;
  if (came) {
    failed_.insert(file);
    return {};
  }
  std::erase_if(wishes_, [&](const Wish& wish) { return wish.file == file; });
  wishes_.push_back({preset.id, preset.look, file});
  if (wishes_.size() > kMostWishes) wishes_.erase(wishes_.begin());
  if (render_.state() == QProcess::NotRunning) RenderNext();
  return {};
}

QPixmap PresetPictures::Read(const QString& file) {
  QPixmap picture(file);
  if (!picture.isNull()) read_.insert(file, new QPixmap(picture));
  return picture;
}

void PresetPictures::Stop(std::span<const Preset> presets) {
  wishes_.clear();
  QSet<QString> used;
  for (const Preset& preset : presets)
    if (preset.picture.empty()) used.insert(FileName(preset.look));
  // Hidden ones were being rendered, and may still be.
  const QDateTime longAgo = QDateTime::currentDateTime().addSecs(-kKeptUnused);
  for (const QFileInfo& file : QDir(folder_).entryInfoList(
           {QStringLiteral("*.png"), QStringLiteral(".*.png.*")}, QDir::Files | QDir::Hidden))
    if (!used.contains(file.fileName()) && file.lastModified() < longAgo)
      QFile::remove(file.filePath());
}

void PresetPictures::RenderNext() {
  while (!wishes_.empty()) {
    const Wish wish = wishes_.back();
    wishes_.pop_back();
    if (!isWanted_(wish.id)) continue;
    const std::filesystem::path program = ProgramPath("halvenor-render");
    if (program.empty() || !QDir().mkpath(folder_)) return;
    rendering_ = wish;
    render_.start(QString::fromStdString(program.string()),
                  Arguments(wish.look, wish.file, program));
    return;
  }
}

void PresetPictures::OnRendered() {
  if (QFile::exists(rendering_.file)) {
    emit Ready(rendering_.id);
  } else {
    failed_.insert(rendering_.file);
  }
  RenderNext();
}

} // namespace halvenor
