#include "config_window/preset_panel.h"

#include <QtCore/QDir>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace halvenor {

// What can be done with presets, as the menu shows it; those with a place have a button, too.
struct PresetPanel::ActionRow {
  const char* name;
  const char* text;
  const char* keys;
  void (PresetPanel::*act)();
  bool needsCurrent;
  int row = -1; ///< of the buttons below the list
  const char* button = nullptr;
  bool endsSection = false;
};

const PresetPanel::ActionRow PresetPanel::kActions[] = {
    {"previous", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Previous Preset"), "Ctrl+PgUp",
     &PresetPanel::Previous, false, 0, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "&Previous")},
    {"next", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Next Preset"), "Ctrl+PgDown",
     &PresetPanel::Next, false, 0, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "&Next")},
    {"random", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Random Preset"), "Ctrl+R",
     &PresetPanel::Random, false, 0, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "&Random"), true},
    {"add", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Add the Current Look"), "Ctrl+N",
     &PresetPanel::Add, false, 1, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "&Add")},
    {"duplicate", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Duplicate"), "Ctrl+D",
     &PresetPanel::Duplicate, true, 1, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Dupl&icate")},
    {"rename", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Rename"), "F2", &PresetPanel::Rename,
     true},
    {"replace", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Replace with the Current Look"), "",
     &PresetPanel::Replace, true},
    {"favorite", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Favorite"), "Ctrl+B",
     &PresetPanel::Favorite, true},
    {"delete", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Delete"), "Del", &PresetPanel::Delete,
     true, 1, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "D&elete"), true},
    {"undo", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Undo"), "Ctrl+Z", &PresetPanel::Undo,
     false, 1, QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Und&o")},
    {"restoreFactory", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Restore Factory Presets"), "",
     &PresetPanel::RestoreFactory, false, -1, nullptr, true},
    {"import", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Import..."), "Ctrl+O",
     &PresetPanel::Import, false},
    {"exportThis", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Export This Preset..."), "",
     &PresetPanel::ExportThis, true},
    {"exportAll", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Export All Presets..."), "Ctrl+E",
     &PresetPanel::ExportAll, false, -1, nullptr, true},
    {"find", QT_TRANSLATE_NOOP("halvenor::PresetPanel", "Find"), "Ctrl+F", &PresetPanel::Find,
     false},
};

PresetPanel::PresetPanel(PresetChooser& chooser, LiveSettings& live)
    : chooser_(chooser), live_(live),
      pictures_([this](const std::string& id) { return list_->IsSeen(id); }),
      model_(chooser_, pictures_), filter_(model_),
      list_(new PresetList(chooser_, model_, filter_)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins({});
  MakeActions();
  layout->addLayout(MakeSearch());
  layout->addWidget(list_, 1);
  layout->addLayout(MakeButtons());
  layout->addWidget(MakeSwitching());
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const int cell = PresetDelegate::LeastWidth(font());
  list_->setMinimumSize(cell + bar + 8, PresetDelegate::HeightFor(cell, font()) / 2);
  connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          &PresetPanel::UpdateActions);
  connect(&filter_, &QAbstractItemModel::modelReset, this, &PresetPanel::UpdateActions);
  connect(&live_, &LiveSettings::SwitchingChanged, this, &PresetPanel::UpdateSwitching);
  connect(&chooser_, &PresetChooser::ChosenChanged, this, [this] {
    if (chooser_.IsPlain()) list_->SetCurrentId(chooser_.Chosen());
  });
  list_->SetCurrentId(chooser_.Chosen());
  UpdateActions();
  UpdateSwitching();
}

void PresetPanel::MakeActions() {
  menu_ = new QMenu(this);
  for (const ActionRow& row : kActions) {
    QAction* action = menu_->addAction(tr(row.text));
    action->setObjectName(QLatin1String(row.name));
    action->setShortcut(QKeySequence::fromString(QLatin1String(row.keys)));
    connect(action, &QAction::triggered, this, row.act);
    // Keys that have another meaning in a text work in the list alone.
    const bool inList =
        row.needsCurrent && !QLatin1String(row.keys).startsWith(QLatin1String("Ctrl"));
    action->setShortcutContext(inList ? Qt::WidgetShortcut : Qt::WindowShortcut);
    (inList ? static_cast<QWidget*>(list_) : this)->addAction(action);
    if (row.act == &PresetPanel::Undo) undo_ = action;
    if (row.endsSection) menu_->addSeparator();
    actions_.push_back(action);
  }
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  connect(list_, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { menu_->popup(list_->viewport()->mapToGlobal(at)); });
}

QLayout* PresetPanel::MakeSearch() {
  auto* row = new QHBoxLayout;
  search_ = new QLineEdit;
  search_->setObjectName(QStringLiteral("search"));
  search_->setPlaceholderText(tr("Search presets"));
  search_->setAccessibleName(search_->placeholderText());
  // Dark themes may leave the usual color for this at black.
  QPalette palette = search_->palette();
  QColor faint = palette.color(QPalette::Text);
  faint.setAlphaF(0.5F);
  palette.setColor(QPalette::PlaceholderText, faint);
  search_->setPalette(palette);
  search_->setClearButtonEnabled(true);
  connect(search_, &QLineEdit::textChanged, &filter_, &PresetFilter::SetText);
  favoritesShown_ = new QToolButton;
  favoritesShown_->setObjectName(QStringLiteral("favoritesShown"));
  favoritesShown_->setText(QStringLiteral("\u2605"));
  favoritesShown_->setCheckable(true);
  favoritesShown_->setFocusPolicy(Qt::StrongFocus);
  favoritesShown_->setToolTip(tr("Show only favorites"));
  favoritesShown_->setAccessibleName(favoritesShown_->toolTip());
  connect(favoritesShown_, &QToolButton::toggled, &filter_, &PresetFilter::SetFavoritesOnly);
  row->addWidget(search_, 1);
  row->addWidget(favoritesShown_);
  return row;
}

QLayout* PresetPanel::MakeButtons() {
  auto* rows = new QGridLayout;
  int places[2] = {};
  for (std::size_t i = 0; i < std::size(kActions); ++i) {
    const ActionRow& row = kActions[i];
    if (row.row < 0) continue;
    auto* button = new QPushButton(tr(row.button));
    button->setObjectName(QLatin1String(row.name) + QStringLiteral(".button"));
    button->setAccessibleName(tr(row.text));
    button->setToolTip(actions_[i]->toolTip());
    connect(button, &QPushButton::clicked, actions_[i], &QAction::trigger);
    connect(actions_[i], &QAction::enabledChanged, button, &QWidget::setEnabled);
    button->setEnabled(actions_[i]->isEnabled());
    rows->addWidget(button, row.row, places[row.row]++);
  }
  auto* more = new QPushButton(tr("&More"));
  more->setObjectName(QStringLiteral("more.button"));
  more->setAccessibleName(tr("More preset actions"));
  more->setMenu(menu_);
  rows->addWidget(more, 0, places[0]);
  return rows;
}

QWidget* PresetPanel::MakeSwitching() {
  auto* group = new QGroupBox(tr("Changing Presets"));
  auto* grid = new QGridLayout(group);
  manual_ = new QRadioButton(tr("Manua&l"));
  byItself_ = new QRadioButton(tr("Automaticall&y, every"));
  interval_ = new QDoubleSpinBox;
  smooth_ = new QDoubleSpinBox;
  random_ = new QCheckBox(tr("Random or&der"));
  favoritesOnly_ = new QCheckBox(tr("Fa&vorites only"));
  const struct {
    QWidget* widget;
    const char* name;
    QString label;
  } named[] = {
      {manual_, "manual", tr("Manual: presets change by hand")},
      {byItself_, "byItself", tr("Presets change automatically")},
      {interval_, "interval", tr("Seconds between preset changes")},
      {smooth_, "smooth", tr("Duration of a smooth change in seconds")},
      {random_, "randomOrder", tr("Random order")},
      {favoritesOnly_, "favoritesOnly", tr("Use only favorites")},
  };
  for (const auto& [widget, name, label] : named) {
    widget->setObjectName(QLatin1String(name));
    widget->setAccessibleName(label);
  }
  interval_->setDecimals(0);
  interval_->setRange(2, 3600);
  smooth_->setDecimals(1);
  smooth_->setRange(0, 60);
  smooth_->setSingleStep(0.5);
  for (QDoubleSpinBox* spin : {interval_, smooth_})
    spin->setSuffix(tr(" s"));
  auto* smoothLabel = new QLabel(tr("Smoo&th change"));
  smoothLabel->setBuddy(smooth_);
  grid->addWidget(manual_, 0, 0);
  grid->addWidget(byItself_, 1, 0);
  grid->addWidget(interval_, 1, 1);
  grid->addWidget(smoothLabel, 2, 0);
  grid->addWidget(smooth_, 2, 1);
  grid->addWidget(random_, 3, 0);
  grid->addWidget(favoritesOnly_, 3, 1);
  const Switching& now = chooser_.Preferences();
  interval_->setValue(now.interval);
  smooth_->setValue(now.smooth);
  random_->setChecked(now.random);
  favoritesOnly_->setChecked(now.favoritesOnly);
  connect(byItself_, &QRadioButton::toggled, this, [this](bool on) { chooser_.SetSwitching(on); });
  for (QDoubleSpinBox* spin : {interval_, smooth_})
    connect(spin, &QDoubleSpinBox::valueChanged, this, &PresetPanel::ReadSwitching);
  for (QCheckBox* box : {random_, favoritesOnly_})
    connect(box, &QCheckBox::toggled, this, &PresetPanel::ReadSwitching);
  return group;
}

void PresetPanel::ReadSwitching() {
  chooser_.SetPreferences(
      {interval_->value(), smooth_->value(), favoritesOnly_->isChecked(), random_->isChecked()});
}

void PresetPanel::UpdateSwitching() {
  const QSignalBlocker quiet(byItself_);
  (chooser_.IsSwitching() ? byItself_ : manual_)->setChecked(true);
}

void PresetPanel::UpdateActions() {
  const bool current = list_->currentIndex().isValid();
  for (std::size_t i = 0; i < std::size(kActions); ++i)
    actions_[i]->setEnabled(current || !kActions[i].needsCurrent);
  const std::string undo = chooser_.Library().UndoText();
  undo_->setEnabled(!undo.empty());
  undo_->setText(undo.empty() ? tr("Undo") : tr("Undo: %1").arg(QString::fromStdString(undo)));
}

void PresetPanel::Tell(const QString& line) {
  live_.Tell(line);
}

void PresetPanel::Add() {
  if (chooser_.AddPresent()) list_->SetCurrentId(chooser_.Chosen());
}

void PresetPanel::Rename() {
  list_->edit(list_->currentIndex());
}

void PresetPanel::Duplicate() {
  std::string id;
  if (chooser_.Alter(
          [&](PresetLibrary& library) { return library.Duplicate(list_->CurrentId(), &id); }))
    list_->SetCurrentId(id);
}

void PresetPanel::Replace() {
  live_.Flush();
  if (!live_.Present()) return;
  chooser_.Alter([this](PresetLibrary& library) {
    return library.Replace(list_->CurrentId(), *live_.Present());
  });
}

void PresetPanel::Favorite() {
  const QModelIndex index = list_->currentIndex();
  filter_.setData(index, !index.data(PresetModel::kFavorite).toBool(), PresetModel::kFavorite);
}

void PresetPanel::Delete() {
  const QModelIndex index = list_->currentIndex();
  const QString name = index.data().toString();
  const QModelIndex neighbor =
      filter_.index(index.row() + 1 < filter_.rowCount() ? index.row() + 1 : index.row() - 1, 0);
  const std::string next = neighbor.data(PresetModel::kId).toString().toStdString();
  if (!chooser_.Alter(
          [this](PresetLibrary& library) { return library.Remove(list_->CurrentId()); }))
    return;
  list_->SetCurrentId(next);
  Tell(tr("\"%1\" is deleted. %2 brings it back.")
           .arg(name, undo_->shortcut().toString(QKeySequence::NativeText)));
}

void PresetPanel::Undo() {
  const QString what = QString::fromStdString(chooser_.Library().UndoText());
  if (chooser_.Alter([](PresetLibrary& library) { return library.Undo(); }))
    Tell(tr("Undone: %1").arg(what));
}

void PresetPanel::RestoreFactory() {
  if (chooser_.Alter([](PresetLibrary& library) { return library.RestoreFactory(); }))
    Tell(tr("The factory presets are restored."));
}

QFileDialog* PresetPanel::MakeFileDialog(const QString& title, const char* name) {
  auto* dialog = new QFileDialog(window(), title, QDir::homePath());
  dialog->setObjectName(QLatin1String(name));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setNameFilters({tr("Presets (*.preset)"), tr("All Files (*)")});
  return dialog;
}

void PresetPanel::Import() {
  QFileDialog* dialog = MakeFileDialog(tr("Import Presets"), "importDialog");
  dialog->setFileMode(QFileDialog::ExistingFile);
  connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
    std::vector<std::string> added;
    if (!chooser_.Alter(
            [&](PresetLibrary& library) { return library.Import(file.toStdString(), &added); }))
      return;
    if (!added.empty()) list_->SetCurrentId(added.front());
    Tell(added.size() == 1 ? tr("One preset imported.")
                           : tr("%n presets imported.", nullptr, static_cast<int>(added.size())));
  });
  dialog->open();
}

void PresetPanel::ExportThis() {
  Export(list_->currentIndex().data().toString(), {list_->CurrentId()});
}

void PresetPanel::ExportAll() {
  std::vector<std::string> ids;
  for (const Preset& preset : chooser_.Library().Presets())
    ids.push_back(preset.id);
  Export(tr("Halvenor Presets"), std::move(ids));
}

void PresetPanel::Export(const QString& suggestion, std::vector<std::string> ids) {
  QString name = suggestion;
  name.replace('/', '-');
  QFileDialog* dialog = MakeFileDialog(tr("Export Presets"), "exportDialog");
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("preset"));
  dialog->selectFile(name);
  connect(dialog, &QFileDialog::fileSelected, this,
          [this, ids = std::move(ids)](const QString& file) {
            const auto problem = chooser_.Library().Export(file.toStdString(), ids);
            Tell(problem ? QString::fromStdString(*problem)
                         : tr("Exported to %1.").arg(QDir::toNativeSeparators(file)));
          });
  dialog->open();
}

void PresetPanel::Find() {
  search_->setFocus(Qt::ShortcutFocusReason);
  search_->selectAll();
}

} // namespace halvenor
