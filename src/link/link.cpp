// Link: see the header.
#include "link/link.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "platform/number_text.h"

namespace gainsmith {

void Link::WaitMs(std::int32_t ms) {
  const std::int64_t deadline = world_.NowMs() + ms;
  while (!world_.Ended() && world_.NowMs() <= deadline) world_.PumpEvents(deadline);
}

bool Link::SendFrame(std::uint8_t address, Function function, Register reg, float value) {
  LinkErrorCount = 0;
  CountMismatch = false;
  ValueRefused = false;
  LastRegister = reg;
  LastValue = value;
  const std::optional<Request> frame = BuildRequest(address, function, reg, value);
  if (!frame) {
    ValueRefused = true;
    LinkErrorCount = 1;
    return false;
  }
  const std::uint64_t number = ++frameNumber_;
  world_.ClearOutput();
  world_.ClearInput();
  std::copy_n(frame->begin(), TxBuffer.size(), TxBuffer.begin());
  lastCount_ = function == Function::Read ? static_cast<int>(RoundHalfToEven(value)) : 0;
  ExpectedReplyLength = static_cast<std::int16_t>(ReplyLength(function, value));
  for (const std::uint8_t byte : *frame) {
    world_.WriteByte(byte);
    WaitMs(1);
    // Another exchange ran inside the wait: the rest of this frame would be noise on the line.
    if (number != frameNumber_) break;
  }
  return true;
}

void Link::ReceiveReply(std::uint8_t address, Function function) {
  const std::uint64_t frame = frameNumber_;
  for (;;) {
    const int available = world_.BytesAvailable();
    if (available == ExpectedReplyLength) break;
    const bool giveUp = available > ExpectedReplyLength || LinkErrorCount > 10;
    ++LinkErrorCount;
    if (giveUp) return;
    WaitMs(ExpectedReplyLength / BitsPerMs + 50);
    // Another exchange ran inside the wait and has taken the line: no reply will come any more.
    if (frame != frameNumber_) {
      ++LinkErrorCount;
      return;
    }
  }
  RxBuffer = world_.ReadAll();
  WaitMs(ExpectedReplyLength / BitsPerMs + 50);

  // An exchange that ran inside the wait has replaced the reply by its own.
  const ReplyFault fault = frame == frameNumber_
                               ? CheckReply(RxBuffer, address, function, TxBuffer, lastCount_)
                               : ReplyFault::NotOurs;
  CountMismatch = fault == ReplyFault::WrongCount;
  if (fault != ReplyFault::None) {
    ++LinkErrorCount;
  } else if (function == Function::Read) {
    ReplyValues = DecodeRegisters(RxBuffer, lastCount_);
  }
}

std::int16_t Link::ReplyWaitMs(int driveMs) const {
  assert(BitsPerMs > 0);
  return static_cast<std::int16_t>(ExpectedReplyLength * 10 / BitsPerMs + driveMs);
}

Link::Outcome Link::Attempt(std::uint8_t address, Function function, Register reg, float value,
                            int driveMs) {
  const std::uint64_t frame = frameNumber_ + 1;
  if (!SendFrame(address, function, reg, value)) return Outcome::Refused;
  WaitMs(ReplyWaitMs(driveMs));
  ReceiveReply(address, function);
  // Another exchange ran inside this one: the reply is that one's.
  if (frame != frameNumber_ && LinkErrorCount == 0) LinkErrorCount = 1;
  return LinkErrorCount == 0 ? Outcome::Done : Outcome::Failed;
}

void Link::WaitAfterSuccess(int driveMs) {
  std::vector<std::uint8_t> reply = RxBuffer;
  std::vector<float> values = ReplyValues;
  WaitMs(ReplyWaitMs(driveMs));
  // What another exchange left here during the wait is not what the caller asked for.
  RxBuffer = std::move(reply);
  ReplyValues = std::move(values);
  LinkErrorCount = 0;
  ValueRefused = false;
}

bool Link::Exchange(Function function, Register reg, float value, const ExchangeOptions& options) {
  for (int retries = 0;; ++retries) {
    if (options.PauseBeforeMs > 0) WaitMs(options.PauseBeforeMs);
    const Outcome outcome = Attempt(DeviceAddress, function, reg, value, options.DriveMs);
    if (outcome == Outcome::Done) break;
    if (outcome == Outcome::Refused || retries > options.RetryLimit) return false;
    if (options.Abandon && options.Abandon()) return false;
  }
  if (options.ClosingWait) WaitAfterSuccess(options.DriveMs);
  return true;
}

bool Link::RetryThreeTimes(std::uint8_t address, Function function, Register reg, float value) {
  constexpr int Resends = 3;
  for (int resends = 0;; ++resends) {
    LinkIdle = false;
    const Outcome outcome = Attempt(address, function, reg, value, StandardDriveMs);
    if (outcome == Outcome::Done) break;
    if (outcome == Outcome::Refused || resends == Resends) return false;
  }
  WaitAfterSuccess(StandardDriveMs);
  LinkIdle = true;
  return true;
}

void Link::ReadRegistersRetry(std::uint8_t address, Register reg, int count) {
  if (!RetryThreeTimes(address, Function::Read, reg, static_cast<float>(count))) ReadFailed = true;
}

void Link::WriteRegisterRetry(std::uint8_t address, Register reg, float value) {
  if (!RetryThreeTimes(address, Function::Write, reg, value)) WriteFailed = true;
}

Message LinkFailureMessage(const Link& link) {
  if (link.ValueRefused) {
    return {"The value " + PlainText(link.LastValue) + " for register " +
                std::to_string(static_cast<int>(link.LastRegister)) +
                " can't be sent: the drive takes 0 to 65535. Nothing was sent for it.",
            "Torvane Gainsmith for KVT518", MessageButtons::Ok, MessageIcon::Critical};
  }
  return {"Unable to communicate with the connected drive. Check your connection",
          "Cmmunication Error", MessageButtons::Ok, MessageIcon::Critical};
}

}  // namespace gainsmith
