// Session: the tool in the world without a screen, and the hands and eyes of a verb's script.
//
// A verb fills fields and presses buttons as a user does, by their handlers. The first message that
// it did not expect, a signal, or a drive that falls silent in a transfer ends it: every step gives
// false from then on, and Status() says why.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "app/tool.h"
#include "console/console_world.h"
#include "console/exit_status.h"
#include "console/interrupts.h"
#include "console/options.h"
#include "console/terminal.h"

namespace gainsmith {

class Session {
 public:
  // Both outlive the session.
  Session(const Options& options, Terminal& terminal);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  ConsoleWorld world;
  Tool tool;

  [[nodiscard]] const Options& Given() const { return options_; }
  Terminal& Screen() { return terminal_; }

  // --- Steps. False when the verb has come to its end.

  // Drive, Connect, and the choices of the command line in its lists.
  bool ChooseConnection();
  // Drive, Connect, with what the command line says; Open; the drive's settings come in.
  bool Connect();
  // Replaces the text key by key, and leaves the field.
  bool Enter(TextBox& field, const std::string& text);
  // The same with the option `name`, where it was given.
  bool EnterGiven(const std::string& name, TextBox& field);
  // Chooses the entry that reads `text`; otherwise it is refused with those that there are, as
  // values of `what`.
  bool Choose(ComboBox& list, const std::string& text, const std::string& what);
  bool Press(Button& button);
  bool Press(MenuItem& item);
  // Lets events run until `done`.
  bool WaitFor(const std::function<bool()>& done);
  // Asks the user whether to go on, unless --yes was given.
  bool Consent(const std::string& question);

  // The message with this text is part of what the verb does next, and is answered so.
  void Expect(const std::string& text, MessageAnswer answer = MessageAnswer::Ok);
  // The same, and the user gives the answer.
  void ExpectQuestion(const std::string& text);

  // --- The end.

  // Ends the verb; of several reasons the first holds.
  void End(ExitStatus status, const std::string& trouble);
  // The verb is through: a list of frames that is not whole is a trouble, too.
  void CloseFrameLog();
  [[nodiscard]] bool Ended() const { return status_ != ExitStatus::Done; }
  [[nodiscard]] ExitStatus Status() const { return status_; }
  [[nodiscard]] bool Interrupted() const { return interrupted_; }

  // What a signal does instead of closing the connection; it runs inside whatever is under way.
  std::function<void()> OnInterrupt;
  // Called once, before the first wait after the verb has come to its end by itself: what is still
  // under way then is not worth its time any more.
  std::function<void()> OnEnd;
  // Called before each wait after a signal, until it gives true. Never inside itself.
  std::function<bool()> AfterInterrupt;
  // The register whose motion a signal stops: whether the drive took the stop word is told.
  void TellStop(Register command);

 private:
  MessageAnswer Answer(const Message& message);
  void Idle();
  void Hear();
  // As Close in the connect dialog does it.
  void CloseConnection();
  // Of an Open that failed: which step of the connection did, and the message.
  void EndUnconnected(const std::string& message);
  // What the drive may still be doing when nobody hears it any more.
  [[nodiscard]] std::string LastKnownMotion() const;

  struct Expectation {
    std::string Text;
    MessageAnswer Answer;
    bool AskUser;
  };

  const Options& options_;
  Terminal& terminal_;
  Interrupts interrupts_;
  std::vector<Expectation> expected_;
  std::FILE* frameLog_ = nullptr;
  ExitStatus status_ = ExitStatus::Done;
  bool interrupted_ = false;
  // A field is being filled or left, or a button pressed, and no frame has gone out since.
  bool nothingSent_ = false;
  // The connect dialog's Open is at work.
  bool connecting_ = false;
  bool closing_ = false;
  std::int64_t openedAtMs_ = 0;
};

}  // namespace gainsmith
