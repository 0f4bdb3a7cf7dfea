#include "desktop/notice.h"

#include <QtGui/QAccessible>

namespace halvenor {
namespace {

constexpr int kShownMilliseconds = 15'000;

} // namespace

Notice::Notice() {
  setTextFormat(Qt::PlainText);
  setMargin(6);
  timer_.setSingleShot(true);
  timer_.setInterval(kShownMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] { emit Wanted(false); });
}

void Notice::Tell(const QString& line, bool stays) {
  setText(line);
  setToolTip(line);
  setAccessibleName(line);
  stays ? timer_.stop() : timer_.start();
  emit Wanted(true);
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

} // namespace halvenor
