// Messages compared, and printed where they differ, as a whole.
#pragma once

#include <ostream>
#include <tuple>

#include "platform/common_texts.h"
#include "support/virtual_world.h"

namespace gainsmith {

inline bool operator==(const Message& a, const Message& b) {
  return std::tie(a.Text, a.Title, a.Buttons, a.Icon, a.Default) ==
         std::tie(b.Text, b.Title, b.Buttons, b.Icon, b.Default);
}

inline void PrintTo(const Message& message, std::ostream* out) {
  *out << '"' << message.Title << "\": \"" << message.Text << "\", icon "
       << static_cast<int>(message.Icon) << ", default " << static_cast<int>(message.Default);
}

}  // namespace gainsmith

namespace gainsmith::test {

using Messages = std::vector<Message>;

constexpr const char* LostLinkText =
    "Unable to communicate with the connected drive. Check your connection";

// A message with OK alone.
inline Message Tell(const std::string& text, const std::string& title,
                    MessageIcon icon = MessageIcon::Information) {
  return {text, title, MessageButtons::Ok, icon};
}
inline const Message LostLink = Tell(LostLinkText, "Cmmunication Error", MessageIcon::Critical);

// The messages shown since the last call.
inline Messages TakeMessages(VirtualWorld& world) { return std::exchange(world.Messages, {}); }

}  // namespace gainsmith::test
