#include "desktop/window/full_screen.h"

#include "desktop/window/window_system.h"

#include <QtGui/QActionGroup>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QWindow>

namespace halvenor {
namespace {

const QString kScreenKey = QStringLiteral("fullScreen/screen");
const QString kAsAskedKey = QStringLiteral("fullScreen/asTheVisualizerAsks");

} // namespace

FullScreen::FullScreen(QWidget& window, DrawingArea& area, Visualizer& visualizer,
                       QSettings& settings)
    : window_(window), area_(area), visualizer_(visualizer), settings_(settings) {}

void FullScreen::Set(bool fullScreen) {
  if (fullScreen == window_.isFullScreen()) return;
  if (fullScreen) {
    before_ = QRect(); // the window manager may have ended the last full screen
    QScreen* const screen = ChosenScreen();
    if (screen && screen != window_.screen()) MoveTo(*screen);
  }
  window_.setWindowState(window_.windowState().setFlag(Qt::WindowFullScreen, fullScreen));
  if (!fullScreen && !before_.isNull()) MoveBack();
}

void FullScreen::Follow() {
  ApplySize();
  visualizer_.TellFullScreen(window_.isFullScreen());
  SetPlaying(playing_);
}

void FullScreen::SetPlaying(bool playing) {
  playing_ = playing;
  screenSaver_.SetInhibited(playing_ && window_.isFullScreen());
}

// A window enters full screen on the screen that it is on. Under Wayland only the compositor places
// it; with a position of its own Qt would assume that it is on another screen, of another scale.
void FullScreen::MoveTo(QScreen& screen) {
  if (IsOnWayland()) {
    if (window_.windowHandle()) window_.windowHandle()->setScreen(&screen);
    return;
  }
  wasMaximized_ = window_.isMaximized();
  before_ = wasMaximized_ ? window_.normalGeometry() : window_.geometry();
  if (wasMaximized_) window_.setWindowState(Qt::WindowNoState);
  if (window_.windowHandle()) window_.windowHandle()->setScreen(&screen);
  QRect there(QPoint(), before_.size().boundedTo(screen.availableSize()));
  there.moveCenter(screen.availableGeometry().center());
  window_.setGeometry(there);
}

void FullScreen::MoveBack() {
  window_.setGeometry(before_);
  before_ = QRect();
  if (wasMaximized_) window_.setWindowState(Qt::WindowMaximized);
}

QScreen* FullScreen::ChosenScreen() const {
  const QString chosen = settings_.value(kScreenKey).toString();
  if (chosen.isEmpty()) return nullptr;
  for (QScreen* screen : QGuiApplication::screens()) {
    if (screen->name() == chosen) return screen;
  }
  return nullptr;
}

void FullScreen::ChooseScreen(const QString& name) {
  settings_.setValue(kScreenKey, name);
}

void FullScreen::ChooseSize(bool asAsked) {
  settings_.setValue(kAsAskedKey, asAsked);
  ApplySize();
}

void FullScreen::ApplySize() {
  const bool asAsked = window_.isFullScreen() && settings_.value(kAsAskedKey, false).toBool();
  const FullScreenOptions& wanted = visualizer_.WantedFullScreen();
  area_.SetPictureSize(asAsked ? QSize(wanted.desiredWidth, wanted.desiredHeight) : QSize());
}

void FullScreen::InsertChoices(QMenu& menu, QAction& before) {
  auto* screens = new QMenu(tr("Full Screen &On"), &menu);
  menu.insertMenu(&before, screens);
  connect(screens, &QMenu::aboutToShow, this, [this, screens] { FillScreens(*screens); });
  FillScreens(*screens);

  auto* sizes = new QMenu(tr("Full Screen Si&ze"), &menu);
  menu.insertMenu(&before, sizes);
  auto* group = new QActionGroup(sizes);
  const bool asAsked = settings_.value(kAsAskedKey, false).toBool();
  for (const bool row : {false, true}) {
    QAction* action = sizes->addAction(row ? tr("Size the &Visualizer Asks For, Scaled Up")
                                           : tr("Full &Resolution of the Screen"));
    action->setCheckable(true);
    action->setChecked(row == asAsked);
    action->setActionGroup(group);
    connect(action, &QAction::triggered, this, [this, row] { ChooseSize(row); });
  }
}

void FullScreen::FillScreens(QMenu& menu) {
  menu.clear();
  const QString chosen = settings_.value(kScreenKey).toString();
  const auto add = [&](const QString& text, const QString& name) {
    QAction* action = menu.addAction(text);
    action->setCheckable(true);
    action->setChecked(name == chosen);
    connect(action, &QAction::triggered, this, [this, name] { ChooseScreen(name); });
  };
  add(tr("Screen of the &Window"), QString());
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QSize size = screen->size() * screen->devicePixelRatio();
    add(tr("%1, %2 × %3").arg(screen->name()).arg(size.width()).arg(size.height()), screen->name());
  }
}

} // namespace halvenor
