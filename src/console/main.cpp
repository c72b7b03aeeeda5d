// gainsmithctl: the tool without a screen.
#include <QCoreApplication>

#include "console/verbs.h"

namespace gainsmith {
namespace {

ExitStatus Run(const Options& options) {
  Terminal terminal(options.Quiet);
  ExitStatus status = ExitStatus::Trouble;
  {
    Session session(options, terminal);
    status = VerbNamed(options.Verb)(session);
    session.CloseFrameLog();
    if (session.Ended()) status = session.Status();
  }
  if (terminal.Flush()) return status;
  terminal.Trouble("Standard output could not be written.");
  return status == ExitStatus::Done ? ExitStatus::Trouble : status;
}

}  // namespace
}  // namespace gainsmith

int main(int count, char** words) {
  gainsmith::ExitStatus status{};
  const auto options = gainsmith::ParseCommandLine(count, words, status);
  if (options) {
    QCoreApplication application(count, words);
    status = gainsmith::Run(*options);
  }
  return static_cast<int>(status);
}
