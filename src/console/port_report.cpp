#include "console/port_report.h"

#include "host/qt_text.h"

namespace gainsmith {

std::string MissingPort(const QString& device, const PortFacts& facts) {
  if (facts.Exists) return "";
  if (!device.isEmpty()) return FromQt(device) + " does not exist. Is the adapter plugged in?";
  return "There is no such port. Plug in the adapter, or see which ports there are: gainsmithctl "
         "ports";
}

std::string ForbiddenPort(const PortFacts& facts) {
  if (facts.MayOpen) return "";
  return "Access is forbidden (" + FromQt(facts.Rights) +
         "). Add yourself to the group dialout (sudo usermod -aG dialout $USER) and log in again.";
}

std::string HeldPort(const PortFacts& facts) {
  if (!facts.LockNote.isEmpty()) return "The port is " + FromQt(facts.LockNote);
  if (facts.OpenIn.isEmpty()) return "";
  return "The port is open in " + FromQt(facts.OpenIn.join(QStringLiteral(", "))) +
         ". End that program.";
}

std::string GrabbedPort(const QString& device) {
  // Only these get a look of the two services: they may be modems or displays.
  if (!device.contains(u"ttyUSB") && !device.contains(u"ttyACM")) return "";
  std::string text;
  for (const QString& service : GrabbingServices()) {
    text += text.empty() ? "" : " ";
    text += FromQt(service) + " runs and may take the adapter for itself. If no " +
            (service == u"brltty" ? "braille display" : "modem") + " is in use: sudo systemctl " +
            "disable --now " + FromQt(service);
  }
  return text;
}

std::string WhyNotOpened(const QString& device) {
  const PortFacts facts = FactsOf(device);
  for (const std::string& reason :
       {MissingPort(device, facts), facts.Exists ? ForbiddenPort(facts) : "", HeldPort(facts)}) {
    if (!reason.empty()) return reason;
  }
  return "The system does not open " + FromQt(device) +
         " as a serial port at this rate. Is it one, and is nothing else using it?";
}

}  // namespace gainsmith
