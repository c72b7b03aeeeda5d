// The whole simulated drive behind its serial line: bytes in, bytes out, time as an argument.
#include "simulator/simulated_drive.h"

#include <utility>

#include "simulator/factory_values.h"

namespace gainsmith::sim {

namespace {

constexpr unsigned BankEnd = 256;  // registers below stand in the bank, samples from here on
constexpr unsigned SampleCount = 600;
constexpr unsigned RegisterEnd = BankEnd + SampleCount;
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

std::string Number(std::uint32_t number) { return std::to_string(number); }

}  // namespace

SimulatedDrive::SimulatedDrive(DriveOptions options)
    : options_(std::move(options)),
      file_(options_.EepromPath),
      line_(options_.Baud, options_.Paced),
      random_(options_.Seed) {
  const EepromFile::Found found = file_.Load(image_);
  registers_ = image_.Stored;
  SetPowerUpState(registers_);
  log_.Restore(image_.Log);
  if (found == EepromFile::Found::Corrupt) RaiseError(DriveError::Eeprom);
}

void SimulatedDrive::Receive(std::uint8_t byte, TimeUs now) {
  const TimeUs at = line_.Arrival(now);
  if (hungUp_ || at < bootedAt_) return;
  const std::optional<Request> request = feeder_.Feed(byte, at);
  if (request && request->Address == options_.Address) Serve(*request, at);
}

std::vector<std::uint8_t> SimulatedDrive::Transmit(TimeUs now) { return line_.Take(now); }

void SimulatedDrive::Advance(TimeUs) {}

void SimulatedDrive::Reset(TimeUs now) {
  registers_ = image_.Stored;
  SetPowerUpState(registers_);
  filterOff_ = false;
  feeder_.Clear();
  line_.Clear();
  bootedAt_ = now + options_.BootUs;
  Note("reset");
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

std::vector<std::string> SimulatedDrive::TakeEvents() { return std::exchange(events_, {}); }

void SimulatedDrive::Note(std::string event) {
  if (events_.size() == MostEvents) events_.erase(events_.begin());
  events_.push_back(std::move(event));
}

void SimulatedDrive::Serve(const Request& request, TimeUs at) {
  Advance(at);
  const FaultSet faults = faults_.Strike({request.Function == WriteFunction, false});
  for (std::size_t i = 0; i < FaultCount; ++i) {
    if (faults[i]) Note("fault " + std::string(NameOf(static_cast<Fault>(i))));
  }
  if (StrikesBeforeExecution(faults, at)) return;
  Send(Execute(request, at), faults, at);
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
  return Has(faults, Fault::Silent);
}

void SimulatedDrive::Send(const Answer& answer, const FaultSet& faults, TimeUs at) {
  if (Has(faults, Fault::DropNth)) return;
  std::vector<std::uint8_t> reply = answer.Frame;
  Spoil(reply, faults, random_);
  TimeUs start = at + options_.ReplyDelayUs + answer.ExtraUs;
  if (Has(faults, Fault::LateReply)) start += options_.LateUs;
  if (!Has(faults, Fault::SplitReply)) {
    line_.Send(reply, start);
    return;
  }
  const std::span<const std::uint8_t> bytes(reply);
  const std::size_t half = bytes.size() / 2;
  line_.Send(bytes.first(half), start);
  line_.Send(bytes.subspan(half), start + options_.LateUs);
}

SimulatedDrive::Answer SimulatedDrive::Execute(const Request& request, TimeUs at) {
  switch (request.Function) {
    case ReadFunction:
      return Read(request, at);
    case WriteFunction:
      return Write(request, at);
    default:
      return {RefusalReply(request, Refusal::IllegalFunction)};
  }
}

SimulatedDrive::Answer SimulatedDrive::Read(const Request& request, TimeUs at) {
  const unsigned first = request.Register;
  const unsigned count = request.Value;
  if (count < 1 || count > MostRegisters) return {RefusalReply(request, Refusal::IllegalValue)};
  if (first + count > RegisterEnd) return {RefusalReply(request, Refusal::IllegalRegister)};
  if (first == LogStart && count == ErrorLog::Length) return {ReadReply(request, log_.All())};

  std::vector<std::uint16_t> words;
  for (unsigned i = 0; i < count; ++i) words.push_back(ReadWord(first + i, at));
  return {ReadReply(request, words)};
}

std::uint16_t SimulatedDrive::ReadWord(unsigned number, TimeUs at) const {
  if (number >= BankEnd) return 0;
  switch (number) {
    case LogStart:
      return log_.All()[0];
    case 102:
    case 153:
    case 170:
    case 187:
    case 204:
      return static_cast<std::uint16_t>(WatchValue(number, at) >> 16);
    case 103:
    case 154:
    case 171:
    case 188:
    case 205:
      return static_cast<std::uint16_t>(WatchValue(number - 1, at) & 0xFFFF);
    default:
      return registers_.Values[number];
  }
}

// A 32-bit number, high word first.
std::uint32_t SimulatedDrive::WatchValue(unsigned number, TimeUs at) const {
  return static_cast<std::uint32_t>(at / 1000 * number % 0x1000000);
}

SimulatedDrive::Answer SimulatedDrive::Write(const Request& request, TimeUs) {
  const Answer done{WriteReply(request)};
  if (request.Register >= BankEnd) return {RefusalReply(request, Refusal::IllegalRegister)};
  const auto reg = static_cast<Reg>(request.Register);
  const std::string_view command = CommandName(reg);
  if (!command.empty()) {
    Note("write " + Number(request.Register) + " = " + Number(request.Value) + ": " +
         std::string(command));
  }
  switch (reg) {
    case Reg::Identity:
    case Reg::RecorderStatus:
      return {RefusalReply(request, Refusal::IllegalRegister)};
    case Reg::ErrorLog:
      if (request.Value > 1) return {RefusalReply(request, Refusal::IllegalValue)};
      if (request.Value == 0) log_.EraseCurrent();
      if (request.Value == 1) log_.EraseAll();
      SaveImage();
      return done;
    case Reg::StoreEeprom:
      StoreParameters();
      return {WriteReply(request), options_.EepromStoreUs};
    case Reg::FilterSwitch:
      filterOff_ = request.Value != 0;
      return done;
    default:
      registers_[reg] = request.Value;
      return done;
  }
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
