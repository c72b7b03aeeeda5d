// errors: the board of lamps in words.
#include <QJsonArray>

#include "console/json_text.h"
#include "console/verbs.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

// The kinds of an entry of the log, by the captions beside its lamps.
QStringList KindsOf(const Form4& log, int entry) {
  QStringList kinds;
  for (int kind = 0; kind < Form4::ErrorKinds; ++kind) {
    const Lamp& lamp = log.Shape1[static_cast<std::size_t>(entry * Form4::BitsPerEntry + kind)];
    if (lamp.BackColor != Form4::ErrorPresent) continue;
    kinds.push_back(ToQt(log.Label1[static_cast<std::size_t>(kind)].Caption).simplified());
  }
  return kinds;
}

void PrintLog(Session& session) {
  QJsonArray all;
  bool any = false;
  for (int entry = 0; entry < ErrorLogEntries; ++entry) {
    const QStringList kinds = KindsOf(session.tool.form4, entry);
    all.push_back(QJsonObject{{QStringLiteral("entry"), entry},
                              {QStringLiteral("errors"), QJsonArray::fromStringList(kinds)}});
    if (kinds.isEmpty()) continue;
    any = true;
    if (session.Given().Json) continue;
    session.Screen().Print(std::to_string(entry) + (entry == 0 ? " (newest)  " : "           ") +
                           FromQt(kinds.join(QStringLiteral(", "))));
  }
  if (session.Given().Json) {
    session.Screen().Print(JsonText(all));
  } else if (!any) {
    session.Screen().Note("The error log is empty.");
  }
}

}  // namespace

ExitStatus Errors(Session& session) {
  const std::string& erase = session.Given().Erase;
  if (!session.Connect() || !session.Press(session.tool.mdiForm1.ErrCheck)) {
    return session.Status();
  }
  PrintLog(session);
  if (erase.empty()) return ExitStatus::Done;
  const bool all = erase == "all";
  if (!session.Consent(all ? "Erase all errors?" : "Erase the newest error?")) {
    return session.Status();
  }
  Button& button =
      session.tool.form4.Command1[all ? Form4::EraseAllErrors : Form4::EraseCurrentError];
  if (!session.Press(button)) return session.Status();
  session.Screen().Note(session.Given().Json ? "Erased." : "Erased. The log now:");
  // One document a run: the log as it was.
  if (!session.Given().Json) PrintLog(session);
  return ExitStatus::Done;
}

}  // namespace gainsmith
