// The quiet place for what a person should know.
#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QWidget>

namespace halvenor {

/// Shows the last message; the ones before it are a click away.
class MessageLine final : public QWidget {
  Q_OBJECT

public:
  MessageLine();

  void Tell(const QString& line);

protected:
  void resizeEvent(QResizeEvent* event) override;

private:
  void ShowLast();

  QLabel* last_;
  QToolButton* more_;
  QPlainTextEdit* all_;
  QStringList lines_;
};

} // namespace halvenor
