// Link: frames, replies and waits, and which errand may speak.
#include "link/link.h"

#include <algorithm>
#include <cassert>
#include <numeric>
#include <utility>

#include "platform/common_texts.h"
#include "platform/number_text.h"

namespace gainsmith {

void Link::WaitMs(std::int32_t ms) {
  const std::int64_t deadline = world_.NowMs() + ms;
  while (!world_.Ended() && world_.NowMs() <= deadline) world_.PumpEvents(deadline);
}

// --- The port.

bool Link::OpenPort() {
  if (!world_.OpenPort(PortNumber, SerialSettings)) return false;
  BitsPerMs = static_cast<std::int16_t>(LeadingNumber(SerialSettings) / 1000);
  ++frameNumber_;
  ++portSession_;
  lastWrites_.clear();
  held_.clear();
  known_ = {};
  return true;
}

void Link::ClosePort() {
  world_.ClosePort();
  ++frameNumber_;
}

// --- Frames and replies.

std::optional<Link::FrameNumber> Link::SendFrame(std::uint8_t address, Function function,
                                                 Register reg, float value) {
  LinkErrorCount = 0;
  CountMismatch = false;
  ValueRefused = false;
  LastRegister = reg;
  LastValue = value;
  const std::optional<Request> request = BuildRequest(address, function, reg, value);
  if (!request) {
    ValueRefused = true;
    LinkErrorCount = 1;
    return std::nullopt;
  }
  const FrameNumber frame = ++frameNumber_;
  world_.ClearOutput();
  world_.ClearInput();
  std::copy_n(request->begin(), TxBuffer.size(), TxBuffer.begin());
  lastCount_ = function == Function::Read ? static_cast<int>(RoundHalfToEven(value)) : 0;
  ExpectedReplyLength = static_cast<std::int16_t>(ReplyLength(function, value));
  for (const std::uint8_t byte : *request) {
    world_.WriteByte(byte);
    WaitMs(1);
    // Another exchange ran inside the wait: the rest of this frame would be noise on the line.
    if (frame != frameNumber_) break;
  }
  return frame;
}

void Link::ReceiveReply(std::uint8_t address, Function function, FrameNumber frame) {
  for (;;) {
    // Another exchange has taken the line: no reply will come any more.
    if (frame != frameNumber_) {
      ++LinkErrorCount;
      return;
    }
    const int available = world_.BytesAvailable();
    if (available == ExpectedReplyLength) break;
    const bool giveUp = available > ExpectedReplyLength || LinkErrorCount > 10;
    ++LinkErrorCount;
    if (giveUp) return;
    WaitMs(ExpectedReplyLength / BitsPerMs + 50);
  }
  std::vector<std::uint8_t> reply = world_.ReadAll();
  // The device has gone between the count and the read.
  if (reply.size() != static_cast<std::size_t>(ExpectedReplyLength)) {
    ++LinkErrorCount;
    return;
  }
  RxBuffer = std::move(reply);
  WaitMs(ExpectedReplyLength / BitsPerMs + 50);

  // An exchange that ran inside the wait has replaced the reply by its own.
  const ReplyFault fault = frame == frameNumber_
                               ? CheckReply(RxBuffer, address, function, TxBuffer, lastCount_)
                               : ReplyFault::NotOurs;
  CountMismatch = fault == ReplyFault::WrongCount;
  if (fault != ReplyFault::None) {
    ++LinkErrorCount;
    return;
  }
  if (function == Function::Read) ReplyValues = DecodeRegisters(RxBuffer, lastCount_);
  known_.AnsweredAtMs = world_.NowMs();
}

std::int16_t Link::ReplyWaitMs(int driveMs) const {
  assert(BitsPerMs > 0);
  return static_cast<std::int16_t>(ExpectedReplyLength * 10 / BitsPerMs + driveMs);
}

Link::Outcome Link::Attempt(const Word& word, const ExchangeOptions& options) {
  const auto frame = SendFrame(word.Address, word.Function, word.Target, word.Value);
  if (!frame) return Outcome::Refused;
  if (*frame == frameNumber_) WaitMs(ReplyWaitMs(options.DriveMs));
  if (*frame == frameNumber_ && options.BeforeReplyMs > 0) WaitMs(options.BeforeReplyMs);
  ReceiveReply(word.Address, word.Function, *frame);
  const Outcome outcome = LinkErrorCount == 0 ? Outcome::Done : Outcome::Failed;
  if (options.AfterReplyMs > 0) WaitMs(options.AfterReplyMs);
  return outcome;
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

// --- Errands.

std::uint64_t Link::Begin(Errand::Of of) {
  ++errands_[static_cast<std::size_t>(of)];
  return ++lastNumber_;
}

void Link::End(Errand::Of of) { --errands_[static_cast<std::size_t>(of)]; }

int Link::Count(Errand::Of first, Errand::Of last) const {
  return std::accumulate(errands_.begin() + static_cast<int>(first),
                         errands_.begin() + static_cast<int>(last) + 1, 0);
}

bool Link::IsOvertaken(const Word& word) const {
  if (word.Function == Function::Read || TakesCommands(word.Target)) return false;
  const auto last = lastWrites_.find(word.Target);
  return last != lastWrites_.end() && last->second.Word > word.Number;
}

bool Link::NewerHasWritten(const Errand& errand, Register reg) const {
  const auto last = lastWrites_.find(reg);
  return last != lastWrites_.end() && last->second.Writer > errand.number_;
}

bool Link::NewerMoves(const Errand& errand, Register reg) const {
  const auto last = lastWrites_.find(reg);
  return last != lastWrites_.end() && last->second.Mover > errand.number_;
}

std::optional<Sent> Link::CalledOff(const Word& word) const {
  const Errand& errand = word.Of;
  const bool portGone = !world_.IsPortOpen() || errand.session_ != portSession_;
  switch (KindOf(word.Function, word.Target, word.Value)) {
    case WordKind::Moving:
      if (portGone || errand.Over() || NewerHasWritten(errand, word.Target)) return Sent::Off;
      break;
    case WordKind::Stop:
      if (NewerMoves(errand, word.Target)) return Sent::Off;
      if (portGone) return Sent::Lost;
      break;
    case WordKind::Setting:
      if (IsOvertaken(word)) return Sent::Overtaken;
      if (portGone || lossTeller_ > errand.number_) return Sent::Lost;
      break;
    case WordKind::Other:
      if (portGone || errand.Over()) return Sent::Off;
      if (IsOvertaken(word)) return Sent::Overtaken;
      break;
  }
  return std::nullopt;
}

void Link::NoteWrite(const Word& word) {
  if (word.Function == Function::Read || !PackWord(word.Value)) return;
  LastWrite& last = lastWrites_[word.Target];
  last.Word = word.Number;
  last.Writer = word.Of.number_;
  const WordKind kind = KindOf(word.Function, word.Target, word.Value);
  if (kind == WordKind::Moving) last.Mover = word.Of.number_;
  if (kind == WordKind::Moving || kind == WordKind::Stop) {
    known_.Commands[word.Target] = {*PackWord(word.Value), false, word.Address};
  }
}

void Link::NoteHeld(const Word& word) {
  const std::pair place(word.Address, word.Target);
  if (word.Function == Function::Read) {
    if (word.Value == 1) held_[place] = Raw();
    return;
  }
  const std::uint16_t now = PackWord(word.Value).value();
  const auto before = held_.find(place);
  const bool changed = before == held_.end() || before->second != now;
  held_[place] = now;
  OnTaken(word.Target, changed);
}

Sent Link::End(const Word& word, Sent sent, int frames) {
  if (sent == Sent::Lost) {
    // A handler inside may have been refused a value of its own.
    ValueRefused = false;
    known_.LastExchangeFailed = true;
    OnLost(word.Function, word.Target, frames);
  }
  if (sent != Sent::Taken) return sent;
  known_.LastExchangeFailed = false;
  lossTeller_ = 0;
  const auto command = known_.Commands.find(word.Target);
  if (command != known_.Commands.end() && word.Function == Function::Write &&
      lastWrites_[word.Target].Word == word.Number) {
    command->second.Acknowledged = true;
  }
  NoteHeld(word);
  return sent;
}

Sent Link::Say(const Word& word, const ExchangeOptions& options) {
  for (int frames = 0;; ++frames) {
    if (options.PauseBeforeMs > 0 && frames < options.MostFrames) WaitMs(options.PauseBeforeMs);
    if (const std::optional<Sent> off = CalledOff(word)) return End(word, *off, frames);
    if (options.Withdrawn && options.Withdrawn(frames)) return End(word, Sent::Off, frames);
    if (frames == options.MostFrames) return End(word, Sent::Lost, frames);
    if (frames > 0) ++known_.Resends;
    NoteWrite(word);
    const Outcome outcome = Attempt(word, options);
    if (outcome == Outcome::Refused) return Sent::Lost;
    if (outcome == Outcome::Done) break;
    ++known_.LostReplies;
  }
  End(word, Sent::Taken, 0);
  if (options.ClosingWait) WaitAfterSuccess(options.DriveMs);
  return IsOvertaken(word) ? Sent::Overtaken : Sent::Taken;
}

Sent Link::Exchange(const Errand& errand, Function function, Register reg, float value,
                    const ExchangeOptions& options) {
  return Say({errand, DeviceAddress, function, reg, value, ++lastNumber_}, options);
}

Sent Link::SayShort(const Word& word, bool& failed) {
  constexpr int ShortFrames = 4;
  const auto busy = [this](int) {
    LinkIdle = false;
    return false;
  };
  LinkIdle = false;
  const Sent sent = Say(word, {.MostFrames = ShortFrames, .Withdrawn = busy});
  if (sent == Sent::Lost) failed = true;
  if (Stands(sent)) LinkIdle = true;
  return sent;
}

Sent Link::ReadRegistersRetry(const Errand& errand, std::uint8_t address, Register reg, int count) {
  return SayShort({errand, address, Function::Read, reg, static_cast<float>(count), ++lastNumber_},
                  ReadFailed);
}

Sent Link::WriteRegisterRetry(const Errand& errand, std::uint8_t address, Register reg,
                              float value) {
  return SayShort({errand, address, Function::Write, reg, value, ++lastNumber_}, WriteFailed);
}

// --- Failures.

void Link::TellFailure(const Errand& errand) {
  const bool told = telling_ || lossTeller_ > errand.number_;
  if (told && !ValueRefused) return;
  const bool outer = std::exchange(telling_, true);
  if (!ValueRefused) lossTeller_ = errand.number_;
  world_.ShowMessage(LinkFailureMessage(*this));
  telling_ = outer;
}

Message LinkFailureMessage(const Link& link) {
  if (link.ValueRefused) {
    return {"The value " + PlainText(link.LastValue) + " for register " +
                std::to_string(static_cast<int>(link.LastRegister)) +
                " can't be sent: the drive takes 0 to 65535. Nothing was sent for it.",
            MainTitle, MessageButtons::Ok, MessageIcon::Critical};
  }
  return LostLinkMessage();
}

}  // namespace gainsmith
