// A setting in words, for whoever reads the whole table: its value, and whether two tables agree.
#pragma once

#include <string>

#include "params/parameter_store.h"

namespace gainsmith {

// The value of a slot without its unit: a number in plain decimals, or the state that a flag stands
// for as the properties window names it. "not read" for the one slot that no register feeds.
std::string SettingText(const ParameterStore& store, Slot slot);

// Both tables say the same to the drive: the slot packs as the same word, or both cannot be packed
// and are the same number. True for the slot that never travels.
bool SameSetting(const ParameterStore& left, const ParameterStore& right, Slot slot);

}  // namespace gainsmith
