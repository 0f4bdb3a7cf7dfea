// A preset in the list: its picture, its name below, its star in the corner.
#pragma once

#include <QtWidgets/QStyledItemDelegate>

namespace halvenor {

class PresetDelegate final : public QStyledItemDelegate {
  Q_OBJECT

public:
  using QStyledItemDelegate::QStyledItemDelegate;

  /// The least width of a cell in `font`, and the height of one that is `width` wide.
  static int LeastWidth(const QFont& font);
  static int HeightFor(int width, const QFont& font);
  /// Where the star of a cell is, for clicks.
  static QRect StarRect(const QRect& cell, const QFont& font);

  /// The size of every cell from now on.
  void SetCell(const QSize& cell) { cell_ = cell; }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override { return cell_; }
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

private:
  QSize cell_;
};

} // namespace halvenor
