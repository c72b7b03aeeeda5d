// The velocity and the position controller.
#pragma once

#include "simulator/bank/registers.h"
#include "simulator/servo/filters.h"
#include "simulator/servo/motion_gains.h"

namespace gainsmith::sim {

constexpr double VelocityPeriodS = 250e-6;  // 4 kHz
constexpr double TickS = 500e-6;            // position loop, pulse generator and recorder
constexpr double MaxSpeedRpm = 6000.0;      // no loop commands more

// Velocity controller: PI plus a feed-forward current. Its output passes the two trap filters
// (registers 238 to 241) and the low pass of register 53; its measurement that of register 52.
class VelocityLoop {
 public:
  void Configure(const RegisterBank& registers);
  // Whether the current reference passes the trap filters at all. That shows what they are good for
  // without losing their settings.
  void UseTraps(bool use) { useTraps_ = use; }
  void Reset();
  // Speeds in rpm, currents in amperes; the reference that comes back is within ±limitA.
  double Step(double referenceRpm, double measuredRpm, double feedForwardA, double limitA,
              const MotionGains& gains);

 private:
  LowPass measurementFilter_;
  LowPass outputFilter_;
  TrapFilter trap1_;
  TrapFilter trap2_;
  bool useTraps_ = true;
  double integralA_ = 0.0;
};

// Position controller: PID plus a share of the commanded velocity. Its output passes the low pass
// of register 54.
class PositionLoop {
 public:
  void Configure(const RegisterBank& registers);
  void Reset(double velocityPps);
  // Pulses and pulses per second; returns the velocity to command, within ±limitPps.
  double Step(double errorPulses, double referencePps, double limitPps, const MotionGains& gains);

 private:
  LowPass outputFilter_;
  double integralPps_ = 0.0;
  double lastErrorPulses_ = 0.0;
};

}  // namespace gainsmith::sim
