// The whole simulated drive behind its serial line: bytes in, bytes out, time as an argument.
#include "simulator/simulated_drive.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "simulator/bank/factory_values.h"
#include "simulator/wire/framing.h"

namespace gainsmith::sim {

namespace {

constexpr unsigned BankEnd = 256;  // registers below stand in the bank, samples from here on
constexpr unsigned RegisterEnd = BankEnd + Servo::SampleCount;
constexpr unsigned MostRegisters = 125;
constexpr std::size_t MostEvents = 1000;

constexpr auto LogStart = static_cast<unsigned>(Reg::ErrorLog);

// What a command register is called in the events; empty for a parameter.
std::string_view CommandName(Reg reg) {
  switch (reg) {
    case Reg::CurrentStep:
      return "current step";
    case Reg::PositionCommand:
      return "position command";
    case Reg::StoreEeprom:
      return "store EEPROM";
    case Reg::ErrorLog:
      return "erase errors";
    case Reg::ArmRecorder:
      return "arm recorder";
    case Reg::VelocityCommand:
      return "velocity command";
    case Reg::FilterSwitch:
      return "filter switch";
    default:
      return {};
  }
}

bool IsMotion(Reg reg) {
  return reg == Reg::CurrentStep || reg == Reg::PositionCommand || reg == Reg::VelocityCommand;
}

std::string Number(std::uint32_t number) { return std::to_string(number); }

std::string Hexadecimal(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view Digits = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += {' ', Digits[byte / 16], Digits[byte % 16]};
  }
  return text;
}

std::optional<Refusal> ReasonToRefuse(const Request& write) {
  if (write.Register >= BankEnd) return Refusal::IllegalRegister;
  switch (static_cast<Reg>(write.Register)) {
    case Reg::Identity:
    case Reg::RecorderStatus:
      return Refusal::IllegalRegister;
    case Reg::ErrorLog:
      return write.Value > 1 ? std::optional(Refusal::IllegalValue) : std::nullopt;
    case Reg::StoreEeprom:
      return write.Value != 1 ? std::optional(Refusal::IllegalValue) : std::nullopt;
    default:
      return std::nullopt;
  }
}

}  // namespace

SimulatedDrive::SimulatedDrive(DriveOptions options)
    : options_(std::move(options)),
      file_(options_.EepromPath),
      line_(options_.Baud, options_.Paced),
      random_(options_.Seed),
      servo_(
          registers_, [this](Trip trip) { TripOut(trip); }, options_.Motor, options_.Seed),
      baud_(options_.Baud),
      hostBaud_(options_.Baud) {
  LoadImage();
  registers_ = image_.Stored;
  SetPowerUpState(registers_);
  servo_.TakeParameters();
}

void SimulatedDrive::LoadImage() {
  const EepromFile::Found found = file_.Load(image_);
  log_.Restore(image_.Log);
  if (found != EepromFile::Found::Corrupt) return;
  Note("EEPROM file damaged and set aside");
  RaiseError(DriveError::Eeprom);
}

void SimulatedDrive::SetBaud(int baud) {
  baud_ = hostBaud_ = baud;
  line_.SetBaud(baud);
}

void SimulatedDrive::Receive(std::uint8_t byte, TimeUs now) {
  const std::optional<TimeUs> at = line_.Arrival(now);
  if (hungUp_ || !at || *at < deafUntil_) return;
  for (const std::uint8_t heard : Reframe({&byte, 1}, hostBaud_, baud_)) {
    const std::optional<Request> request = feeder_.Feed(heard, *at);
    const std::vector<std::uint8_t> spoilt = feeder_.TakeSpoilt();
    if (!spoilt.empty()) Note("bad request" + Hexadecimal(spoilt));
    if (request && request->Address == options_.Address) Serve(*request, *at);
  }
}

std::vector<std::uint8_t> SimulatedDrive::Transmit(TimeUs now) { return line_.Take(now); }

void SimulatedDrive::Advance(TimeUs now) {
  // A request is served when its last byte has arrived, a moment after the host handed it over.
  clock_ = std::max(clock_, now);
  servo_.Advance(clock_);
}

void SimulatedDrive::Reset(TimeUs now) {
  registers_ = image_.Stored;
  SetPowerUpState(registers_);
  Advance(now);
  servo_.Reset();
  filterOff_ = false;
  feeder_.Clear();
  line_.Clear();
  deafUntil_ = now + options_.BootUs;
  Note("reset");
}

void SimulatedDrive::StartMotion(TimeUs now, const BackgroundMotion& motion) {
  Advance(now);
  servo_.StartBackgroundMotion(motion, clock_);
}

void SimulatedDrive::StopMotion(TimeUs now) {
  Advance(now);
  servo_.StopBackgroundMotion(clock_);
}

void SimulatedDrive::PlugEncoder(bool on, TimeUs now) {
  Advance(now);
  servo_.PlugEncoder(on, clock_);
}

void SimulatedDrive::Reconnect() {
  hungUp_ = false;
  feeder_.Clear();
  line_.Clear();
}

void SimulatedDrive::RaiseError(DriveError error) {
  log_.Add(error);
  Note("error " + std::string(NameOf(error)));
  SaveImage();
}

void SimulatedDrive::TripOut(Trip trip) {
  Note("trip " + std::string(NameOf(trip)) + ": no power until reset or erased");
  RaiseError(ErrorOf(trip));
}

std::vector<std::string> SimulatedDrive::TakeEvents() { return std::exchange(events_, {}); }

void SimulatedDrive::Note(std::string event) {
  if (events_.size() == MostEvents) events_.erase(events_.begin());
  events_.push_back(std::move(event));
}

void SimulatedDrive::Serve(const Request& request, TimeUs at) {
  Advance(at);
  const bool isWrite = request.Function == WriteFunction;
  const FaultSet faults = faults_.Strike(
      {.IsWrite = isWrite,
       .UnderTest = servo_.Moving() || servo_.RecorderStatus() == 0,
       .IsStore = isWrite && request.Register == static_cast<unsigned>(Reg::StoreEeprom)});
  for (std::size_t i = 0; i < FaultCount; ++i) {
    if (faults.Set[i]) Note("fault " + std::string(NameOf(static_cast<Fault>(i))));
  }
  SpeakUnasked(request, faults, at);
  if (StrikesBeforeExecution(faults, at)) return;
  Send(Execute(request, faults), faults, at);
}

void SimulatedDrive::SpeakUnasked(const Request& request, const FaultSet& faults, TimeUs at) {
  if (Has(faults, Fault::Echo)) SendBytes(RequestFrame(request), at, baud_);
  if (Has(faults, Fault::Unsolicited)) {
    SendBytes(NoiseBytes(ValueOf(faults, Fault::Unsolicited), random_), at, baud_);
  }
}

bool SimulatedDrive::StrikesBeforeExecution(const FaultSet& faults, TimeUs at) {
  if (Has(faults, Fault::HangUp)) {
    hungUp_ = true;
    line_.Clear();
    return true;
  }
  if (Has(faults, Fault::ResetInTest)) {
    Reset(at);
    return true;
  }
  if (Has(faults, Fault::PowerLossInStore)) {
    LosePowerInStore(at);
    return true;
  }
  if (Has(faults, Fault::StuckLine)) {
    const TimeUs stuckUs = TimeUs{ValueOf(faults, Fault::StuckLine)} * 1000;
    line_.Send(std::vector<std::uint8_t>(line_.CharactersIn(stuckUs), 0), at);
    deafUntil_ = at + stuckUs;
    return true;
  }
  return Has(faults, Fault::Silent);
}

void SimulatedDrive::Send(const Answer& answer, const FaultSet& faults, TimeUs at) {
  if (Has(faults, Fault::DropNth)) return;
  std::vector<std::uint8_t> reply = answer.Frame;
  Spoil(reply, faults, random_);
  const int baud = Has(faults, Fault::WrongBaud) ? ValueOf(faults, Fault::WrongBaud) : baud_;
  TimeUs start = at + options_.ReplyDelayUs + answer.ExtraUs;
  if (Has(faults, Fault::LateReply)) start += options_.LateUs;
  if (Has(faults, Fault::LateBy)) start += TimeUs{ValueOf(faults, Fault::LateBy)} * 1000;
  const std::span<const std::uint8_t> bytes(reply);
  const std::size_t half = Has(faults, Fault::SplitReply) ? bytes.size() / 2 : bytes.size();
  SendBytes(bytes.first(half), start, baud);
  SendBytes(bytes.subspan(half), start + options_.LateUs, baud);
}

void SimulatedDrive::SendBytes(std::span<const std::uint8_t> bytes, TimeUs at, int baud) {
  if (!bytes.empty()) line_.Send(Reframe(bytes, baud, hostBaud_), at);
}

SimulatedDrive::Answer SimulatedDrive::Execute(const Request& request, const FaultSet& faults) {
  switch (request.Function) {
    case ReadFunction:
      if (Has(faults, Fault::WrongRegister)) {
        Request other = request;
        other.Register += static_cast<std::uint16_t>(ValueOf(faults, Fault::WrongRegister));
        return Read(other);
      }
      return Read(request);
    case WriteFunction:
      if (Has(faults, Fault::RefusedWrite)) return {RefusalReply(request, Refusal::IllegalValue)};
      return Write(request);
    default:
      return {RefusalReply(request, Refusal::IllegalFunction)};
  }
}

SimulatedDrive::Answer SimulatedDrive::Read(const Request& request) const {
  const unsigned first = request.Register;
  const unsigned count = request.Value;
  if (count < 1 || count > MostRegisters) return {RefusalReply(request, Refusal::IllegalValue)};
  if (first + count > RegisterEnd) return {RefusalReply(request, Refusal::IllegalRegister)};
  if (first == LogStart && count == ErrorLog::Length) return {ReadReply(request, log_.All())};

  std::vector<std::uint16_t> words;
  for (unsigned i = 0; i < count; ++i) words.push_back(ReadWord(first + i));
  return {ReadReply(request, words)};
}

std::uint16_t SimulatedDrive::ReadWord(unsigned number) const {
  if (number >= BankEnd) {
    return static_cast<std::uint16_t>(servo_.Sample(static_cast<int>(number - BankEnd)));
  }
  const auto reg = static_cast<Reg>(number);
  switch (reg) {
    case Reg::ErrorLog:
      return log_.All()[0];
    case Reg::RecorderStatus:
      return servo_.RecorderStatus();
    case Reg::WatchPositionHigh:
    case Reg::WatchSpeedHigh:
    case Reg::WatchCurrentHigh:
    case Reg::WatchPositionErrorHigh:
    case Reg::WatchClockHigh:
      return static_cast<std::uint16_t>(WatchValue(reg) >> 16);
    case Reg::WatchPositionLow:
    case Reg::WatchSpeedLow:
    case Reg::WatchCurrentLow:
    case Reg::WatchPositionErrorLow:
    case Reg::WatchClockLow:
      return static_cast<std::uint16_t>(WatchValue(reg) & 0xFFFF);
    default:
      return registers_[reg];
  }
}

std::uint32_t SimulatedDrive::WatchValue(Reg reg) const {
  const auto word = [](auto value) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
  };
  switch (reg) {
    case Reg::WatchPositionHigh:
    case Reg::WatchPositionLow:
      return word(servo_.ShaftPositionPulses());
    case Reg::WatchSpeedHigh:
    case Reg::WatchSpeedLow:
      return word(std::llround(servo_.ShaftSpeedRpm()));
    case Reg::WatchCurrentHigh:
    case Reg::WatchCurrentLow:
      return word(std::llround(servo_.CurrentA() * 1000));
    case Reg::WatchPositionErrorHigh:
    case Reg::WatchPositionErrorLow:
      return word(servo_.PositionErrorPulses());
    default:  // the clock
      return word(clock_ / 1000);
  }
}

SimulatedDrive::Answer SimulatedDrive::Write(const Request& request) {
  std::string event = "write " + Number(request.Register) + " = " + Number(request.Value);
  if (const auto refusal = ReasonToRefuse(request)) {
    Note(event + " refused");
    return {RefusalReply(request, *refusal)};
  }
  Answer done{WriteReply(request)};
  const auto reg = static_cast<Reg>(request.Register);
  const std::string_view command = CommandName(reg);
  Note(command.empty() ? event : event.append(": ").append(command));
  switch (reg) {
    case Reg::ErrorLog:
      if (request.Value == 0) log_.EraseCurrent();
      if (request.Value == 1) log_.EraseAll();
      servo_.ClearTrip();
      SaveImage();
      return done;
    case Reg::StoreEeprom:
      StoreParameters();
      return {WriteReply(request), options_.EepromStoreUs};
    case Reg::FilterSwitch:
      filterOff_ = request.Value != 0;
      servo_.UseTraps(!filterOff_);
      return done;
    default:
      if (servo_.Tripped() && IsMotion(reg) && request.Value != 0) {
        Note("motion refused after trip " + std::string(NameOf(*servo_.Tripped())));
      }
      registers_[reg] = request.Value;
      servo_.Write(reg, request.Value, clock_);
      return done;
  }
}

void SimulatedDrive::LosePowerInStore(TimeUs at) {
  file_.SaveHalf(image_);
  LoadImage();
  // A memory without a file is damaged all the same.
  if (options_.EepromPath.empty()) {
    image_ = FactoryImage();
    log_.Restore(image_.Log);
    RaiseError(DriveError::Eeprom);
  }
  Reset(at);
}

void SimulatedDrive::StoreParameters() {
  for (const FactoryValue& parameter : FactoryParameters()) {
    image_.Stored[parameter.Register] = registers_[parameter.Register];
  }
  SaveImage();
}

void SimulatedDrive::SaveImage() {
  image_.Log = log_.All();
  if (file_.Save(image_)) return;
  // The log entry of this failure is not saved in its turn: that would fail again, and again.
  log_.Add(DriveError::Eeprom);
  Note("EEPROM file not written");
}

}  // namespace gainsmith::sim
