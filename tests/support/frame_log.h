// FrameLog: every frame that the tool sent, with its time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace gainsmith::test {

using Texts = std::vector<std::string>;

struct LoggedFrame {
  // When its last byte was written.
  std::int64_t AtMs = 0;
  std::vector<std::uint8_t> Bytes;

  bool IsWrite() const { return Bytes[1] == 6; }
  int Register() const { return Bytes[2] * 256 + Bytes[3]; }
  int Value() const { return Bytes[4] * 256 + Bytes[5]; }
  // "R 19" for a read of one register, "R 256x50" for a block, "W 9=2" for a write.
  std::string Text() const {
    const std::string reg = std::to_string(Register());
    if (IsWrite()) return "W " + reg + "=" + std::to_string(Value());
    return "R " + reg + (Value() == 1 ? "" : "x" + std::to_string(Value()));
  }
};

class FrameLog {
 public:
  // A frame begins: what was written since the last whole frame is a fragment.
  void Begin() {
    if (!open_.empty()) ++fragments_;
    open_.clear();
  }
  void Write(std::uint8_t byte, std::int64_t nowMs) {
    open_.push_back(byte);
    if (open_.size() < 8) return;
    frames_.push_back({nowMs, open_});
    open_.clear();
  }
  void Clear() {
    frames_.clear();
    fragments_ = 0;
  }

  const std::vector<LoggedFrame>& Frames() const { return frames_; }
  // Frames that another frame broke off.
  int Fragments() const { return fragments_; }
  test::Texts Texts() const {
    test::Texts texts;
    for (const LoggedFrame& frame : frames_) texts.push_back(frame.Text());
    return texts;
  }
  // Values written to a register, in order.
  std::vector<int> Writes(int reg) const {
    std::vector<int> values;
    for (const LoggedFrame& frame : frames_) {
      if (frame.IsWrite() && frame.Register() == reg) values.push_back(frame.Value());
    }
    return values;
  }

 private:
  std::vector<std::uint8_t> open_;
  std::vector<LoggedFrame> frames_;
  int fragments_ = 0;
};

}  // namespace gainsmith::test
