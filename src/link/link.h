// Link: the request and reply engine, and the state that all windows share with it.
//
// One frame is in flight at a time. Waiting lets events run, so that another handler may start an
// exchange inside a waiting one; the outer exchange is then spoilt: it stops polling at once, fails
// its attempt, and sends again if its errand is still on (link/errand.h). The engine shows no
// message by itself: the caller decides what a failure means, and may have it told by TellFailure.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "link/errand.h"
#include "link/frames.h"
#include "link/registers.h"
#include "platform/world.h"

namespace gainsmith {

// The last word that went out to a command register.
struct CommandWord {
  std::uint16_t Word = 0;
  // The drive has answered it.
  bool Acknowledged = true;
  // Bus address of the drive that it went to.
  std::uint8_t Device = 0;
};

// What the link knows of the drive behind the open port, without asking it anything.
struct LineKnowledge {
  // When the drive last gave a good reply, by the world's clock.
  std::optional<std::int64_t> AnsweredAtMs;
  // The last exchange that was not called off got no good reply.
  bool LastExchangeFailed = false;
  // Frames that had to be sent again, and frames that got no good reply.
  int Resends = 0;
  int LostReplies = 0;
  // By register; only those to which a word has gone out.
  std::map<Register, CommandWord> Commands;
};

class Link {
 public:
  explicit Link(World& world) : world_(world) {}
  Link(const Link&) = delete;
  Link& operator=(const Link&) = delete;

  // --- State, shared by all windows.

  // Bus address of all frames, 0 to 63. Set by the connect dialog, as are the next two.
  std::uint8_t DeviceAddress = 1;
  // 1 to 12.
  std::uint8_t PortNumber = 1;
  // Baud rate in digits and ",n,8,2".
  std::string SerialSettings = "38400,n,8,2";
  // Baud rate / 1000, truncated: 9, 19 or 38. Valid from the first opening of the port on.
  std::int16_t BitsPerMs = 38;
  // Set by SendFrame, in bytes.
  std::int16_t ExpectedReplyLength = 0;
  // Cleared by SendFrame, raised by ReceiveReply: zero after that means success.
  std::uint8_t LinkErrorCount = 0;
  // The byte count of the last read reply was not 2 x count.
  bool CountMismatch = false;
  // The last frame could not be built: its value lies outside 0 to 65535. Cleared by SendFrame.
  bool ValueRefused = false;
  // What the last SendFrame was asked to send, for the words of a refusal.
  Register LastRegister{};
  float LastValue = 0;
  // Header of the last request that was sent.
  RequestHeader TxBuffer{};
  // The last reply that was complete; empty until the first one.
  std::vector<std::uint8_t> RxBuffer;
  // The signed values of the last good read reply.
  std::vector<float> ReplyValues;
  // No drive operation is under way: windows close and plots take the mouse only while it is true.
  bool LinkIdle = true;
  // Set when ReadRegistersRetry or WriteRegisterRetry gives up; cleared by who reports it.
  bool ReadFailed = false;
  bool WriteFailed = false;
  // The start-up reads of a tuning window have failed.
  bool LoadFailed = false;

  // --- Operations.

  // Lets events run for `ms` milliseconds and one step of the clock.
  void WaitMs(std::int32_t ms);

  // Opens COM PortNumber with SerialSettings, sets BitsPerMs from them and begins anew with what is
  // known of the line. False when the port cannot be opened.
  bool OpenPort();
  // Errands that began before it say nothing more.
  void ClosePort();

  // The number of a frame on the line.
  using FrameNumber = std::uint64_t;

  // Sends one request, byte by byte with a pause after each. Nothing, with ValueRefused set and
  // LinkErrorCount at 1, when the value cannot be packed: nothing is sent then.
  std::optional<FrameNumber> SendFrame(std::uint8_t address, Function function, Register reg,
                                       float value);

  // Polls for the reply to that frame, takes it and checks it. Result in LinkErrorCount (12 after
  // silence, 1 after a failed check or where another frame has gone out since), RxBuffer and
  // ReplyValues.
  void ReceiveReply(std::uint8_t address, Function function, FrameNumber frame);

  // Wait for a reply of ExpectedReplyLength: ten bit times a byte and the drive's share, in ms.
  [[nodiscard]] std::int16_t ReplyWaitMs(int driveMs = StandardDriveMs) const;

  // The standard exchange with DeviceAddress: SendFrame, ReplyWaitMs, ReceiveReply, and again
  // until it succeeds, is called off, or the limit is reached. A refused value is lost at once.
  Sent Exchange(const Errand& errand, Function function, Register reg, float value,
                const ExchangeOptions& options = {});
  Sent Read(const Errand& errand, Register reg, const ExchangeOptions& options = {}) {
    return Exchange(errand, Function::Read, reg, 1, options);
  }
  Sent Write(const Errand& errand, Register reg, float value, const ExchangeOptions& options = {}) {
    return Exchange(errand, Function::Write, reg, value, options);
  }

  // The short forms: at most four frames. LinkIdle is false while they run and stays false unless
  // the word stands. Lost sets ReadFailed or WriteFailed.
  Sent ReadRegistersRetry(const Errand& errand, std::uint8_t address, Register reg, int count);
  Sent WriteRegisterRetry(const Errand& errand, std::uint8_t address, Register reg, float value);

  // A timer's tick that wants the line gives way to any errand under way: otherwise ticks, each of
  // which spoils the exchange that it falls into, could keep a word from the drive for ever.
  [[nodiscard]] bool ErrandUnderWay() const {
    return Count(Errand::Of::Handler, Errand::Of::Tick) > 0;
  }
  // One of a run button, a jog or a stop word.
  [[nodiscard]] bool MotorErrandUnderWay() const {
    return Count(Errand::Of::Motor, Errand::Of::Motor) > 0;
  }
  // One that is no tick: a window that opened now would read what is about to change.
  [[nodiscard]] bool HandlerUnderWay() const {
    return Count(Errand::Of::Handler, Errand::Of::Motor) > 0;
  }

  // A handler that began after this errand has written the register.
  [[nodiscard]] bool NewerHasWritten(const Errand& errand, Register reg) const;

  // Shows the message of a lost exchange of `errand`. Several handlers that find the link lost show
  // one: nothing is shown where a handler inside this errand has told it, or while it is on the
  // screen.
  void TellFailure(const Errand& errand);

  [[nodiscard]] const LineKnowledge& Known() const { return known_; }
  // Counts the openings of the port: what was known of a drive ends with each.
  [[nodiscard]] std::uint64_t PortSession() const { return portSession_; }

  // Told of each write that the drive has taken, with whether the register is known to have held
  // that word before; and of each exchange that was lost with nothing refused. May neither wait nor
  // show anything.
  std::function<void(Register reg, bool changed)> OnTaken = [](Register, bool) {};
  std::function<void(Function function, Register reg, int frames)> OnLost = [](Function, Register,
                                                                               int) {};

  // The first register of the last reply to a read, 0 to 65535. RxBuffer is not empty.
  [[nodiscard]] std::uint16_t Raw() const { return RawValue(RxBuffer); }

 private:
  friend class Errand;
  // Done: LinkErrorCount is zero. Refused: the value cannot be packed, nothing was sent.
  enum class Outcome { Done, Failed, Refused };
  // One word of an errand on its way.
  struct Word {
    const Errand& Of;
    std::uint8_t Address;
    gainsmith::Function Function;
    Register Target;
    float Value;
    // Younger than the errand, and than all that went out before.
    std::uint64_t Number;
  };
  // What went out last to a register: numbers of the word and of its errand, and of the errand of
  // the last moving word.
  struct LastWrite {
    std::uint64_t Word = 0;
    std::uint64_t Writer = 0;
    std::uint64_t Mover = 0;
  };

  [[nodiscard]] int Count(Errand::Of first, Errand::Of last) const;
  std::uint64_t Begin(Errand::Of of);
  void End(Errand::Of of);
  Sent Say(const Word& word, const ExchangeOptions& options);
  // How the word ends before its next frame; nothing: it goes out.
  [[nodiscard]] std::optional<Sent> CalledOff(const Word& word) const;
  [[nodiscard]] bool IsOvertaken(const Word& word) const;
  // The last moving word to the register is that of a handler that began after this errand.
  [[nodiscard]] bool NewerMoves(const Errand& errand, Register reg) const;
  // One request and its reply.
  Outcome Attempt(const Word& word, const ExchangeOptions& options);
  void NoteWrite(const Word& word);
  void NoteHeld(const Word& word);
  Sent End(const Word& word, Sent sent, int frames);
  // The wait that closes a good exchange. Its reply is still the caller's afterwards, whatever ran
  // inside the wait.
  void WaitAfterSuccess(int driveMs);
  Sent SayShort(const Word& word, bool& failed);

  World& world_;
  // Value of the last frame: the count of a read.
  int lastCount_ = 0;
  // Counts the frames and the openings and closings of the port, so that an exchange knows whether
  // the line was taken from it.
  FrameNumber frameNumber_ = 0;
  std::uint64_t portSession_ = 0;
  // Counts errands and words.
  std::uint64_t lastNumber_ = 0;
  // Errands under way by what they are of.
  std::array<int, 3> errands_{};
  std::map<Register, LastWrite> lastWrites_;
  // By device and register: the word that was read or written last.
  std::map<std::pair<std::uint8_t, Register>, std::uint16_t> held_;
  LineKnowledge known_;
  // The errand that told of a lost link; 0 once the drive has answered since.
  std::uint64_t lossTeller_ = 0;
  bool telling_ = false;
};

// The message of a failed exchange: the lost link, or, where ValueRefused is set, the value that
// cannot be sent.
Message LinkFailureMessage(const Link& link);

}  // namespace gainsmith
