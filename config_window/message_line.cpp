#include "config_window/message_line.h"

#include <QtGui/QAccessible>
#include <QtWidgets/QGridLayout>

namespace halvenor {
namespace {

constexpr int kMostMessages = 200;

} // namespace

MessageLine::MessageLine() : last_(new QLabel), more_(new QToolButton), all_(new QPlainTextEdit) {
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins({});
  layout->setColumnStretch(0, 1);
  last_->setObjectName(QStringLiteral("message"));
  last_->setTextFormat(Qt::PlainText);
  last_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  more_->setObjectName(QStringLiteral("allMessages"));
  more_->setCheckable(true);
  more_->setAutoRaise(true);
  more_->setText(tr("All Messages"));
  more_->setAccessibleName(more_->text());
  more_->setSizePolicy([](QSizePolicy policy) {
    policy.setRetainSizeWhenHidden(true);
    return policy;
  }(more_->sizePolicy()));
  more_->hide();
  all_->setObjectName(QStringLiteral("messages"));
  all_->setReadOnly(true);
  all_->setTabChangesFocus(true);
  all_->setMaximumBlockCount(kMostMessages);
  all_->setMaximumHeight(all_->fontMetrics().lineSpacing() * 6);
  all_->setAccessibleName(tr("Messages"));
  all_->hide();
  layout->addWidget(all_, 0, 0, 1, 2);
  layout->addWidget(last_, 1, 0);
  layout->addWidget(more_, 1, 1);
  connect(more_, &QToolButton::toggled, all_, &QWidget::setVisible);
}

void MessageLine::Tell(const QString& line) {
  if (!lines_.isEmpty() && lines_.last() == line) return;
  lines_.append(line);
  if (lines_.size() > kMostMessages) lines_.removeFirst();
  all_->appendPlainText(line);
  more_->setVisible(lines_.size() > 1);
  ShowLast();
  QAccessibleEvent told(last_, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void MessageLine::ShowLast() {
  if (lines_.isEmpty()) return;
  const QString& line = lines_.last();
  last_->setText(last_->fontMetrics().elidedText(line, Qt::ElideMiddle, last_->width()));
  last_->setToolTip(line);
  last_->setAccessibleName(line);
}

void MessageLine::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  ShowLast();
}

} // namespace halvenor
