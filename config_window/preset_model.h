// The presets as a list for views.
#pragma once

#include "config_window/preset_chooser.h"
#include "config_window/preset_pictures.h"

#include <QtCore/QAbstractListModel>
#include <QtCore/QSortFilterProxyModel>

namespace halvenor {

/// One row a preset, in the library's order. Setting the edit role renames.
class PresetModel final : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role {
    kId = Qt::UserRole, ///< QString
    kFavorite,          ///< bool; may be set
    kOwn,               ///< bool: no factory preset
    kChosen,            ///< bool: its look is the one that is seen
    kPicture            ///< QPixmap, null while there is none
  };

  /// Both outlive this object.
  PresetModel(PresetChooser& chooser, PresetPictures& pictures);

  int rowCount(const QModelIndex& parent) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  /// Invalid when there is none.
  [[nodiscard]] QModelIndex IndexOf(const std::string& id) const;

private:
  void Reload();
  void TouchAll(int role);

  PresetChooser& chooser_;
  PresetPictures& pictures_;
  std::vector<Preset> rows_; ///< the library's own may go while a view looks
};

/// The rows whose name holds a text, and of those the favorites.
class PresetFilter final : public QSortFilterProxyModel {
  Q_OBJECT

public:
  explicit PresetFilter(PresetModel& model) { setSourceModel(&model); }

  void SetText(const QString& text);
  void SetFavoritesOnly(bool only);

protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

private:
  QString text_;
  bool favoritesOnly_ = false;
};

} // namespace halvenor
