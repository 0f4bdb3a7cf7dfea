#include "desktop/window/opening.h"

#include "audio/sound_kinds.h"
#include "desktop/media_names.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QDropEvent>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QInputDialog>

namespace halvenor {
namespace {

const QString kRecentKey = QStringLiteral("recent/media");
const QString kFolderKey = QStringLiteral("recent/folder");
constexpr qsizetype kMostRecent = 10;
constexpr int kLongestName = 60; // characters in a menu

QStringList MediaIn(const QMimeData& data) {
  QStringList media;
  for (const QUrl& url : data.urls())
    media.append(url.isLocalFile() ? url.toLocalFile() : url.toString(QUrl::FullyEncoded));
  return media;
}

/// Of all files that can be opened, for a file dialog.
QString SoundPatterns() {
  QStringList patterns;
  for (const auto* extensions : {&SoundExtensions(), &PlaylistExtensions()})
    for (const std::string& extension : *extensions)
      patterns.append(QStringLiteral("*.") + QString::fromStdString(extension));
  return patterns.join(QLatin1Char(' '));
}

QString NameOf(const QString& medium) {
  QString name = IsAddress(medium) ? medium : QFileInfo(medium).fileName();
  if (name.isEmpty()) name = medium;
  if (name.size() > kLongestName) name = name.left(kLongestName - 3) + QStringLiteral("...");
  return name.replace('&', QStringLiteral("&&"));
}

} // namespace

Opening::Opening(QWidget& window, Player& player, QSettings& settings)
    : window_(window), player_(player), settings_(settings) {
  connect(&player_, &Player::Opened, this, &Opening::Remember);
}

void Opening::AskFiles() {
  AskPaths(tr("Open Files"), false);
}

void Opening::AskFolder() {
  AskPaths(tr("Open Folder"), true);
}

void Opening::AskPaths(const QString& title, bool folder) {
  auto* dialog = new QFileDialog(&window_, title, settings_.value(kFolderKey).toString());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(folder ? QFileDialog::Directory : QFileDialog::ExistingFiles);
  dialog->setOption(QFileDialog::ShowDirsOnly, folder);
  if (!folder) {
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilters(
        {tr("Audio and playlists (%1)").arg(SoundPatterns()), tr("All files (*)")});
  }
  connect(dialog, &QFileDialog::filesSelected, this, [this, dialog](const QStringList& paths) {
    settings_.setValue(kFolderKey, dialog->directory().absolutePath());
    player_.Open(paths);
  });
  dialog->open();
}

void Opening::AskAddress() {
  auto* dialog = new QInputDialog(&window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Open Address"));
  dialog->setLabelText(tr("Address of an internet radio station or of any other audio:"));
  dialog->setTextValue(QStringLiteral("https://"));
  dialog->resize(28 * dialog->fontMetrics().height(), dialog->sizeHint().height());
  connect(dialog, &QInputDialog::textValueSelected, this, [this](const QString& text) {
    if (const QString address = text.trimmed(); !address.isEmpty()) player_.Open({address});
  });
  dialog->open();
}

void Opening::Remember(const QStringList& media) {
  QStringList recent = settings_.value(kRecentKey).toStringList();
  for (const QString& medium : media.first(qMin(media.size(), kMostRecent))) {
    recent.removeAll(medium);
    recent.prepend(medium);
  }
  settings_.setValue(kRecentKey, recent.first(qMin(recent.size(), kMostRecent)));
}

void Opening::ServeRecent(QMenu& menu) {
  connect(&menu, &QMenu::aboutToShow, this, [this, &menu] { FillRecent(menu); });
  FillRecent(menu);
}

void Opening::FillRecent(QMenu& menu) {
  menu.clear();
  const QStringList recent = settings_.value(kRecentKey).toStringList();
  for (const QString& medium : recent) {
    QAction* action = menu.addAction(NameOf(medium));
    action->setToolTip(medium);
    connect(action, &QAction::triggered, this, [this, medium] { player_.Open({medium}); });
  }
  if (recent.isEmpty()) {
    menu.addAction(tr("No Recent Media"))->setEnabled(false);
    return;
  }
  menu.addSeparator();
  connect(menu.addAction(tr("&Clear List")), &QAction::triggered, this,
          [this] { settings_.remove(kRecentKey); });
}

void Opening::TakeDrops(QObject& target) {
  target.installEventFilter(this);
}

bool Opening::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
  case QEvent::DragEnter:
  case QEvent::DragMove:
  case QEvent::Drop:
    break;
  default:
    return false;
  }
  auto* drop = static_cast<QDropEvent*>(event);
  const QStringList media = MediaIn(*drop->mimeData());
  if (media.isEmpty()) {
    drop->ignore();
    return true;
  }
  drop->setDropAction(Qt::CopyAction);
  drop->accept();
  if (event->type() == QEvent::Drop) player_.Open(media);
  return true;
}

} // namespace halvenor
