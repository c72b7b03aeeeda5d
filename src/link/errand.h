// Errand: what a handler has set out to say to the drive, and what calls it off.
//
// Waiting lets events run, so handlers nest, and at any moment several of them may believe that
// they have something to say. An errand begins with a handler and is asked before every frame, the
// first one included, whether it is off. What calls it off depends on what it says:
//
// A moving word (anything but 0 to PositionCommand, VelocityCommand or CurrentStep) is off when its
//   window was closed, when its handler has withdrawn it (ExchangeOptions::Withdrawn: a Stop, a
//   release), or when a newer handler has written the same register.
// A stop word (0 to one of these) is off when a newer handler's moving word to that register has
//   gone out; never because a window was closed.
// A setting (every parameter, and the filter's switch) is overtaken when a newer write to the same
//   register ran inside its exchange: that counts as done. Neither a Stop nor a closing stops it:
//   it is finished with its resends, and its failure is told. Once a handler inside it has told
//   that the link is lost it is lost, too.
// All else (reads, arming, polls, blocks, the words of a test's profile) is off when its window or
//   the port was closed. Profile words are overtaken as settings are; StoreEeprom, ErrorLog and
//   ArmRecorder take commands, none of which overtakes another.
//
// With the port closed, or opened anew, since the errand began nothing more is sent: a stop word or
// a setting is lost then, all else is off.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "link/frames.h"
#include "link/registers.h"
#include "platform/window.h"

namespace gainsmith {

class Link;

// How an exchange ended.
enum class Sent {
  // The drive has answered. The reply is in RxBuffer and ReplyValues until the next exchange.
  Taken,
  // A newer write to the same register ran inside: this one counts as done, and field, copy and
  // slot belong to the newer one.
  Overtaken,
  // The drive did not answer, or the value cannot be packed (Link::ValueRefused): to be told.
  Lost,
  // Called off; nothing more was sent, and nobody is left to tell.
  Off,
};

// The word stands, here or as a newer one.
constexpr bool Stands(Sent sent) { return sent == Sent::Taken || sent == Sent::Overtaken; }

enum class WordKind { Moving, Stop, Setting, Other };
WordKind KindOf(Function function, Register reg, float value);
// A register to which each write is a command of its own.
bool TakesCommands(Register reg);

class Errand {
 public:
  // What the handler is: ticks give way to all others, and no test starts beside one that has to do
  // with the motor (a run button's click, a jog, a stop word).
  enum class Of { Handler, Motor, Tick };

  // Of a handler of `window`, from here to the end of its scope. Both outlive it.
  Errand(Link& link, const Window& window, Of of = Of::Handler);
  // Of a handler of no window.
  explicit Errand(Link& link, Of of = Of::Handler);
  Errand(const Errand&) = delete;
  Errand& operator=(const Errand&) = delete;
  ~Errand();

  // The window in which the handler began has been closed, even if it was opened anew since.
  [[nodiscard]] bool Over() const { return stay_ && stay_->Over(); }

 private:
  friend class Link;
  Link& link_;
  std::optional<Stay> stay_;
  const Of of_;
  // Younger errands have higher numbers; one that began while another was under way runs inside it.
  const std::uint64_t number_;
  // The opening of the port during which it began.
  const std::uint64_t session_;
};

// The drive's share of the wait for a reply.
constexpr int StandardDriveMs = 50;

// What an exchange may do differently from the standard.
struct ExchangeOptions {
  static constexpr int Standard = 12;
  // Frames that go out at most.
  int MostFrames = Standard;
  // Wait ReplyWaitMs once more after a success.
  bool ClosingWait = true;
  // The drive's share of ReplyWaitMs, in ms.
  int DriveMs = StandardDriveMs;
  // Wait before each frame, in ms.
  int PauseBeforeMs = 0;
  // Waits besides the usual ones, in ms: before the reply is looked at, and behind that.
  int BeforeReplyMs = 0;
  int AfterReplyMs = 0;
  // Asked before each frame with the number of frames that have gone out: true calls the errand
  // off. May be empty.
  std::function<bool(int framesSent)> Withdrawn = {};
};

// Of the error log and the test console: at most five frames, and no closing wait.
inline const ExchangeOptions ShortExchange{.MostFrames = 5, .ClosingWait = false};

}  // namespace gainsmith
