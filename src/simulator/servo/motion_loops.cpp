// The velocity and the position controller.
#include "simulator/servo/motion_loops.h"

#include <algorithm>

namespace gainsmith::sim {

void VelocityLoop::Configure(const RegisterBank& registers) {
  measurementFilter_.Configure(registers[Reg::VelocityFilterHz], VelocityPeriodS);
  outputFilter_.Configure(registers[Reg::CurrentReferenceHz], VelocityPeriodS);
  trap1_.Configure(registers[Reg::Trap1Hz], registers[Reg::Trap1WidthHz], VelocityPeriodS);
  trap2_.Configure(registers[Reg::Trap2Hz], registers[Reg::Trap2WidthHz], VelocityPeriodS);
}

void VelocityLoop::Reset() {
  measurementFilter_.Reset(0.0);
  outputFilter_.Reset(0.0);
  trap1_.Reset();
  trap2_.Reset();
  integralA_ = 0.0;
}

double VelocityLoop::Step(double referenceRpm, double measuredRpm, double feedForwardA,
                          double limitA, const MotionGains& gains) {
  const double errorRpm = referenceRpm - measurementFilter_.Step(measuredRpm);
  const double wantedA = gains.VelocityKp * errorRpm + integralA_ + feedForwardA;
  const bool limited = wantedA > limitA || wantedA < -limitA;
  // Integrating on into the limit would only have to be unwound again.
  if (!limited || (wantedA > 0.0) != (errorRpm > 0.0)) {
    integralA_ += gains.VelocityKi * VelocityPeriodS * errorRpm;
  }
  const double withinLimitA = std::clamp(wantedA, -limitA, limitA);
  // The traps run on while they are not used, so that switching them on is no jolt.
  const double trappedA = trap2_.Step(trap1_.Step(withinLimitA));
  const double filteredA = outputFilter_.Step(useTraps_ ? trappedA : withinLimitA);
  return std::clamp(filteredA, -limitA, limitA);
}

void PositionLoop::Configure(const RegisterBank& registers) {
  outputFilter_.Configure(registers[Reg::VelocityReferenceHz], TickS);
}

void PositionLoop::Reset(double velocityPps) {
  outputFilter_.Reset(velocityPps);
  integralPps_ = 0.0;
  lastErrorPulses_ = 0.0;
}

double PositionLoop::Step(double errorPulses, double referencePps, double limitPps,
                          const MotionGains& gains) {
  const double errorPps = (errorPulses - lastErrorPulses_) / TickS;
  lastErrorPulses_ = errorPulses;
  integralPps_ =
      std::clamp(integralPps_ + gains.PositionKi * TickS * errorPulses, -limitPps, limitPps);
  if (gains.PositionKi == 0.0) integralPps_ = 0.0;
  const double wantedPps = gains.PositionKp * errorPulses + integralPps_ +
                           gains.PositionKd * errorPps + gains.Kvff * referencePps;
  return outputFilter_.Step(std::clamp(wantedPps, -limitPps, limitPps));
}

}  // namespace gainsmith::sim
