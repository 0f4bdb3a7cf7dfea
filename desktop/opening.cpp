#include "desktop/opening.h"

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

QString NameOf(const QString& medium) {
  QString name = medium.contains(QLatin1String("://")) ? medium : QFileInfo(medium).fileName();
  if (name.isEmpty()) name = medium;
  if (name.size() > kLongestName) name = name.left(kLongestName - 3) + QStringLiteral("...");
  return name.replace('&', QStringLiteral("&&"));
}

} // namespace

Opening::Opening(QWidget& window, Player& player, QSettings& settings)
    : window_(window), player_(player), settings_(settings) {}

void Opening::AskFiles() {
  AskPaths(tr("Open Files"), false);
}

void Opening::AskFolder() {
  AskPaths(tr("Open a Folder"), true);
}

void Opening::AskPaths(const QString& title, bool folder) {
  auto* dialog = new QFileDialog(&window_, title, settings_.value(kFolderKey).toString());
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(folder ? QFileDialog::Directory : QFileDialog::ExistingFiles);
  dialog->setOption(QFileDialog::ShowDirsOnly, folder);
  if (!folder) {
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilters(
        {tr("Sound and playlists (*.aac *.aif *.aiff *.flac *.m3u *.m3u8 *.m4a *.mka *.mp3 *.mp4 "
            "*.oga *.ogg *.opus *.pls *.wav *.webm *.wma *.wv *.xspf)"),
         tr("All files (*)")});
  }
  connect(dialog, &QFileDialog::filesSelected, this, [this, dialog](const QStringList& paths) {
    settings_.setValue(kFolderKey, dialog->directory().absolutePath());
    Open(paths);
  });
  dialog->open();
}

void Opening::AskAddress() {
  auto* dialog = new QInputDialog(&window_);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setWindowTitle(tr("Open an Address"));
  dialog->setLabelText(tr("Internet radio, or any other address of sound:"));
  dialog->setTextValue(QStringLiteral("https://"));
  dialog->resize(28 * dialog->fontMetrics().height(), dialog->sizeHint().height());
  connect(dialog, &QInputDialog::textValueSelected, this, [this](const QString& text) {
    if (const QString address = text.trimmed(); !address.isEmpty()) Open({address});
  });
  dialog->open();
}

void Opening::Open(const QStringList& media) {
  if (media.isEmpty()) return;
  QStringList recent = settings_.value(kRecentKey).toStringList();
  for (const QString& medium : media.first(qMin(media.size(), kMostRecent))) {
    recent.removeAll(medium);
    recent.prepend(medium);
  }
  settings_.setValue(kRecentKey, recent.first(qMin(recent.size(), kMostRecent)));
  player_.Open(media);
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
    connect(action, &QAction::triggered, this, [this, medium] { Open({medium}); });
  }
  if (recent.isEmpty()) {
    menu.addAction(tr("Nothing yet"))->setEnabled(false);
    return;
  }
  menu.addSeparator();
  connect(menu.addAction(tr("&Clear")), &QAction::triggered, this,
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
  if (event->type() == QEvent::Drop) Open(media);
  return true;
}

} // namespace halvenor
