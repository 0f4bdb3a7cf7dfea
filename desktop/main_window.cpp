#include "desktop/main_window.h"

#include "desktop/keys.h"
#include "desktop/messages.h"

#include <QtGui/QAction>
#include <QtGui/QCloseEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QVBoxLayout>

namespace halvenor {
namespace {

constexpr QSize kFirstSize(960, 600);

} // namespace

// The keys that are the window's own wherever the keyboard points. Every other one is the
// plug-in's, so the menus' shortcuts hold Ctrl or are among these.
struct MainWindow::WindowKey {
  Qt::Key key;
  void (MainWindow::*act)();
};

const MainWindow::WindowKey MainWindow::kWindowKeys[] = {
    {Qt::Key_F, &MainWindow::ToggleFullScreen},
    {Qt::Key_F11, &MainWindow::ToggleFullScreen},
    {Qt::Key_Escape, &MainWindow::LeaveFullScreen},
};

QString MainWindow::KeyHelp() {
  return tr("F or F11   full screen on and off\n"
            "Escape     leave full screen\n"
            "Ctrl+Q     quit\n"
            "Every other key goes to the visualizer; its key h shows what it knows.");
}

MainWindow::MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player,
                       std::function<std::string()> whyNoPicture)
    : visualizer_(std::move(visualizer)), player_(player), whyNoPicture_(std::move(whyNoPicture)) {
  setWindowTitle(tr("Visualizer"));
  MakeContents();
  MakeMenus();
  Connect();
  resize(kFirstSize);
}

MainWindow::~MainWindow() {
  End();
}

void MainWindow::End() {
  player_.End();
  visualizer_->End();
}

void MainWindow::MakeContents() {
  area_ = new DrawingArea;
  container_ = QWidget::createWindowContainer(area_);
  // What shows until the first frame, where Qt paints beneath the area.
  container_->setPalette(Qt::black);
  container_->setAutoFillBackground(true);
  const PluginRegistration& limits = visualizer_->Plugin().Registration();
  container_->setMinimumSize(qMax(1, limits.minWidth), qMax(1, limits.minHeight));
  notice_ = new QLabel;
  notice_->setWordWrap(true);
  notice_->setMargin(6);
  notice_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  notice_->hide();

  auto* contents = new QWidget;
  // A home for the keyboard: the menu bar gives it back only to a widget that had it before.
  contents->setFocusPolicy(Qt::StrongFocus);
  auto* layout = new QVBoxLayout(contents);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  layout->addWidget(container_, 1);
  layout->addWidget(notice_);
  setCentralWidget(contents);
  contents->setFocus();
}

void MainWindow::MakeMenus() {
  const auto add = [this](QMenu* menu, const QString& text, auto act, const QKeySequence& keys) {
    QAction* action = menu->addAction(text, keys, this, act);
    addAction(action); // for its keys to work while the menu bar is hidden
    return action;
  };
  QMenu* file = menuBar()->addMenu(tr("&File"));
  add(file, tr("&Quit"), &MainWindow::close, QKeySequence(tr("Ctrl+Q")));

  QMenu* view = menuBar()->addMenu(tr("&View"));
  fullScreenAction_ =
      add(view, tr("&Full Screen"), &MainWindow::ToggleFullScreen, QKeySequence(Qt::Key_F11));
  fullScreenAction_->setCheckable(true);
  const PluginRegistration& plugin = visualizer_->Plugin().Registration();
  if (plugin.options & kWantsConfigure) {
    add(view, tr("&Configure %1...").arg(QString::fromStdString(plugin.name)),
        &MainWindow::Configure, {});
  }

  QMenu* help = menuBar()->addMenu(tr("&Help"));
  add(help, tr("&Keys"), &MainWindow::ShowKeys, {});
}

void MainWindow::Connect() {
  connect(visualizer_.get(), &Visualizer::FullScreenWanted, this, &MainWindow::SetFullScreen);
  connect(visualizer_.get(), &Visualizer::ShowFailed, this, &MainWindow::ReportNoPicture);
  connect(&player_, &Player::TrackChanged, this, &MainWindow::ShowTrack);
  connect(&player_, &Player::Reported, this, &MainWindow::Report);
  connect(area_, &DrawingArea::KeyPressed, this, &MainWindow::keyPressEvent);
  visualizer_->DrawInto(*area_);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  End();
  QMainWindow::closeEvent(event);
}

void MainWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) {
    menuBar()->setVisible(!isFullScreen());
    fullScreenAction_->setChecked(isFullScreen());
    visualizer_->TellFullScreen(isFullScreen());
  }
  QMainWindow::changeEvent(event);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
  constexpr Qt::KeyboardModifiers kCommand =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  for (const WindowKey& row : kWindowKeys) {
    if (event->key() != row.key || event->modifiers() & kCommand) continue;
    if (!event->isAutoRepeat()) (this->*row.act)();
    return;
  }
  const std::optional<char> character = PluginCharacter(*event);
  if (!character || !visualizer_->Plugin().Key(*character, event->isAutoRepeat())) event->ignore();
}

void MainWindow::SetFullScreen(bool fullScreen) {
  setWindowState(windowState().setFlag(Qt::WindowFullScreen, fullScreen));
}

void MainWindow::ToggleFullScreen() {
  SetFullScreen(!isFullScreen());
}

void MainWindow::LeaveFullScreen() {
  SetFullScreen(false);
}

void MainWindow::Configure() {
  const Status status = visualizer_->Plugin().Configure();
  if (status != status::kOk) {
    Report(tr("the visualizer's settings window cannot be opened (status %1)").arg(status));
  }
}

void MainWindow::ShowKeys() {
  auto* box = new QMessageBox(QMessageBox::NoIcon, tr("Keys"),
                              QStringLiteral("<pre>%1</pre>").arg(KeyHelp().toHtmlEscaped()),
                              QMessageBox::Close, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void MainWindow::ShowTrack(const QString& title, const QString& artist) {
  setWindowTitle(artist.isEmpty() ? title : QStringLiteral("%1 - %2").arg(title, artist));
}

void MainWindow::ReportNoPicture() {
  container_->hide();
  notice_->setAlignment(Qt::AlignCenter);
  const std::string cause = whyNoPicture_();
  Report(cause.empty() ? tr("the picture cannot be shown")
                       : tr("the picture cannot be shown: %1").arg(QString::fromStdString(cause)));
}

void MainWindow::Report(const QString& line) {
  failed_ = true;
  PrintError(line);
  notice_->setText(line);
  notice_->show();
}

} // namespace halvenor
