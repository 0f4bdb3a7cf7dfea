#include "desktop/window/media_button.h"

#include <QtGui/QAction>
#include <QtGui/QPainterPath>
#include <QtWidgets/QStyleOptionToolButton>
#include <QtWidgets/QStylePainter>

#include <iterator>

namespace halvenor {
namespace {

// Polygons on a grid of 16 x 16, as x, y pairs; -1 ends a polygon.
constexpr double kEnd = -1;
constexpr double kPlay[] = {4, 2, 14, 8, 4, 14, kEnd};
constexpr double kPause[] = {3, 2, 7, 2, 7, 14, 3, 14, kEnd, 9, 2, 13, 2, 13, 14, 9, 14, kEnd};
constexpr double kPrevious[] = {3, 3, 5, 3, 5, 13, 3, 13, kEnd, 13, 3, 5, 8, 13, 13, kEnd};
constexpr double kNext[] = {11, 3, 13, 3, 13, 13, 11, 13, kEnd, 3, 3, 11, 8, 3, 13, kEnd};
constexpr double kLoud[] = {1,  6,    4,    6, 8,    2,  8,    14, 4,   10, 1,
                            10, kEnd, 10,   6, 11.5, 6,  11.5, 10, 10,  10, kEnd,
                            13, 4,    14.5, 4, 14.5, 12, 13,   12, kEnd};
constexpr double kMuted[] = {1,    6,    4,    6,   8,  2,   8,    14, 4,    10, 1,
                             10,   kEnd, 10,   6.5, 11, 5.5, 15.5, 10, 14.5, 11, kEnd,
                             14.5, 5.5,  15.5, 6.5, 11, 11,  10,   10, kEnd};

struct Shape {
  const double* begin;
  const double* end;
};
constexpr Shape kShapes[] = {
    {std::begin(kPlay), std::end(kPlay)},         {std::begin(kPause), std::end(kPause)},
    {std::begin(kPrevious), std::end(kPrevious)}, {std::begin(kNext), std::end(kNext)},
    {std::begin(kLoud), std::end(kLoud)},         {std::begin(kMuted), std::end(kMuted)},
};

QPainterPath PathOf(MediaButton::Sign sign) {
  const Shape& shape = kShapes[static_cast<std::size_t>(sign)];
  QPainterPath path;
  path.setFillRule(Qt::WindingFill);
  QPolygonF polygon;
  for (const double* at = shape.begin; at != shape.end;) {
    if (*at == kEnd) {
      path.addPolygon(polygon);
      path.closeSubpath();
      polygon.clear();
      ++at;
    } else {
      polygon << QPointF(at[0], at[1]);
      at += 2;
    }
  }
  return path;
}

} // namespace

MediaButton::MediaButton(Sign sign, QAction& action, const QString& name) {
  setAutoRaise(true);
  setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard focus with the picture
  SetSign(sign, name);
  setEnabled(action.isEnabled());
  connect(&action, &QAction::changed, this, [this, &action] { setEnabled(action.isEnabled()); });
  connect(this, &QToolButton::clicked, &action, &QAction::trigger);
}

void MediaButton::SetSign(Sign sign, const QString& name) {
  sign_ = sign;
  setAccessibleName(name);
  setToolTip(name);
  update();
}

QSize MediaButton::sizeHint() const {
  const int side = fontMetrics().height() + 12;
  return {side + 4, side};
}

void MediaButton::paintEvent(QPaintEvent*) {
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
  const double side = fontMetrics().height();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate((width() - side) / 2, (height() - side) / 2);
  painter.scale(side / 16, side / 16);
  painter.fillPath(
      PathOf(sign_),
      palette().brush(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
}

} // namespace halvenor
