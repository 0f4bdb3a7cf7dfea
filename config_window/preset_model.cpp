#include "config_window/preset_model.h"

#include <algorithm>

namespace halvenor {

PresetModel::PresetModel(PresetChooser& chooser, PresetPictures& pictures)
    : chooser_(chooser), pictures_(pictures) {
  // Not at once: the change may come from an editor of the view, which still holds its row.
  connect(&chooser_, &PresetChooser::PresetsChanged, this, &PresetModel::Reload,
          Qt::QueuedConnection);
  connect(&chooser_, &PresetChooser::ChosenChanged, this, [this] { TouchAll(kChosen); });
  connect(&pictures_, &PresetPictures::Ready, this, [this](const std::string& id) {
    const QModelIndex index = IndexOf(id);
    if (index.isValid()) emit dataChanged(index, index, {kPicture});
  });
  Reload();
}

void PresetModel::Reload() {
  beginResetModel();
  const auto presets = chooser_.Library().Presets();
  rows_.assign(presets.begin(), presets.end());
  endResetModel();
}

void PresetModel::TouchAll(int role) {
  if (!rows_.empty()) emit dataChanged(index(0), index(static_cast<int>(rows_.size()) - 1), {role});
}

int PresetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PresetModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Preset& preset = rows_[static_cast<std::size_t>(index.row())];
  const bool chosen = chooser_.IsPlain() && preset.id == chooser_.Chosen();
  const QString name = QString::fromStdString(preset.name);
  switch (role) {
  case Qt::DisplayRole:
  case Qt::EditRole:
  case Qt::ToolTipRole:
    return name;
  case Qt::AccessibleTextRole:
    return name + (preset.favorite ? tr(", favorite") : QString()) +
           (chosen ? tr(", chosen") : QString());
  case kId:
    return QString::fromStdString(preset.id);
  case kFavorite:
    return preset.favorite;
  case kOwn:
    return preset.origin == Preset::Origin::Own;
  case kChosen:
    return chosen;
  case kPicture:
    return pictures_.Find(preset);
  default:
    return {};
  }
}

bool PresetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid()) return false;
  const Preset& preset = rows_[static_cast<std::size_t>(index.row())];
  if (role == kFavorite) {
    return chooser_.Alter(
        [&](PresetLibrary& library) { return library.SetFavorite(preset.id, value.toBool()); });
  }
  const std::string name = value.toString().toStdString();
  if (role != Qt::EditRole || name == preset.name) return false;
  return chooser_.Alter([&](PresetLibrary& library) { return library.Rename(preset.id, name); });
}

Qt::ItemFlags PresetModel::flags(const QModelIndex& index) const {
  return QAbstractListModel::flags(index) | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;
}

QModelIndex PresetModel::IndexOf(const std::string& id) const {
  const auto found = std::ranges::find(rows_, id, &Preset::id);
  return found == rows_.end() ? QModelIndex() : index(static_cast<int>(found - rows_.begin()));
}

void PresetFilter::SetText(const QString& text) {
  text_ = text.trimmed();
  invalidateFilter();
}

void PresetFilter::SetFavoritesOnly(bool only) {
  favoritesOnly_ = only;
  invalidateFilter();
}

bool PresetFilter::filterAcceptsRow(int row, const QModelIndex& parent) const {
  const QModelIndex index = sourceModel()->index(row, 0, parent);
  if (favoritesOnly_ && !index.data(PresetModel::kFavorite).toBool()) return false;
  return index.data().toString().contains(text_, Qt::CaseInsensitive);
}

} // namespace halvenor
