#include "desktop/remote/control_commands.h"

#include "desktop/shown_text.h"
#include "desktop/window/user_actions.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

#include <algorithm>

namespace halvenor {
namespace {

constexpr double kMostPercent = 100;
constexpr qsizetype kMany = 10'000;

struct ArgumentRule {
  ActionArgument argument;
  const char* usage;
  qsizetype least; ///< how many
  qsizetype most;
};

constexpr ArgumentRule kRules[] = {
    {ActionArgument::None, "", 0, 0},         {ActionArgument::Media, "FILE...", 1, kMany},
    {ActionArgument::Source, "[NAME]", 0, 1}, {ActionArgument::Keys, "KEY...", 1, kMany},
    {ActionArgument::Percent, "[+-]N", 1, 1}, {ActionArgument::Seconds, "[+-]S", 1, 1},
};

const ArgumentRule& RuleOf(const ActionRow& row) {
  return *std::ranges::find(kRules, row.argument, &ArgumentRule::argument);
}

const ActionRow* Find(const QString& word) {
  const auto rows = UserActions::Rows();
  const auto found = std::ranges::find_if(rows, [&](const ActionRow& row) {
    return *row.word != '\0' && word == QLatin1String(row.word);
  });
  return found == rows.end() ? nullptr : &*found;
}

QString Usage(const ActionRow& row) {
  return QStringLiteral("%1 %2")
      .arg(QLatin1String(row.word), QLatin1String(RuleOf(row).usage))
      .trimmed();
}

QString NumberFault(const ActionRow& row, const QString& text) {
  const std::optional<Amount> amount = ReadAmount(text);
  if (!amount) return QStringLiteral("\"%1\" is not a number").arg(ShownLine(text));
  if (row.argument == ActionArgument::Percent && !amount->isStep && amount->value > kMostPercent)
    return QStringLiteral("The volume must be from 0 to 100");
  return {};
}

} // namespace

QString ControlHelp() {
  constexpr int kColumn = 16;
  QString help;
  for (const ActionRow& row : UserActions::Rows()) {
    if (*row.word == '\0') continue;
    help +=
        QStringLiteral("  %1%2\n").arg(Usage(row).leftJustified(kColumn), QLatin1String(row.help));
  }
  return help;
}

QString ControlFault(const QStringList& words) {
  if (words.isEmpty()) return QStringLiteral("Missing command");
  const ActionRow* const row = Find(words[0]);
  if (!row) return QStringLiteral("Unknown command \"%1\"").arg(ShownLine(words[0]));
  const ArgumentRule& rule = RuleOf(*row);
  const qsizetype arguments = words.size() - 1;
  if (arguments < rule.least || arguments > rule.most)
    return QStringLiteral("Usage: --control %1").arg(Usage(*row));
  const bool isNumber =
      row->argument == ActionArgument::Percent || row->argument == ActionArgument::Seconds;
  return isNumber ? NumberFault(*row, words[1]) : QString();
}

QString RunControl(const QStringList& words, UserActions& actions) {
  return actions.Run(Find(words[0])->action, words.mid(1));
}

QByteArray WriteRequest(const QStringList& words) {
  return QJsonDocument(QJsonArray::fromStringList(words)).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QStringList> ReadRequest(const QByteArray& line) {
  const QJsonDocument document = QJsonDocument::fromJson(line);
  if (!document.isArray()) return std::nullopt;
  QStringList words;
  for (const auto& word : document.array()) {
    if (!word.isString()) return std::nullopt;
    words.append(word.toString());
  }
  return words;
}

} // namespace halvenor
