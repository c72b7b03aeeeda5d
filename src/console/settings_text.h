// Settings as the verbs print and compare them.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <string>
#include <vector>

#include "params/parameter_table.h"

namespace gainsmith {

// The settings that a drive has, in the order in which they are listed for a reader; a flag is a
// setting of its own.
const std::vector<Slot>& ComparableSlots();

// The same settings with each flag in its own slot, whatever slot PulseEdge held.
ParameterStore WithSingleFlags(const ParameterStore& store);

struct Difference {
  Slot Index;
  float First;
  float Second;
  // The values as a reader reads them, without unit.
  std::string FirstText;
  std::string SecondText;
};

// The settings that are not one word of the drive's registers.
std::vector<Difference> DifferencesOf(const ParameterStore& first, const ParameterStore& second);

// Of settings WithSingleFlags.
std::string SettingLine(const ParameterStore& settings, Slot slot);
QJsonObject SettingObject(const ParameterStore& settings, Slot slot);
// `first` and `second` name the two sides.
std::string DifferenceLine(const Difference& difference);
QJsonArray DifferenceArray(const std::vector<Difference>& differences, const std::string& first,
                           const std::string& second);

}  // namespace gainsmith
