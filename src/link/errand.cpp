// Errand: the kinds of words, and the count of what is under way.
#include "link/errand.h"

#include "link/link.h"

namespace gainsmith {

WordKind KindOf(Function function, Register reg, float value) {
  if (function == Function::Read) return WordKind::Other;
  switch (reg) {
    case Register::PositionCommand:
    case Register::VelocityCommand:
    case Register::CurrentStep:
      return value == 0 ? WordKind::Stop : WordKind::Moving;
    case Register::TestCurrent:
    case Register::StoreEeprom:
    case Register::ErrorLog:
    case Register::TraceKind:
    case Register::ArmRecorder:
    case Register::AccelerationWord:
    case Register::SpeedWord:
    case Register::LengthHigh:
    case Register::LengthLow:
    case Register::RepeatCount:
    case Register::TraceTime:
    case Register::PauseWord:
      return WordKind::Other;
    default:
      return WordKind::Setting;
  }
}

bool TakesCommands(Register reg) {
  return reg == Register::StoreEeprom || reg == Register::ErrorLog || reg == Register::ArmRecorder;
}

Errand::Errand(Link& link, const Window& window, Of of)
    : link_(link), stay_(window), of_(of), number_(link.Begin(of)), session_(link.portSession_) {}

Errand::Errand(Link& link, Of of)
    : link_(link), of_(of), number_(link.Begin(of)), session_(link.portSession_) {}

Errand::~Errand() { link_.End(of_); }

}  // namespace gainsmith
