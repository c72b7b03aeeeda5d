#include "console/settings_text.h"

#include "console/json_text.h"
#include "host/qt_text.h"
#include "link/frames.h"
#include "params/drive_flags.h"
#include "params/setting_text.h"

namespace gainsmith {
namespace {

bool IsFlag(Slot slot) { return RowOf(slot).Source == Register::Flags; }

// Flags share one register: their places in its word tell them apart.
std::string KeyOf(Slot slot) {
  const ParameterRow& row = RowOf(slot);
  if (!IsFlag(slot)) return std::string(row.Key);
  return "FF." + std::to_string(static_cast<int>(slot) - static_cast<int>(Slot::PulseEdge));
}

std::string NameOf(Slot slot) {
  const ParameterRow& row = RowOf(slot);
  return std::string(TitleOf(row.Group)) + ": " + std::string(row.PlainName);
}

std::string WithUnit(const std::string& text, Slot slot) {
  const std::string unit(RowOf(slot).Unit);
  return text + (unit.empty() ? "" : " " + unit);
}

QString Key(const char* name) { return QString::fromLatin1(name); }

std::string Heading(Slot slot) {
  constexpr int KeyLetters = 14;
  constexpr int NameLetters = 56;
  return FromQt(ToQt(KeyOf(slot)).leftJustified(KeyLetters) +
                ToQt(NameOf(slot)).leftJustified(NameLetters));
}

QJsonObject Described(Slot slot) {
  return {{Key("key"), ToQt(KeyOf(slot))},
          {Key("name"), ToQt(NameOf(slot))},
          {Key("unit"), ToQt(std::string(RowOf(slot).Unit))}};
}

}  // namespace

const std::vector<Slot>& ComparableSlots() {
  static const std::vector<Slot> comparable = [] {
    std::vector<Slot> found;
    for (const Slot slot : ListOrder()) {
      if (Travels(slot) || IsFlag(slot)) found.push_back(slot);
    }
    return found;
  }();
  return comparable;
}

ParameterStore WithSingleFlags(const ParameterStore& store) {
  ParameterStore single = store;
  if (!store.HoldsFlagsWord) return single;
  if (const auto word = PackWord(FlagsToSend(store))) TakeDriveFlags(single, *word);
  return single;
}

std::vector<Difference> DifferencesOf(const ParameterStore& first, const ParameterStore& second) {
  const ParameterStore a = WithSingleFlags(first);
  const ParameterStore b = WithSingleFlags(second);
  std::vector<Difference> differences;
  for (const Slot slot : ComparableSlots()) {
    if (!SameSetting(a, b, slot)) {
      differences.push_back({slot, a[slot], b[slot], SettingText(a, slot), SettingText(b, slot)});
    }
  }
  return differences;
}

std::string SettingLine(const ParameterStore& settings, Slot slot) {
  return Heading(slot) + WithUnit(SettingText(settings, slot), slot);
}

QJsonObject SettingObject(const ParameterStore& settings, Slot slot) {
  QJsonObject object = Described(slot);
  object.insert(Key("value"), JsonNumber(settings[slot]));
  object.insert(Key("text"), ToQt(SettingText(settings, slot)));
  return object;
}

std::string DifferenceLine(const Difference& difference) {
  return Heading(difference.Index) + difference.FirstText + " -> " +
         WithUnit(difference.SecondText, difference.Index);
}

QJsonArray DifferenceArray(const std::vector<Difference>& differences, const std::string& first,
                           const std::string& second) {
  QJsonArray all;
  for (const Difference& difference : differences) {
    QJsonObject object = Described(difference.Index);
    object.insert(Key("a"), JsonNumber(difference.First));
    object.insert(Key("b"), JsonNumber(difference.Second));
    object.insert(Key("a_is"), ToQt(first));
    object.insert(Key("b_is"), ToQt(second));
    all.push_back(object);
  }
  return all;
}

}  // namespace gainsmith
