// Texts of more than one room.
#pragma once

#include "platform/world.h"

namespace gainsmith {

// The title of the main window and of most messages.
inline constexpr const char* MainTitle = "Torvane Gainsmith for KVT518";

// The message of a lost link: of a drive that does not answer, and of a port that is closed.
inline Message LostLinkMessage() {
  return {"Unable to communicate with the connected drive. Check your connection",
          "Cmmunication Error", MessageButtons::Ok, MessageIcon::Critical};
}

}  // namespace gainsmith
