#include "config_window/configuration_window.h"

#include "config_window/settings_page.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QVBoxLayout>

namespace halvenor {
namespace {

constexpr QSize kFirstSize(1080, 700);

QString LetterOf(const QString& text) {
  const qsizetype mark = text.indexOf(QLatin1Char('&'));
  return mark < 0 ? QString() : text.mid(mark + 1, 1).toLower();
}

// The letters that, with Alt, lead to the widgets of `panel`.
QString LettersIn(const QWidget& panel) {
  QString letters;
  for (const auto* button : panel.findChildren<QAbstractButton*>())
    letters += LetterOf(button->text());
  for (const auto* label : panel.findChildren<QLabel*>())
    letters += LetterOf(label->text());
  return letters;
}

// The same of a row of buttons.
QString LettersIn(const QLayout& row) {
  QString letters;
  for (int i = 0; i < row.count(); ++i) {
    if (const auto* button = qobject_cast<QAbstractButton*>(row.itemAt(i)->widget()))
      letters += LetterOf(button->text());
  }
  return letters;
}

} // namespace

ConfigurationWindow::ConfigurationWindow(LiveSettings& live, PresetChooser& chooser)
    : live_(live), chooser_(chooser), presets_(new PresetPanel(chooser, live)),
      messages_(new MessageLine) {
  setObjectName(QStringLiteral("halvenorConfiguration"));
  setWindowTitle(tr("Settings \u2014 Halvenor"));
  setAttribute(Qt::WA_QuitOnClose, false);
  MakeContents();
  resize(kFirstSize.boundedTo(screen()->availableSize() * 0.9));
}

void ConfigurationWindow::MakeContents() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  QLayout* const buttons = MakeButtons();
  auto* sides = new QSplitter;
  sides->setChildrenCollapsible(false);
  sides->setFocusPolicy(Qt::NoFocus);
  sides->addWidget(presets_);
  sides->addWidget(new SettingsPage(live_, LettersIn(*presets_) + LettersIn(*buttons)));
  sides->setStretchFactor(1, 1);
  layout->addWidget(sides, 1);
  layout->addWidget(messages_);
  layout->addLayout(buttons);
  setCentralWidget(page);
  presets_->FocusList();
}

QLayout* ConfigurationWindow::MakeButtons() {
  auto* row = new QHBoxLayout;
  row->addStretch();
  const auto add = [&](const QString& text, const QString& name, const QString& help,
                       const QKeySequence& keys, auto act) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(
        QStringLiteral("%1 (%2)").arg(help, keys.toString(QKeySequence::NativeText)));
    row->addWidget(button);
    connect(button, &QPushButton::clicked, this, act);
    connect(new QShortcut(keys, this), &QShortcut::activated, this, act);
  };
  add(tr("&Save"), QStringLiteral("save"), tr("Save these settings for next time"),
      QKeySequence::Save, [this] {
        if (Save()) Tell(tr("The settings are saved."));
      });
  add(tr("&Cancel"), QStringLiteral("cancel"), tr("Restore the previous settings and close"),
      QKeySequence(Qt::CTRL | Qt::Key_Backspace), [this] { Cancel(); });
  add(tr("Close"), QStringLiteral("close"), tr("Keep these settings and close"), Qt::Key_Escape,
      [this] { close(); });
  return row;
}

void ConfigurationWindow::OpenInFront() {
  if (!isVisible()) chooser_.Load();
  if (isMinimized()) setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void ConfigurationWindow::Remember() {
  live_.Flush();
  before_ = live_.Present();
  wasSwitching_ = chooser_.IsSwitching();
}

bool ConfigurationWindow::Save() {
  live_.Flush();
  const std::optional<Settings> now = live_.Present();
  if (!now) return true; // there is nothing left to store
  std::optional<Status> status = live_.Record().Ask(configuration_code::kStoreSettings);
  if (status.value_or(status::kOk) != status::kOk) {
    Tell(tr("The settings could not be saved (error %1).").arg(*status));
    return false;
  }
  if (!before_ || now->fullScreenWidth != before_->fullScreenWidth ||
      now->fullScreenHeight != before_->fullScreenHeight) {
    status = live_.Record().Ask(configuration_code::kPassFullScreenOptions);
    if (status.value_or(status::kOk) != status::kOk)
      Tell(tr("The full-screen size was refused (error %1).").arg(*status));
  }
  Remember();
  return true;
}

void ConfigurationWindow::Cancel() {
  live_.StopSwitching(); // a smooth change, too
  if (before_) live_.Edit([before = *before_](Settings& settings) { settings = before; });
  live_.Flush();
  chooser_.SetSwitching(wasSwitching_);
  hide();
}

void ConfigurationWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (event->spontaneous()) return;
  qApp->installEventFilter(this);
  refused_ = false;
  Remember();
  WatchWhileSeen();
}

void ConfigurationWindow::hideEvent(QHideEvent* event) {
  QMainWindow::hideEvent(event);
  if (event->spontaneous()) return;
  qApp->removeEventFilter(this);
  live_.Watch(false);
  presets_->StopPictures();
  // Hidden, not rejected, which would put a color back.
  for (auto* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly)) {
    dialog->hide();
    dialog->deleteLater();
  }
}

void ConfigurationWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowStateChange) WatchWhileSeen();
}

void ConfigurationWindow::WatchWhileSeen() {
  live_.Watch(isVisible() && !isMinimized());
}

// When a person closes it and the host cannot store, it stays once, with the reason in it; when the
// program closes it there is no use in staying.
void ConfigurationWindow::closeEvent(QCloseEvent* event) {
  const bool asked = event->spontaneous() || isActiveWindow();
  if (!Save() && asked && !std::exchange(refused_, true)) {
    Tell(tr("The settings could not be saved. Close again to close without saving."));
    event->ignore();
  }
}

// Dialogs and menus have a parent, and end nothing.
bool ConfigurationWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Close && watched->isWidgetType() && watched != this &&
      !watched->parent())
    Save();
  return QMainWindow::eventFilter(watched, event);
}

} // namespace halvenor
