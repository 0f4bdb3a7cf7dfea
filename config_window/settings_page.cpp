#include "config_window/settings_page.h"

#include <QtGui/QScreen>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

#include <algorithm>
#include <utility>
#include <vector>

namespace halvenor {
namespace {

constexpr std::size_t kFirstOfSecondColumn = 2;

std::vector<const SettingField*> FieldsByGroup() {
  std::vector<const SettingField*> fields;
  for (const SettingField& field : SettingFields())
    fields.push_back(&field);
  std::ranges::sort(fields, {},
                    [](const SettingField* field) { return std::pair(field->group, field->row); });
  return fields;
}

} // namespace

SettingsPage::SettingsPage(LiveSettings& live, const QString& takenLetters)
    : live_(live), letters_(takenLetters) {
  setObjectName(QStringLiteral("settings"));
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setWidget(new QWidget);
  auto* side = new QHBoxLayout(widget());
  for (QBoxLayout*& column : columns_) {
    column = new QVBoxLayout;
    column->addStretch();
    side->addLayout(column, 1);
  }
  QWidget* group = nullptr;
  std::optional<SettingGroup> last;
  for (const SettingField* field : FieldsByGroup()) {
    if (field->group != last) group = MakeGroup(SettingText(GroupTitle(field->group)));
    last = field->group;
    AddField(group, *field);
  }
  AddScreenSizeButton(group); // the screen's settings are the last group
  connect(&live_, &LiveSettings::Seen, this, &SettingsPage::ShowPresent);
  ShowPresent();
}

QWidget* SettingsPage::MakeGroup(const QString& title) {
  auto* group = new QGroupBox(title, widget()); // here at once: the order for the tab key
  auto* form = new QFormLayout(group);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->setRowWrapPolicy(QFormLayout::DontWrapRows);
  groups_.push_back(group);
  return group;
}

// `label` with the first letter that nothing else has as its key, while there are some.
QString SettingsPage::WithLetter(const QString& label) {
  for (qsizetype i = 0; i < label.size(); ++i) {
    const QChar letter = label[i].toLower();
    if (!letter.isLetter() || letters_.contains(letter)) continue;
    letters_.append(letter);
    return QString(label).insert(i, '&');
  }
  return label;
}

void SettingsPage::AddField(QWidget* group, const SettingField& field) {
  SettingControl* control = MakeSettingControl(field, this);
  controls_.push_back(control);
  auto* form = static_cast<QFormLayout*>(group->layout());
  if (control->HasOwnLabel()) {
    form->addRow(control->Editor());
    auto* button = static_cast<QAbstractButton*>(control->Editor());
    button->setText(WithLetter(button->text()));
  } else {
    auto* label = new QLabel(WithLetter(SettingLabel(field)));
    label->setBuddy(control->KeyboardTarget()); // a row takes no focus for its label's letter
    form->addRow(label, control->Editor());
  }
  connect(control, &SettingControl::Edited, this, [this, control] {
    live_.Edit([control](Settings& settings) { control->Store(settings); });
  });
}

void SettingsPage::AddScreenSizeButton(QWidget* group) {
  auto* button = new QPushButton(tr("Use This Screen's Size"));
  button->setObjectName(QStringLiteral("useScreenSize"));
  button->setAutoDefault(false);
  static_cast<QFormLayout*>(group->layout())->addRow({}, button);
  connect(button, &QPushButton::clicked, this, [this] {
    const QSizeF size = QSizeF(screen()->size()) * screen()->devicePixelRatio();
    findChild<QDoubleSpinBox*>(QStringLiteral("fullScreenWidth"))->setValue(size.width());
    findChild<QDoubleSpinBox*>(QStringLiteral("fullScreenHeight"))->setValue(size.height());
  });
}

// The width that the widest group needs, with the labels beside or above their controls.
int SettingsPage::WidestGroup(QFormLayout::RowWrapPolicy policy) const {
  int widest = 0;
  for (const QWidget* group : groups_) {
    auto* form = static_cast<QFormLayout*>(group->layout());
    const QFormLayout::RowWrapPolicy now = form->rowWrapPolicy();
    form->setRowWrapPolicy(policy);
    widest = std::max(widest, form->totalMinimumSize().width());
    form->setRowWrapPolicy(now);
  }
  return widest;
}

// The groups one under another, or in two columns where there is room. Where even one column is
// too wide, as in languages with long words, the labels move above their controls.
void SettingsPage::Arrange() {
  if (widest_ == 0) {
    widest_ = WidestGroup(QFormLayout::DontWrapRows);
    const QMargins margins = widget()->layout()->contentsMargins();
    around_ = margins.left() + margins.right() + style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    setMinimumWidth(WidestGroup(QFormLayout::WrapAllRows) + around_); // this is never cut
  }
  const auto policy =
      width() < widest_ + around_ ? QFormLayout::WrapAllRows : QFormLayout::DontWrapRows;
  for (const QWidget* group : groups_)
    static_cast<QFormLayout*>(group->layout())->setRowWrapPolicy(policy);
  const bool two = width() >= 2 * widest_ + around_ + widget()->layout()->spacing();
  if (two == twoColumns_) return;
  twoColumns_ = two;
  static_cast<QBoxLayout*>(widget()->layout())->setStretchFactor(columns_[1], two ? 1 : 0);
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    QBoxLayout* column = columns_[two && i >= kFirstOfSecondColumn];
    for (QBoxLayout* each : columns_)
      each->removeWidget(groups_[i]);
    column->insertWidget(column->count() - 1, groups_[i]);
  }
}

void SettingsPage::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  Arrange();
}

void SettingsPage::ShowPresent() {
  widget()->setEnabled(live_.Present().has_value());
  for (SettingControl* control : controls_) {
    if (live_.Present()) {
      control->Show(*live_.Present());
    } else {
      control->Forget();
    }
  }
}

} // namespace halvenor
