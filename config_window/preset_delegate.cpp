#include "config_window/preset_delegate.h"

#include "config_window/preset_model.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <cmath>
#include <numbers>

namespace halvenor {
namespace {

constexpr int kMargin = 4;
constexpr int kCorner = 5;
constexpr int kLongestName = 80;

int NameHeight(const QFont& font) {
  return QFontMetrics(font).height() + 2 * kMargin;
}

QRect PictureRect(const QRect& cell, const QFont& font) {
  return cell.adjusted(kMargin, kMargin, -kMargin, -NameHeight(font));
}

QRect NameRect(const QRect& cell, const QFont& font) {
  return {cell.left() + kMargin, cell.bottom() - NameHeight(font) + 1, cell.width() - 2 * kMargin,
          NameHeight(font)};
}

QPainterPath Star(const QRectF& in) {
  constexpr int kPoints = 10;
  constexpr double kInner = 0.42;
  const double radius = in.width() / 2;
  QPolygonF corners;
  for (int i = 0; i < kPoints; ++i) {
    const double angle = std::numbers::pi * (2.0 * i / kPoints - 0.5);
    const double length = i % 2 == 0 ? radius : radius * kInner;
    corners << in.center() + QPointF(std::cos(angle), std::sin(angle)) * length;
  }
  QPainterPath path;
  path.addPolygon(corners);
  path.closeSubpath();
  return path;
}

// Pictures are dark in the light theme, too, so the star has colors of its own.
void PaintStar(QPainter& painter, const QRect& in, bool filled) {
  const QPainterPath star = Star(QRectF(in).adjusted(2, 2, -2, -2));
  painter.setPen(QPen(QColor(0, 0, 0, 160), 3));
  painter.setBrush(Qt::NoBrush);
  painter.drawPath(star);
  painter.setPen(QPen(filled ? QColor(255, 204, 51) : QColor(255, 255, 255, 200), 1.2));
  if (filled) painter.setBrush(QColor(255, 204, 51));
  painter.drawPath(star);
}

} // namespace

int PresetDelegate::LeastWidth(const QFont& font) {
  return QFontMetrics(font).averageCharWidth() * 20;
}

int PresetDelegate::HeightFor(int width, const QFont& font) {
  const int picture =
      (width - 2 * kMargin) * PresetPictures::kSize.height() / PresetPictures::kSize.width();
  return kMargin + picture + NameHeight(font);
}

QRect PresetDelegate::StarRect(const QRect& cell, const QFont& font) {
  const int size = QFontMetrics(font).height() + 4;
  const QRect picture = PictureRect(cell, font);
  return {picture.right() - size - 1, picture.top() + 2, size, size};
}

void PresetDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
  const QPalette& palette = option.palette;
  const bool selected = option.state & QStyle::State_Selected;
  const bool chosen = index.data(PresetModel::kChosen).toBool();
  const bool favorite = index.data(PresetModel::kFavorite).toBool();
  const QRect picture = PictureRect(option.rect, option.font);
  painter->save();
  painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  if (selected) {
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette.brush(QPalette::Highlight));
    painter->drawRoundedRect(option.rect.adjusted(1, 1, -1, -1), kCorner + 2, kCorner + 2);
  }
  QPainterPath frame;
  frame.addRoundedRect(picture, kCorner, kCorner);
  painter->setClipPath(frame);
  const QPixmap pixmap = index.data(PresetModel::kPicture).value<QPixmap>();
  if (pixmap.isNull()) {
    QColor neutral = palette.color(QPalette::Text);
    neutral.setAlphaF(0.12F);
    painter->fillRect(picture, neutral);
  } else {
    painter->drawPixmap(picture, pixmap);
  }
  painter->setClipping(false);
  if (favorite || option.state & QStyle::State_MouseOver || selected)
    PaintStar(*painter, StarRect(option.rect, option.font), favorite);
  if (chosen) {
    painter->setPen(
        QPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Highlight), 3));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(frame);
  }
  QFont font = option.font;
  font.setBold(chosen);
  painter->setFont(font);
  painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
  const QRect name = NameRect(option.rect, option.font);
  painter->drawText(
      name, Qt::AlignCenter,
      QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideRight, name.width()));
  painter->restore();
  if (option.state & QStyle::State_HasFocus) {
    QStyleOptionFocusRect focus;
    focus.QStyleOption::operator=(option);
    focus.rect = option.rect.adjusted(1, 1, -1, -1);
    focus.backgroundColor = palette.color(selected ? QPalette::Highlight : QPalette::Base);
    QApplication::style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, option.widget);
  }
}

QWidget* PresetDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                      const QModelIndex&) const {
  auto* line = new QLineEdit(parent);
  line->setObjectName(QStringLiteral("presetName"));
  line->setAccessibleName(tr("Name of the Preset"));
  line->setMaxLength(kLongestName);
  line->setAlignment(Qt::AlignCenter);
  return line;
}

void PresetDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                          const QModelIndex&) const {
  QRect rect = NameRect(option.rect, option.font);
  rect.setTop(rect.bottom() - qMax(rect.height(), editor->sizeHint().height()) + 1);
  editor->setGeometry(rect);
}

} // namespace halvenor
