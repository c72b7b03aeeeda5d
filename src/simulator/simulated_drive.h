// The whole simulated drive behind its serial line: bytes in, bytes out, time as an argument.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "simulator/bank/error_log.h"
#include "simulator/bank/registers.h"
#include "simulator/bank/sim_time.h"
#include "simulator/eeprom.h"
#include "simulator/servo/motor_preset.h"
#include "simulator/servo/servo.h"
#include "simulator/wire/faults.h"
#include "simulator/wire/frame_feeder.h"
#include "simulator/wire/modbus_frame.h"
#include "simulator/wire/paced_line.h"

namespace gainsmith::sim {

struct DriveOptions {
  std::uint8_t Address = 1;
  int Baud = 38400;
  bool Paced = true;  // false: bytes take no time on the line, in either direction
  std::uint32_t Seed = 1;
  MotorPreset Motor = MotorPresets().front();
  std::string EepromPath = {};  // empty: the EEPROM lives as long as the object
  TimeUs ReplyDelayUs = 1'000;
  TimeUs EepromStoreUs = 300'000;  // the reply to a store comes after that
  TimeUs BootUs = 200'000;         // deaf for so long after a reset
  TimeUs LateUs = 70'000;          // what the late-reply and split-reply faults add
};

// Answers function 3 with 1 to 125 registers and function 6, at its own address; refuses what a
// Modbus slave refuses with an exception reply. Times are microseconds from the start of its world
// and never go back between calls. It works only when it is called: nothing happens by itself
// while no time is passed in. The same options, bytes and times give the same bytes back.
class SimulatedDrive {
 public:
  explicit SimulatedDrive(DriveOptions options);
  SimulatedDrive(const SimulatedDrive&) = delete;
  SimulatedDrive& operator=(const SimulatedDrive&) = delete;

  // The host puts one byte on the line.
  void Receive(std::uint8_t byte, TimeUs now);
  // The bytes of replies whose last bit has left the line by now, each given once.
  std::vector<std::uint8_t> Transmit(TimeUs now);
  // When Transmit will next have something to give, if nothing more is received.
  [[nodiscard]] std::optional<TimeUs> NextTransmitAt() const { return line_.NextAt(); }
  // When it will have given all of it. Only while there is something to give.
  [[nodiscard]] TimeUs AllTransmittedAt() const { return line_.AllAt(); }

  // Runs the motor up to the time given, so that its faults show. Requests do that by themselves.
  void Advance(TimeUs now);
  // Power off and on: working values from the EEPROM, motion stopped, the line cleared, deaf for
  // BootUs. Faults stay in force.
  void Reset(TimeUs now);

  // A motion that no register commands, as if a machine moved the motor, until stopped or until a
  // command takes over.
  void StartMotion(TimeUs now, const BackgroundMotion& motion = {});
  void StopMotion(TimeUs now);
  // Whether the motor turns or is about to.
  [[nodiscard]] bool Moving() const { return servo_.Moving(); }
  // Whether anything may happen by itself as time passes.
  [[nodiscard]] bool Busy() const { return servo_.Busy(); }
  // The encoder's plug: off is a trip at once when the motor has power.
  void PlugEncoder(bool on, TimeUs now);
  [[nodiscard]] const Servo& Motor() const { return servo_; }

  // The working values. Writing here has none of the effects of a request: commands do not run,
  // and the motor takes parameters over only with a later write to one of them.
  RegisterBank& Registers() { return registers_; }
  [[nodiscard]] const ErrorLog& Errors() const { return log_; }
  // Register 254 as written: true when the trap filters are switched off.
  [[nodiscard]] bool FilterOff() const { return filterOff_; }

  // Faults count the requests that follow. Injecting a fault again replaces its earlier order.
  void Inject(Fault fault, Hits hits = Hits::All()) { faults_.Inject({fault, hits, {}}); }
  void Inject(const FaultOrder& order) { faults_.Inject(order); }
  void ClearFaults() { faults_.Clear(); }
  // Puts an error into the log, as the drive itself would.
  void RaiseError(DriveError error);

  // True from a hang-up fault on: the device is gone, bytes to it are lost, until Reconnect.
  [[nodiscard]] bool HungUp() const { return hungUp_; }
  void Reconnect();
  // The speed of both ends.
  void SetBaud(int baud);
  // The speed of the host's end alone. Where it is not the drive's, both hear garbage.
  void SetHostBaud(int baud) { hostBaud_ = baud; }

  // What happened since the last call, one line each without an end of line: writes, requests with
  // a bad check, faults, trips, errors. Keeps the latest thousand.
  std::vector<std::string> TakeEvents();

 private:
  struct Answer {
    std::vector<std::uint8_t> Frame;
    TimeUs ExtraUs = 0;  // beyond the usual reply delay
  };

  void Serve(const Request& request, TimeUs at);
  Answer Execute(const Request& request, const FaultSet& faults);
  [[nodiscard]] Answer Read(const Request& request) const;
  Answer Write(const Request& request);
  void Send(const Answer& answer, const FaultSet& faults, TimeUs at);
  bool StrikesBeforeExecution(const FaultSet& faults, TimeUs at);
  void SpeakUnasked(const Request& request, const FaultSet& faults, TimeUs at);
  void SendBytes(std::span<const std::uint8_t> bytes, TimeUs at, int baud);

  [[nodiscard]] std::uint16_t ReadWord(unsigned number) const;
  // What the watch address of which `reg` is a half shows, negative numbers in two's complement.
  [[nodiscard]] std::uint32_t WatchValue(Reg reg) const;
  void LoadImage();
  void StoreParameters();
  void LosePowerInStore(TimeUs at);
  void SaveImage();
  void TripOut(Trip trip);
  void Note(std::string event);

  DriveOptions options_;
  RegisterBank registers_;
  ErrorLog log_;
  EepromFile file_;
  EepromImage image_;
  FrameFeeder feeder_;
  PacedLine line_;
  FaultPlan faults_;
  std::mt19937 random_;
  Servo servo_;
  TimeUs clock_ = 0;  // how far the motor has been run
  TimeUs deafUntil_ = 0;
  int baud_;
  int hostBaud_;
  bool filterOff_ = false;
  bool hungUp_ = false;
  std::vector<std::string> events_;
};

}  // namespace gainsmith::sim
