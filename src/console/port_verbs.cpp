// ports and doctor.
#include <QJsonArray>
#include <array>

#include "console/json_text.h"
#include "console/port_report.h"
#include "console/verbs.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr int LastPort = 12;

QString HolderOf(const PortFacts& facts) {
  return facts.LockNote.isEmpty() ? facts.OpenIn.join(QStringLiteral(", ")) : facts.LockNote;
}

QJsonObject PortObject(int number, const QString& device, const PortFacts& facts) {
  return {{QStringLiteral("port"), QStringLiteral("COM%1").arg(number)},
          {QStringLiteral("device"), device},
          {QStringLiteral("exists"), facts.Exists},
          {QStringLiteral("product"), facts.Product},
          {QStringLiteral("rights"), facts.Rights},
          {QStringLiteral("may_open"), facts.MayOpen},
          {QStringLiteral("held_by"), HolderOf(facts)}};
}

std::string PortLine(int number, const QString& device, const PortFacts& facts) {
  QString line = QStringLiteral("COM%1").arg(number).leftJustified(7);
  if (device.isEmpty()) return FromQt(line) + "-";
  line += device;
  if (!facts.Product.isEmpty()) line += QStringLiteral(" (%1)").arg(facts.Product);
  if (!facts.Exists) return FromQt(line) + "  not connected";
  line += QStringLiteral("  ") + facts.Rights;
  line +=
      facts.MayOpen ? QStringLiteral("  you may open it") : QStringLiteral("  forbidden to you");
  if (const QString holder = HolderOf(facts); !holder.isEmpty()) {
    line += QStringLiteral("  held: ") + holder;
  }
  return FromQt(line);
}

// One step of the way of a connection; an empty trouble passes it.
bool Passed(Session& session, const char* step, const std::string& trouble) {
  session.Screen().Print((trouble.empty() ? "ok    " : "FAIL  ") + std::string(step) +
                         (trouble.empty() ? "" : ": " + trouble));
  return trouble.empty();
}

// One read of a register, one frame, and nothing else.
bool AnswersAt(Session& session, const std::string& rate, int number) {
  Link& link = session.tool.link;
  link.SerialSettings = rate + ",n,8,2";
  link.DeviceAddress = static_cast<std::uint8_t>(number);
  if (!link.OpenPort()) {
    session.End(ExitStatus::LostLink, session.Given().Port + " can't be opened any more: " +
                                          WhyNotOpened(session.world.DeviceOf(link.PortNumber)));
    return false;
  }
  const Errand errand(link);
  const Sent sent = link.Read(errand, Register::Identity1, {.MostFrames = 1, .ClosingWait = false});
  link.ClosePort();
  return sent == Sent::Taken;
}

ExitStatus Scan(Session& session, int ownNumber) {
  constexpr std::array rates{"38400", "19200", "9600"};
  std::vector<int> numbers = session.Given().ScanNumbers;
  if (numbers.empty()) numbers.push_back(ownNumber);
  bool found = false;
  for (const char* rate : rates) {
    for (const int number : numbers) {
      if (session.Ended()) return session.Status();
      const bool answers = AnswersAt(session, rate, number);
      if (session.Ended()) return session.Status();
      found = found || answers;
      session.Screen().Print(std::string(answers ? "ok    " : "-     ") + rate + " baud, device " +
                             std::to_string(number) + (answers ? ": answers" : ": silent"));
    }
  }
  if (found) return ExitStatus::Done;
  session.End(ExitStatus::LostLink,
              "No drive answers. Is it switched on, and are its cable and number right?");
  return session.Status();
}

}  // namespace

ExitStatus Ports(Session& session) {
  QJsonArray all;
  bool any = false;
  for (int number = 1; number <= LastPort; ++number) {
    const QString device = session.world.DeviceOf(number);
    const PortFacts facts = device.isEmpty() ? PortFacts() : FactsOf(device);
    any = any || facts.Exists;
    if (session.Given().Json) {
      all.push_back(PortObject(number, device, facts));
    } else {
      session.Screen().Print(PortLine(number, device, facts));
    }
  }
  if (session.Given().Json) session.Screen().Print(JsonText(all));
  if (!any) session.Screen().Note("There is no serial port. Is the adapter plugged in?");
  return ExitStatus::Done;
}

ExitStatus Doctor(Session& session) {
  Form2& dialog = session.tool.form2;
  if (!session.ChooseConnection()) return session.Status();
  Link& link = session.tool.link;
  const QString device = session.world.DeviceOf(link.PortNumber);
  const PortFacts facts = FactsOf(device);
  if (!Passed(session, "the port exists", MissingPort(device, facts)) ||
      !Passed(session, "you may open it", ForbiddenPort(facts))) {
    return ExitStatus::Trouble;
  }
  const std::string held = HeldPort(facts);
  if (!facts.LockNote.isEmpty() && !Passed(session, "no other program holds it", held)) {
    return ExitStatus::Trouble;
  }
  if (held.empty()) {
    Passed(session, "no other program holds it", "");
  } else {
    session.Screen().Print("note  " + held);
  }
  if (const std::string grabbed = GrabbedPort(device); !grabbed.empty()) {
    session.Screen().Print("note  " + grabbed);
  }
  const bool opens = link.OpenPort();
  if (opens) link.ClosePort();
  if (!Passed(session, "it opens", opens ? "" : WhyNotOpened(device))) return ExitStatus::Trouble;
  if (session.Given().Scan) return Scan(session, link.DeviceAddress);

  const std::string rate = dialog.Combo1[Form2::BaudList].Text;
  const std::string what =
      "a drive answers at " + rate + " baud as device " + std::to_string(link.DeviceAddress);
  const bool answers = AnswersAt(session, rate, link.DeviceAddress);
  if (session.Ended()) return session.Status();
  Passed(session, what.c_str(),
         answers ? ""
                 : "it is silent. Check power and cable, or try other rates and numbers: "
                   "gainsmithctl doctor --scan --numbers 1 2 3");
  return answers ? ExitStatus::Done : ExitStatus::LostLink;
}

}  // namespace gainsmith
