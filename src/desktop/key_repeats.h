// KeyRepeats: tells a key that repeats from one that is pressed anew. X gives a repeat as a release
// and a press of one moment, and Qt marks the two as a repeat only if both have come in by the time
// it looks. Knows one key, or several of which one is used at a time.
#pragma once

#include <QKeyEvent>

namespace gainsmith {

class KeyRepeats {
 public:
  // Of a press before it is given to Press.
  [[nodiscard]] bool IsRepeat(const QKeyEvent& press) const {
    return press.isAutoRepeat() || (mayRepeat_ && press.timestamp() == releasedAt_);
  }
  void Press(const QKeyEvent& event) {
    pressedAt_ = event.timestamp();
    mayRepeat_ = false;
  }
  // True when this may be the first half of a repeat.
  bool Release(const QKeyEvent& event) {
    // No key repeats sooner.
    constexpr quint64 EarliestRepeatMs = 100;
    releasedAt_ = event.timestamp();
    mayRepeat_ = releasedAt_ - pressedAt_ >= EarliestRepeatMs;
    return mayRepeat_;
  }

 private:
  quint64 pressedAt_ = 0;
  quint64 releasedAt_ = 0;
  bool mayRepeat_ = false;
};

}  // namespace gainsmith
