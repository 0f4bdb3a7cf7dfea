#include "desktop/main_window.h"

#include "desktop/commands.h"
#include "desktop/drawing_area.h"
#include "desktop/full_screen.h"
#include "desktop/idle_hold.h"
#include "desktop/key_router.h"
#include "desktop/keys_card.h"
#include "desktop/messages.h"
#include "desktop/notice.h"
#include "desktop/opening.h"
#include "desktop/player_commands.h"
#include "desktop/quiet_controls.h"
#include "desktop/signal_line.h"
#include "desktop/source_menu.h"
#include "desktop/stage.h"
#include "desktop/transport_bar.h"

#include <QtCore/QCoreApplication>
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

// Widgets within the window belong to that, all else to this.
struct MainWindow::Parts {
  Parts(MainWindow& window, Visualizer& visualizer, Player& player, QSettings& settings)
      : area(*new DrawingArea), commands(window, *window.menuBar()),
        playerCommands(player, commands),
        stage(*new Stage(MakePicture(area, visualizer.Plugin().Registration()),
                         *new TransportBar(player, commands))),
        bar(player, commands), line(player, commands[Command::ChooseSource]),
        fullScreen(window, area, visualizer, settings), quiet(area, stage, bar),
        idle(window, player), router(visualizer), opening(window, player, settings),
        sources(player, window), chooser(&window), everything(&window) {}

  DrawingArea& area;
  Commands commands;
  PlayerCommands playerCommands;
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
  QMenu chooser;    ///< the sources
  QMenu everything; ///< all menus, for where the menu bar is not
};

QString MainWindow::KeyHelp() {
  QString text;
  for (const Commands::Help& help : Commands::KeyHelp())
    text += QStringLiteral("  %1 %2\n").arg(help.keys, -15).arg(help.text);
  return text + tr("The visualizer has every key without Ctrl first; its key h shows what it "
                   "knows.");
}

MainWindow::MainWindow(std::unique_ptr<Visualizer> visualizer, Player& player, QSettings& settings,
                       std::function<std::string()> whyNoPicture)
    : visualizer_(std::move(visualizer)), player_(player), settings_(settings),
      whyNoPicture_(std::move(whyNoPicture)),
      parts_(std::make_unique<Parts>(*this, *visualizer_, player_, settings_)) {
  setCentralWidget(&parts_->stage);
  parts_->stage.setFocus();
  ConnectPlugin();
  ConnectStage();
  ConnectCommands();
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
  connect(visualizer_.get(), &Visualizer::ShowFailed, this, &MainWindow::ReportNoPicture);
  connect(visualizer_.get(), &Visualizer::Shown, this, &MainWindow::ShowKeysOnce,
          Qt::SingleShotConnection);
  connect(visualizer_.get(), &Visualizer::Shown, &parts.idle, &IdleHold::Stir);
  connect(&parts.area, &DrawingArea::Resized, &parts.idle, &IdleHold::Stir);
  connect(&parts.router, &KeyRouter::Pressed, &parts.idle, &IdleHold::Stir);
  connect(&parts.area, &DrawingArea::MenuWanted, this, &MainWindow::ShowMenu);
  connect(&parts.area, &DrawingArea::DoubleClicked, &parts.commands[Command::FullScreen],
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
  connect(&parts.router, &KeyRouter::Pressed, &parts.card,
          [&parts] { emit parts.card.Wanted(false); });
  connect(&player_, &Player::Reported, this, [this](const QString& line) { Report(line); });
  connect(&player_, &Player::TrackChanged, this, &MainWindow::ShowTitle);
  connect(&player_, &Player::Changed, this, [this] {
    ShowTitle();
    parts_->fullScreen.SetPlaying(player_.CurrentSignal() == Player::Signal::Sound);
  });
  parts.opening.TakeDrops(*this);
  parts.opening.TakeDrops(parts.area);
  setAcceptDrops(true);
}

void MainWindow::ConnectCommands() {
  Parts& parts = *parts_;
  Commands& commands = parts.commands;
  const auto on = [&](Command command, auto* object, auto act) {
    connect(&commands[command], &QAction::triggered, object, act);
  };
  // A choice that is kept.
  const auto choose = [&](Command command, const QString& key, bool first, auto act) {
    const bool chosen = settings_.value(key, first).toBool();
    commands[command].setChecked(chosen);
    act(chosen);
    on(command, this, [this, key, act](bool now) {
      settings_.setValue(key, now);
      act(now);
    });
  };
  on(Command::OpenFiles, &parts.opening, &Opening::AskFiles);
  on(Command::OpenFolder, &parts.opening, &Opening::AskFolder);
  on(Command::OpenAddress, &parts.opening, &Opening::AskAddress);
  on(Command::Quit, this, &MainWindow::close);
  on(Command::ChooseSource, this, &MainWindow::ChooseSource);
  on(Command::FullScreen, this, [this] { SetFullScreen(!isFullScreen()); });
  on(Command::LeaveFullScreen, this, [this] { SetFullScreen(false); });
  on(Command::Configure, this, &MainWindow::Configure);
  on(Command::Keys, &parts.card, [&parts] { emit parts.card.Wanted(true); });
  on(Command::About, this, &MainWindow::ShowAbout);
  choose(Command::ShowBar, kBarKey, true,
         [&parts](bool wanted) { parts.quiet.SetBarWanted(wanted); });
  choose(Command::KeepDrawing, kKeepDrawingKey, false,
         [&parts](bool keeps) { parts.idle.SetKeepsDrawing(keeps); });

  const PluginRegistration& plugin = visualizer_->Plugin().Registration();
  QAction& configure = commands[Command::Configure];
  configure.setText(configure.text().arg(QString::fromStdString(plugin.name)));
  configure.setEnabled(plugin.options & kWantsConfigure);
  commands[Command::LeaveFullScreen].setEnabled(false);

  QMenu* recent = new QMenu(tr("Open &Recent"), this);
  commands.Menu(MenuName::File).insertMenu(&commands[Command::Quit], recent);
  parts.opening.ServeRecent(*recent);
  parts.fullScreen.InsertChoices(commands.Menu(MenuName::View), commands[Command::ShowBar]);
  parts.sources.Serve(commands.Menu(MenuName::Sound));
  parts.sources.Serve(parts.chooser);
  for (const MenuName menu :
       {MenuName::File, MenuName::Playback, MenuName::Sound, MenuName::View, MenuName::Help}) {
    parts.everything.addMenu(&commands.Menu(menu));
    connect(&commands.Menu(menu), &QMenu::aboutToHide, this, &MainWindow::TakeKeyboardBack,
            Qt::QueuedConnection); // another menu may follow at once
  }
}

// A menu that is left with Escape leaves the keyboard to the menu bar, where letters open menus.
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
    parts_->commands[Command::FullScreen].setChecked(isFullScreen());
    parts_->commands[Command::LeaveFullScreen].setEnabled(isFullScreen());
    parts_->quiet.SetFullScreen(isFullScreen());
    parts_->fullScreen.Follow();
  }
  QMainWindow::changeEvent(event);
}

// What neither the plug-in nor the widget with the focus has used.
void MainWindow::keyPressEvent(QKeyEvent* event) {
  if (parts_->commands.Run(*event)) return;
  if (event->key() == Qt::Key_Escape)
    parts_->stage.setFocus(); // back from the bar
  else
    QMainWindow::keyPressEvent(event);
}

void MainWindow::SetFullScreen(bool fullScreen) {
  parts_->fullScreen.Set(fullScreen);
}

void MainWindow::Configure() {
  const Status status = visualizer_->Plugin().Configure();
  if (status != status::kOk) {
    Report(tr("the visualizer's settings window cannot be opened (status %1)").arg(status));
  }
}

void MainWindow::ShowAbout() {
  auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Halvenor"), QString(),
                              QMessageBox::Close, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setTextFormat(Qt::RichText);
  box->setText(tr("<h3>Halvenor %1</h3>"
                  "<p>Turns music into a moving picture: what this computer plays, your own files, "
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
  emit chooser.aboutToShow(); // its size depends on what is there now
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
  if (title.isEmpty()) title = tr("Visualizer");
  setWindowTitle(artist.isEmpty() ? title : QStringLiteral("%1 - %2").arg(title, artist));
}

void MainWindow::ReportNoPicture() {
  hasNoPicture_ = true;
  const std::string cause = whyNoPicture_();
  Report(cause.empty() ? tr("the picture cannot be shown")
                       : tr("the picture cannot be shown: %1").arg(QString::fromStdString(cause)),
         true);
}

void MainWindow::Report(const QString& line, bool stays) {
  PrintError(line);
  parts_->notice.Tell(line, stays);
}

} // namespace halvenor
