#include "desktop/window/notice.h"

#include <QtGui/QAccessible>

namespace halvenor {
namespace {

constexpr int kNoticeMilliseconds = 15'000;

} // namespace

Notice::Notice() {
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setMargin(6);
  timer_.setSingleShot(true);
  timer_.setInterval(kNoticeMilliseconds);
  connect(&timer_, &QTimer::timeout, this, [this] { emit Wanted(false); });
}

void Notice::Tell(const QString& message, Kind kind) {
  kind_ = kind;
  setText(message);
  setToolTip(message);
  setAccessibleName(message);
  kind == Kind::Lasting ? timer_.stop() : timer_.start();
  emit Wanted(true);
  QAccessibleEvent alert(this, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void Notice::EndPlayback() {
  if (kind_ == Kind::Playback) emit Wanted(false);
}

} // namespace halvenor
