#include "desktop/window/main_window.h"

#include "desktop/messages.h"
#include "desktop/shown_text.h"
#include "desktop/window/action_menus.h"
#include "desktop/window/drawing_area.h"
#include "desktop/window/full_screen.h"
#include "desktop/window/idle_hold.h"
#include "desktop/window/key_router.h"
#include "desktop/window/keys_card.h"
#include "desktop/window/notice.h"
#include "desktop/window/opening.h"
#include "desktop/window/quiet_controls.h"
#include "desktop/window/signal_line.h"
#include "desktop/window/source_menu.h"
#include "desktop/window/stage.h"
#include "desktop/window/transport_bar.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>

namespace halvenor {
namespace {

constexpr QSize kFirstSize(960, 640);
constexpr double kMostOfScreen = 0.9;

const QString kGeometryKey = QStringLiteral("window/geometry");
const QString kBarKey = QStringLiteral("window/transportBar");
const QString kKeepDrawingKey = QStringLiteral("window/keepDrawing");
const QString kKeysShownKey = QStringLiteral("window/keysShown");

QWidget& MakePicture(DrawingArea& area, const PluginRegistration& limits) {
  QWidget* picture = QWidget::createWindowContainer(&area);
  picture->setFocusPolicy(Qt::NoFocus);
  picture->setMinimumSize(qMax(1, limits.minWidth), qMax(1, limits.minHeight));
  return *picture;
}

} // namespace

// Owns what is listed here, but for the references: those widgets belong to the window.
struct MainWindow::Parts {
  Parts(MainWindow& window, Visualizer& visualizer, Player& player, QSettings& settings)
      : actions(player), area(*new DrawingArea), menus(window, *window.menuBar(), actions, player),
        stage(*new Stage(MakePicture(area, visualizer.Plugin().Registration()),
                         *new TransportBar(player, menus))),
        bar(player, menus), line(player, menus[UserAction::ChooseSource]),
        fullScreen(window, area, visualizer, settings), quiet(area, stage, bar),
        idle(window, player), router(visualizer), opening(window, player, settings),
        sources(player, window), chooser(&window), everything(&window) {}

  UserActions actions;
  DrawingArea& area;
  ActionMenus menus;
  Stage& stage;
  TransportBar bar; ///< of the full screen
  SignalLine line;
  Notice notice;
  KeysCard card;
  FullScreen fullScreen;
  QuietControls quiet;
  IdleHold idle;
  KeyRouter router;
  Opening opening;
  SourceMenu sources;
  QMenu chooser;    ///< of the sources
  QMenu everything; ///< all menus, for the right mouse button
};

QString MainWindow::KeyHelp() {
  QString text;
  for (const ActionMenus::Help& help : ActionMenus::KeyHelp())
    text += QStringLiteral("  %1 %2\n").arg(help.keys, -15).arg(help.text);
  return text + tr("The visualizer gets every key without Ctrl first; press h to see its keys.");
}

MainWindow::MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player, QSettings& settings,
                       std::function<std::string()> takeLog)
    : visualizer_(std::move(visualizer)), player_(player), settings_(settings),
      takeLog_(std::move(takeLog)),
      parts_(std::make_unique<Parts>(*this, *visualizer_, player_, settings_)) {
  setCentralWidget(&parts_->stage);
  parts_->stage.setFocus();
  ConnectPlugin();
  ConnectStage();
  HandleActions();
  FillMenus();
  ShowTitle();
  resize(kFirstSize.boundedTo(screen()->availableSize() * kMostOfScreen));
  restoreGeometry(settings_.value(kGeometryKey).toByteArray());
  setWindowState(windowState() & ~(Qt::WindowFullScreen | Qt::WindowMinimized));
}

MainWindow::~MainWindow() {
  End();
}

void MainWindow::End() {
  parts_->idle.End();
  player_.End();
  visualizer_->End();
}

void MainWindow::ConnectPlugin() {
  Parts& parts = *parts_;
  connect(visualizer_.get(), &Visualizer::FullScreenWanted, this, &MainWindow::SetFullScreen);
  connect(visualizer_.get(), &Visualizer::Reported, this, &MainWindow::Report);
  connect(visualizer_.get(), &Visualizer::ShowFailed, this, &MainWindow::ReportNoPicture);
  connect(visualizer_.get(), &Visualizer::Shown, this, &MainWindow::ShowKeysOnce,
          Qt::SingleShotConnection);
  connect(visualizer_.get(), &Visualizer::Shown, this, [this] { takeLog_(); }); // not of an alert
  connect(visualizer_.get(), &Visualizer::Shown, &parts.idle, &IdleHold::Stir);
  connect(&parts.idle, &IdleHold::Looked, visualizer_.get(), &Visualizer::SetSeen);
  connect(&parts.area, &DrawingArea::Resized, &parts.idle, &IdleHold::Stir);
  connect(&parts.router, &KeyRouter::Pressed, &parts.idle, &IdleHold::Stir);
  connect(&parts.area, &DrawingArea::MenuWanted, this, &MainWindow::ShowMenu);
  connect(&parts.area, &DrawingArea::DoubleClicked, &parts.menus[UserAction::FullScreen],
          &QAction::trigger);
  parts.area.installEventFilter(&parts.idle);
  visualizer_->DrawInto(parts.area);
}

void MainWindow::ConnectStage() {
  Parts& parts = *parts_;
  const auto add = [&](auto& widget, Stage::Place place) {
    parts.stage.AddOverlay(widget, place);
    using Widget = std::remove_reference_t<decltype(widget)>;
    connect(&widget, &Widget::Wanted, &parts.stage,
            [&parts, &widget](bool wanted) { parts.stage.ShowOverlay(widget, wanted); });
  };
  parts.stage.AddOverlay(parts.bar, Stage::Place::Bottom);
  add(parts.line, Stage::Place::Bottom);
  add(parts.notice, Stage::Place::Bottom);
  add(parts.card, Stage::Place::Middle);
  connect(&parts.router, &KeyRouter::Pressed, &parts.card, &KeysCard::Dismiss);
  connect(&player_, &Player::Reported, this, [this](const QString& line) {
    PrintError(line);
    parts_->notice.Tell(line, Notice::Kind::Playback);
  });
  connect(&player_, &Player::ReportsOutdated, &parts.notice, &Notice::EndPlayback);
  connect(&player_, &Player::TrackChanged, this, &MainWindow::ShowTitle);
  connect(&player_, &Player::Changed, this, [this] {
    ShowTitle();
    parts_->fullScreen.SetPlaying(player_.CurrentSignal() == Player::Signal::Sound);
  });
  parts.opening.TakeDrops(*this);
  parts.opening.TakeDrops(parts.area);
  setAcceptDrops(true);
}

// The actions that the table of UserActions leaves to the window.
void MainWindow::HandleActions() {
  Parts& parts = *parts_;
  const auto on = [&](UserAction action, auto act) {
    parts.actions.Handle(action, [act](const QStringList&) {
      act();
      return QString();
    });
  };
  // An item with a check mark, whose state is kept.
  const auto choose = [&](UserAction action, const QString& key, bool first, auto act) {
    QAction& item = parts.menus[action];
    item.setChecked(settings_.value(key, first).toBool());
    act(item.isChecked());
    on(action, [this, &item, key, act] {
      settings_.setValue(key, item.isChecked());
      act(item.isChecked());
    });
  };
  on(UserAction::OpenFiles, [&parts] { parts.opening.AskFiles(); });
  on(UserAction::OpenFolder, [&parts] { parts.opening.AskFolder(); });
  on(UserAction::OpenAddress, [&parts] { parts.opening.AskAddress(); });
  on(UserAction::Quit, [this] { QuitSoon(); });
  on(UserAction::Raise, [this] { Raise(); });
  on(UserAction::ChooseSource, [this] { ChooseSource(); });
  on(UserAction::FullScreen, [this] { SetFullScreen(!isFullScreen()); });
  on(UserAction::LeaveFullScreen, [this] { SetFullScreen(false); });
  on(UserAction::ShowKeys, [&parts] { parts.stage.ShowOverlay(parts.card, true); });
  on(UserAction::About, [this] { ShowAbout(); });
  choose(UserAction::ShowBar, kBarKey, true,
         [&parts](bool wanted) { parts.quiet.SetBarWanted(wanted); });
  choose(UserAction::KeepDrawing, kKeepDrawingKey, false,
         [&parts](bool keeps) { parts.idle.SetKeepsDrawing(keeps); });
  parts.actions.Handle(UserAction::Configure, [this](const QStringList&) { return Configure(); });
  parts.actions.Handle(UserAction::PressKeys, [&parts](const QStringList& keys) {
    const QString unknown = parts.router.Press(keys);
    return unknown.isEmpty() ? QString()
                             : QStringLiteral("Unknown key \"%1\"").arg(ShownLine(unknown));
  });
}

void MainWindow::FillMenus() {
  Parts& parts = *parts_;
  const PluginRegistration& plugin = visualizer_->Plugin().Registration();
  QAction& configure = parts.menus[UserAction::Configure];
  configure.setText(configure.text().arg(QString::fromStdString(plugin.name)));
  configure.setEnabled(plugin.options & kWantsConfigure);
  parts.menus[UserAction::LeaveFullScreen].setEnabled(false);

  auto* recent = new QMenu(tr("Open &Recent"), this);
  parts.menus.Menu(MenuName::File).insertMenu(&parts.menus[UserAction::Quit], recent);
  parts.opening.ServeRecent(*recent);
  parts.fullScreen.InsertChoices(parts.menus.Menu(MenuName::View),
                                 parts.menus[UserAction::ShowBar]);
  parts.sources.Serve(parts.menus.Menu(MenuName::Sound));
  parts.sources.Serve(parts.chooser);
  for (const MenuName name :
       {MenuName::File, MenuName::Playback, MenuName::Sound, MenuName::View, MenuName::Help}) {
    QMenu& menu = parts.menus.Menu(name);
    parts.everything.addMenu(&menu);
    connect(&menu, &QMenu::aboutToHide, this, &MainWindow::TakeKeyboardBack,
            Qt::QueuedConnection); // another menu may follow at once
  }
}

// A menu that is closed with Escape leaves the focus to the menu bar, where letters open menus.
void MainWindow::TakeKeyboardBack() {
  if (!QApplication::activePopupWidget() && menuBar()->hasFocus()) parts_->stage.setFocus();
}

void MainWindow::setVisible(bool visible) {
  if (visible)
    parts_->stage.LetPaintingBegin();
  else if (isVisible())
    parts_->stage.LetPaintingEnd();
  QMainWindow::setVisible(visible);
}

void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  parts_->router.Watch(*this, parts_->area);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  settings_.setValue(kGeometryKey, saveGeometry());
  End();
  QMainWindow::closeEvent(event);
}

void MainWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange && parts_) {
    menuBar()->setVisible(!isFullScreen());
    parts_->menus[UserAction::FullScreen].setChecked(isFullScreen());
    parts_->menus[UserAction::LeaveFullScreen].setEnabled(isFullScreen());
    parts_->quiet.SetFullScreen(isFullScreen());
    parts_->fullScreen.Follow();
    emit FullScreenChanged();
  }
  QMainWindow::changeEvent(event);
}

// Keys that neither the plug-in nor the widget with the focus has used.
void MainWindow::keyPressEvent(QKeyEvent* event) {
  if (parts_->menus.RunKey(*event)) return;
  if (event->key() == Qt::Key_Escape)
    parts_->stage.setFocus(); // back from the transport bar
  else
    QMainWindow::keyPressEvent(event);
}

UserActions& MainWindow::Actions() {
  return parts_->actions;
}

void MainWindow::SetFullScreen(bool fullScreen) {
  parts_->fullScreen.Set(fullScreen);
}

void MainWindow::Raise() {
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

// Other programs get their answer first.
void MainWindow::QuitSoon() {
  QTimer::singleShot(0, this, [this] {
    close();
    QCoreApplication::quit();
  });
}

QString MainWindow::Configure() {
  const Status status = visualizer_->Plugin().Configure();
  if (status == status::kOk) return {};
  QString failure = tr("The visualizer's settings window cannot be opened (error %1)").arg(status);
  Report(failure);
  return failure;
}

void MainWindow::ShowAbout() {
  auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Halvenor"), QString(),
                              QMessageBox::Close, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::RichText);
  box->setText(tr("<h3>Halvenor %1</h3>"
                  "<p>Turns music into a moving picture: what this computer plays, your own files "
                  "and internet radio.</p>"
                  "<p>Copyright 2026 the Halvenor authors. MIT License.</p>")
                   .arg(QCoreApplication::applicationVersion()));
  box->open();
}

void MainWindow::ShowMenu(QPoint globalPosition) {
  parts_->everything.popup(globalPosition);
}

void MainWindow::ChooseSource() {
  QMenu& chooser = parts_->chooser;
  parts_->sources.Update(chooser); // its size depends on the sources that there are now
  const QPoint corner = parts_->stage.mapToGlobal(parts_->stage.rect().bottomLeft());
  chooser.popup(corner - QPoint(0, chooser.sizeHint().height()));
}

void MainWindow::ShowKeysOnce() {
  if (settings_.value(kKeysShownKey, false).toBool()) return;
  settings_.setValue(kKeysShownKey, true);
  parts_->stage.ShowOverlay(parts_->card, true);
}

void MainWindow::ShowTitle() {
  const QString artist = player_.Artist();
  QString title = player_.Title();
  if (title.isEmpty()) title = player_.SourceName();
  setWindowTitle(artist.isEmpty() ? title : tr("%1 - %2").arg(title, artist));
}

void MainWindow::ReportNoPicture() {
  hasNoPicture_ = true;
  const QString cause = QString::fromStdString(takeLog_());
  const QString message = cause.isEmpty() ? tr("The picture cannot be shown")
                                          : tr("The picture cannot be shown: %1").arg(cause);
  PrintError(message);
  parts_->notice.Tell(message, Notice::Kind::Lasting);
}

void MainWindow::Report(const QString& message) {
  PrintError(message);
  parts_->notice.Tell(message, Notice::Kind::Program);
}

void MainWindow::ReportNotice(const QString& message) {
  Report(ShownLine(message));
  hasNotice_ = true;
  QTimer::singleShot(0, this, [this] { hasNotice_ = false; }); // after an alert of the same message
}

void MainWindow::ReportAlert() {
  const QString log = QString::fromStdString(takeLog_());
  if (!hasNotice_ && !log.isEmpty()) Report(tr("The visualizer reports a problem: %1").arg(log));
}

} // namespace halvenor
