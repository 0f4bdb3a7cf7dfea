#include "config_window/preset_list.h"

#include <QtGui/QMouseEvent>
#include <QtWidgets/QScrollBar>

#include <algorithm>

namespace halvenor {

PresetList::PresetList(PresetChooser& chooser, PresetModel& model, PresetFilter& filter)
    : model_(model), filter_(filter), delegate_(new PresetDelegate(this)) {
  setObjectName(QStringLiteral("presets"));
  setAccessibleName(tr("Presets"));
  setViewMode(IconMode);
  setMovement(Static);
  setResizeMode(Adjust);
  setUniformItemSizes(true);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setEditTriggers(EditKeyPressed);
  setMouseTracking(true);
  setItemDelegate(delegate_);
  connect(&filter_, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
    if (kept_.empty()) kept_ = CurrentId();
    keptScroll_ = verticalScrollBar()->value();
  });
  setModel(&filter_);
  connect(&filter_, &QAbstractItemModel::modelReset, this, [this] {
    doItemsLayout();
    verticalScrollBar()->setValue(keptScroll_);
    SetCurrentId(std::exchange(kept_, {}));
  });
  const auto choose = [&chooser](const QModelIndex& index) {
    chooser.Choose(index.data(PresetModel::kId).toString().toStdString());
  };
  connect(this, &QListView::clicked, this, choose);
  connect(this, &QListView::activated, this, choose);
}

std::string PresetList::CurrentId() const {
  return currentIndex().data(PresetModel::kId).toString().toStdString();
}

void PresetList::SetCurrentId(const std::string& id) {
  kept_ = id;
  const QModelIndex index = filter_.mapFromSource(model_.IndexOf(id));
  if (!index.isValid()) return;
  setCurrentIndex(index);
  kept_.clear();
}

bool PresetList::IsSeen(const std::string& id) const {
  const QModelIndex index = filter_.mapFromSource(model_.IndexOf(id));
  return isVisible() && index.isValid() && visualRect(index).intersects(viewport()->rect());
}

// As many columns as fit, over the whole width.
void PresetList::resizeEvent(QResizeEvent* event) {
  const int room = viewport()->width() - 1; // the view wraps at its very edge
  const int columns = std::max(1, room / PresetDelegate::LeastWidth(font()));
  const int width = room / columns;
  delegate_->SetCell({width, PresetDelegate::HeightFor(width, font())});
  setGridSize({width, PresetDelegate::HeightFor(width, font())});
  QListView::resizeEvent(event);
}

bool PresetList::ClickedStar(const QMouseEvent& event) {
  const QPoint at = event.position().toPoint();
  const QModelIndex index = indexAt(at);
  if (event.button() != Qt::LeftButton || !index.isValid() ||
      !PresetDelegate::StarRect(visualRect(index), font()).contains(at))
    return false;
  filter_.setData(index, !index.data(PresetModel::kFavorite).toBool(), PresetModel::kFavorite);
  return true;
}

void PresetList::mousePressEvent(QMouseEvent* event) {
  onStar_ = ClickedStar(*event);
  if (!onStar_) QListView::mousePressEvent(event);
}

void PresetList::mouseReleaseEvent(QMouseEvent* event) {
  if (!std::exchange(onStar_, false)) QListView::mouseReleaseEvent(event);
}

// Two quick clicks are two clicks: the first has chosen the preset.
void PresetList::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

} // namespace halvenor
