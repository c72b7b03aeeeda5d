// FrameLog: see the header.
#include "support/frame_log.h"

namespace gainsmith::test {

std::string LoggedFrame::Text() const {
  const std::string reg = std::to_string(Register());
  if (IsWrite()) return "W " + reg + "=" + std::to_string(Value());
  return Value() == 1 ? "R " + reg : "R " + reg + "x" + std::to_string(Value());
}

void FrameLog::Write(std::uint8_t byte, std::int64_t nowMs) {
  open_.push_back(byte);
  if (open_.size() < 8) return;
  frames_.push_back({nowMs, open_});
  open_.clear();
}

std::vector<std::string> FrameLog::Texts() const {
  std::vector<std::string> texts;
  for (const LoggedFrame& frame : frames_) texts.push_back(frame.Text());
  return texts;
}

std::vector<int> FrameLog::Writes(int reg) const {
  std::vector<int> values;
  for (const LoggedFrame& frame : frames_) {
    if (frame.IsWrite() && frame.Register() == reg) values.push_back(frame.Value());
  }
  return values;
}

}  // namespace gainsmith::test
