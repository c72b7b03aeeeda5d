// Link: the request and reply engine, and the state that all windows share with it.
//
// One frame is in flight at a time. Waiting lets events run, so that another handler may start an
// exchange inside a waiting one; the outer exchange is then spoilt, fails its attempt and sends
// again. The engine shows no message: it leaves its result in LinkErrorCount, and the caller
// decides what a failure means.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "link/frames.h"
#include "link/registers.h"
#include "platform/world.h"

namespace gainsmith {

// The drive's share of the wait for a reply.
constexpr int StandardDriveMs = 50;

// What an exchange may do differently from the standard.
struct ExchangeOptions {
  // Resends after the first two frames: at most RetryLimit + 2 frames go out.
  int RetryLimit = 10;
  // Wait ReplyWaitMs once more after a success.
  bool ClosingWait = true;
  // The drive's share of ReplyWaitMs, in ms.
  int DriveMs = StandardDriveMs;
  // Wait before each frame, in ms.
  int PauseBeforeMs = 0;
  // Asked before a frame is sent again; true ends the exchange as failed. For commands that start
  // a motion: they must not go out again behind a stop that was sent meanwhile.
  std::function<bool()> Abandon = {};
};

constexpr int DefaultRetryLimit = 10;
constexpr int ShortRetryLimit = 3;

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

  // Sends one request, byte by byte with a pause after each. False, with ValueRefused set and
  // LinkErrorCount at 1, when the value cannot be packed: nothing is sent then.
  bool SendFrame(std::uint8_t address, Function function, Register reg, float value);

  // Polls for the reply to the last frame, takes it and checks it. Result in LinkErrorCount (12
  // after silence, 1 after a failed check), RxBuffer and ReplyValues.
  void ReceiveReply(std::uint8_t address, Function function);

  // Wait for a reply of ExpectedReplyLength: ten bit times a byte and the drive's share, in ms.
  std::int16_t ReplyWaitMs(int driveMs = StandardDriveMs) const;

  // The standard exchange with DeviceAddress: SendFrame, ReplyWaitMs, ReceiveReply, and again
  // until it succeeds or the limit is reached. A refused value fails at once. True on success,
  // with the reply in RxBuffer and ReplyValues until the next exchange.
  bool Exchange(Function function, Register reg, float value, const ExchangeOptions& options = {});
  bool Read(Register reg, const ExchangeOptions& options = {}) {
    return Exchange(Function::Read, reg, 1, options);
  }
  bool Write(Register reg, float value, const ExchangeOptions& options = {}) {
    return Exchange(Function::Write, reg, value, options);
  }

  // The short forms: at most four frames. LinkIdle is false while they run and stays false on
  // failure, which sets ReadFailed or WriteFailed.
  void ReadRegistersRetry(std::uint8_t address, Register reg, int count);
  void WriteRegisterRetry(std::uint8_t address, Register reg, float value);

  // The first register of the last reply to a read, 0 to 65535. RxBuffer is not empty.
  std::uint16_t Raw() const { return RawValue(RxBuffer); }

 private:
  // Done: LinkErrorCount is zero. Refused: the value cannot be packed, nothing was sent.
  enum class Outcome { Done, Failed, Refused };
  // One request and its reply.
  Outcome Attempt(std::uint8_t address, Function function, Register reg, float value, int driveMs);
  // The wait that closes a good exchange. Its reply is still the caller's afterwards, whatever ran
  // inside the wait.
  void WaitAfterSuccess(int driveMs);
  bool RetryThreeTimes(std::uint8_t address, Function function, Register reg, float value);

  World& world_;
  // Value of the last frame: the count of a read.
  int lastCount_ = 0;
  // Counts the frames, so that an exchange knows whether another one ran inside it.
  std::uint64_t frameNumber_ = 0;
};

// The message of a failed exchange: the lost link, or, where ValueRefused is set, the value that
// cannot be sent.
Message LinkFailureMessage(const Link& link);

}  // namespace gainsmith
