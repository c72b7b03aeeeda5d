// Configuration text: the 51 lines of a configuration file. Pure functions over bytes.
//
// One line a slot, slot 0 first: key, '&', the engineering value between blanks (none before a
// negative one), carriage return, line feed. There is no header, version or checksum. The position
// of a line alone decides its slot.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "params/parameter_store.h"

namespace gainsmith {

// The text of the table. Every value that a register can hold reads back as the same float, any
// other one to seven digits. Nothing when a value is not finite: no text would give it back.
std::optional<std::string> FormatConfig(const ParameterStore& store);

// Reads the first 51 lines into the table, slot by slot. A line ends in CR LF, LF, CR or with the
// text. False at the first line that is missing, has no '&', or whose field behind it (up to a
// second '&') is anything but one number; the slots of the lines before it hold their new values.
bool ParseConfig(std::string_view text, ParameterStore& store);

}  // namespace gainsmith
