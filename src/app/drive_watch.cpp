// What is known of the drive, in words.
#include "app/drive_watch.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "params/parameter_table.h"
#include "platform/common_texts.h"

namespace gainsmith {
namespace {

std::string Ago(std::int64_t ms) {
  const std::int64_t seconds = ms / 1000;
  if (seconds < 120) return std::to_string(seconds) + " s";
  if (seconds < 7200) return std::to_string(seconds / 60) + " min";
  return std::to_string(seconds / 3600) + " h";
}

std::string Times(int count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// What has no row in the parameter table.
constexpr std::array<std::pair<Register, const char*>, 9> CommandNames{{
    {Register::CurrentStep, "the current test command"},
    {Register::TestCurrent, "the test current"},
    {Register::PositionCommand, "the run and stop command"},
    {Register::StoreEeprom, "the store command"},
    {Register::ErrorLog, "the error log"},
    {Register::TraceKind, "the trace's channels"},
    {Register::ArmRecorder, "the recorder's start"},
    {Register::RecorderStatus, "the recorder's state"},
    {Register::VelocityCommand, "the run and stop command of the velocity test"},
}};

std::string NameOf(Register reg) {
  if (reg == Register::Flags) return "the flags word";
  for (const auto& [command, name] : CommandNames) {
    if (command == reg) return name;
  }
  for (const ParameterRow& row : ParameterRows()) {
    if (row.Source == reg) return std::string(row.PlainName);
  }
  return reg < Register::Samples ? "a word of the test" : "recorded samples";
}

std::string InWords(Function function, Register reg) {
  return (function == Function::Read ? "reading " : "writing ") + NameOf(reg) + " (register " +
         std::to_string(static_cast<int>(reg)) + ")";
}

bool IsSetting(Register reg) {
  const auto rows = ParameterRows();
  return std::any_of(rows.begin(), rows.end(),
                     [reg](const ParameterRow& row) { return row.Source == reg; });
}

bool IsJog(Register reg, std::uint16_t word) {
  return reg == Register::PositionCommand && word != 2;
}

}  // namespace

DriveWatch::DriveWatch(World& world, Link& link, MDIForm1& main)
    : world_(world), link_(link), main_(main) {
  link_.OnTaken = [this](Register reg, bool changed) {
    if (reg == Register::StoreEeprom) stored_ = Stored::Yes;
    if (changed && IsSetting(reg)) stored_ = Stored::No;
  };
  link_.OnLost = [this](Function function, Register reg, int frames) {
    if (!world_.IsPortOpen()) return;
    main_.TellTrouble("The drive did not answer: " + InWords(function, reg) + ", sent " +
                      Times(frames, "time") + ".");
  };
  world_.OnMessageShown = [this](const Message& message) {
    // Those of a lost link say less than what was told when it was lost.
    const bool communication =
        message.Title == LostLinkMessage().Title || message.Title == "Communication Error";
    const bool grave =
        message.Icon == MessageIcon::Critical || message.Icon == MessageIcon::Warning;
    const bool question = message.Buttons == MessageButtons::YesNo;
    if (grave && !question && !communication) main_.TellTrouble(message.Text);
  };
}

void DriveWatch::Refresh(const Hands& hands) {
  NoteSession();
  WatchMotor(hands);
  main_.ShowStrip(StripField::Link, LinkText());
  main_.ShowStrip(StripField::Motor, MotorText());
  main_.ShowStrip(StripField::Settings, SettingsText());
}

// Another opening of the port, or another number, may lead to another drive.
void DriveWatch::NoteSession() {
  const bool same = session_ == link_.PortSession() && device_ == link_.DeviceAddress;
  if (same && world_.IsPortOpen()) return;
  session_ = link_.PortSession();
  device_ = link_.DeviceAddress;
  stored_ = Stored::Unknown;
}

void DriveWatch::WatchMotor(const Hands& hands) {
  const LineKnowledge& known = link_.Known();
  const bool open = world_.IsPortOpen();
  // A handler that has lost the link may still stand behind its message, and says nothing more.
  const bool speaking = open && link_.MotorErrandUnderWay() && !known.LastExchangeFailed;
  const MotorState before = std::exchange(motor_, MotorState::AtRest);
  const bool ran = before != MotorState::AtRest && before != MotorState::Unknown;
  for (const auto& [reg, command] : known.Commands) {
    const std::pair place(command.Device, reg);
    if (command.Word == 0) {
      if (command.Acknowledged) {
        unknown_.erase(place);
      } else if (!speaking) {
        unknown_.insert(place);
      } else if (ran) {
        motor_ = MotorState::Stopping;
      }
      continue;
    }
    const bool jog = IsJog(reg, command.Word);
    const bool held = jog ? hands.OnJog || speaking : hands.OnTest || speaking;
    const bool lost =
        !open || known.LastExchangeFailed || !held || (!command.Acknowledged && !speaking);
    if (lost) {
      unknown_.insert(place);
    } else {
      motor_ = jog ? MotorState::Jogging : MotorState::TestRunning;
    }
  }
  if (!unknown_.empty()) motor_ = MotorState::Unknown;
}

StripText DriveWatch::LinkText() const {
  if (!world_.IsPortOpen()) {
    return {"Not connected", "No port is open. Choose Drive, Connect (Ctrl+N)."};
  }
  const LineKnowledge& known = link_.Known();
  const std::string& where = main_.lblConnectionDetail.Caption;
  const std::string counts =
      where + "\n" + Times(known.Resends, "resend") + ", " +
      (known.LostReplies == 1 ? "1 lost reply"
                              : std::to_string(known.LostReplies) + " lost replies") +
      " since the port was opened";
  const std::string age = known.AnsweredAtMs ? Ago(world_.NowMs() - *known.AnsweredAtMs) : "";
  if (known.LastExchangeFailed) {
    return {(age.empty() ? "no answer yet" : "no answer for " + age) + ": " + where, counts, true};
  }
  return {where + (age.empty() ? "" : ", answered " + age + " ago"), counts};
}

StripText DriveWatch::MotorText() const {
  switch (motor_) {
    case MotorState::AtRest:
      if (!world_.IsPortOpen()) return {};
      return {"Motor: at rest", "No test and no jog of this tool is in force"};
    case MotorState::TestRunning:
      return {
          "Motor: test running",
          "Stop, or the emergency stop, ends it.\nThe current of a current loop test flows until "
          "its window is closed."};
    case MotorState::Jogging:
      return {"Motor: jogging", "It stops when the button is released"};
    case MotorState::Stopping:
      return {"Motor: stopping", "A stop was sent that the drive has not acknowledged yet"};
    case MotorState::Unknown:
      break;
  }
  std::string devices;
  for (const auto& [device, reg] : unknown_) {
    const std::string number = std::to_string(device);
    if (!devices.ends_with(number)) devices += (devices.empty() ? "device " : ", ") + number;
  }
  return {"emergency stop: commanded to run, state unknown",
          "Motor commanded to run, state unknown: the drive (" + devices +
              ") has not acknowledged that it was stopped.\nUse the emergency stop. Once the "
              "drive answers again, a test that is started and stopped makes sure.",
          true};
}

StripText DriveWatch::SettingsText() const {
  switch (stored_) {
    case Stored::No:
      return {"changed, not stored: Download to Drive stores them",
              "Settings were changed in the drive's working memory. They are lost when it is "
              "switched off, unless Drive, Download to Drive stores them."};
    case Stored::Yes:
      return {"stored", "The settings stand in the drive's permanent memory"};
    case Stored::Unknown:
      break;
  }
  return {};
}

}  // namespace gainsmith
