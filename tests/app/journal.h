// Journal: digests of what went out, what was said and what there is to see, for lists of what no
// test looks at by itself.
#pragma once

#include <cstdint>
#include <string>

#include "bench.h"
#include "description.h"

namespace gainsmith::test {

// FNV-1a: it must be the same everywhere.
inline std::string Digest(const Texts& texts) {
  std::uint32_t digest = 0x811c9dc5;
  for (const std::string& text : texts) {
    for (const char c : text + "\n") digest = (digest ^ static_cast<std::uint8_t>(c)) * 0x1000193;
  }
  return std::to_string(digest);
}

class Journal {
 public:
  explicit Journal(Bench& bench)
      : bench_(bench),
        frames_(bench.world.Log.Frames().size()),
        messages_(bench.world.Messages.size()) {}

  // What went out and was said since the last line, and all windows as they are now.
  std::string Line() {
    const auto& frames = bench_.world.Log.Frames();
    const auto& messages = bench_.world.Messages;
    const std::string counts = ": " + std::to_string(frames.size() - frames_) + " frames, " +
                               std::to_string(messages.size() - messages_) + " messages, ";
    Texts all = Description(bench_.tool).Lines();
    // Whether mouse and windows may begin something.
    all.push_back(bench_.tool.link.LinkIdle ? "idle" : "busy");
    for (; messages_ < messages.size(); ++messages_) all.push_back(messages[messages_].Text);
    for (; frames_ < frames.size(); ++frames_) {
      const LoggedFrame& frame = frames[frames_];
      all.push_back(std::to_string(frame.AtMs) + ", " + std::to_string(frame.Bytes[0]));
      all.push_back(frame.Text());
    }
    return counts + Digest(all);
  }

 private:
  Bench& bench_;
  std::size_t frames_;
  std::size_t messages_;
};

}  // namespace gainsmith::test
