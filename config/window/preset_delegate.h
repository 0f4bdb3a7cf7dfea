// A preset in the list: its picture, its name below, its star in the corner.
#pragma once

#include <QtWidgets/QStyledItemDelegate>

namespace halvenor {

class PresetDelegate final : public QStyledItemDelegate {
  Q_OBJECT

public:
  using QStyledItemDelegate::QStyledItemDelegate;

  /// The size of every cell in `font`.
  static QSize CellSize(const QFont& font);
  /// Where the star of a cell is, for clicks.
  static QRect StarRect(const QRect& cell, const QFont& font);

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;
};

} // namespace halvenor
