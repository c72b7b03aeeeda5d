// Configuration texts that anybody may have written.
#include <algorithm>
#include <cmath>
#include <string_view>

#include "fuzzer.h"
#include "params/config_text.h"

namespace gainsmith::fuzz {
namespace {

constexpr float Untouched = 4711;

// Slots from `first` on hold what they held before.
bool UntouchedFrom(const ParameterStore& store, std::size_t first) {
  return std::all_of(store.ParameterValues.begin() + static_cast<std::ptrdiff_t>(first),
                     store.ParameterValues.end(), [](float value) { return value == Untouched; });
}

// How many lines there are to read, whatever is in them.
std::size_t LineCount(std::string_view text) {
  std::size_t ends = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool pair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    ends += (text[i] == '\r' || text[i] == '\n') && !pair ? 1 : 0;
  }
  const bool open = !text.empty() && text.back() != '\r' && text.back() != '\n';
  return ends + (open ? 1 : 0);
}

// What was read is kept by being saved and opened, however often.
void CheckSaved(const ParameterStore& read) {
  const std::optional<std::string> saved = FormatConfig(read);
  Require(saved.has_value(), "what can be read can be written");
  ParameterStore opened;
  Require(ParseConfig(*saved, opened), "what was written can be read");
  for (std::size_t i = 0; i < ParameterCount; ++i) {
    const float before = read.ParameterValues[i];
    const float after = opened.ParameterValues[i];
    Require(std::abs(after - before) <= std::abs(before) * 6e-7 + 2e-45, "seven digits are kept");
  }
  ParameterStore again;
  Require(ParseConfig(FormatConfig(opened).value(), again), "the second time, too");
  Require(again.ParameterValues == opened.ParameterValues, "the second saving changes nothing");
}

void CheckText(std::string_view text) {
  ParameterStore store;
  store.ParameterValues.fill(Untouched);
  const bool whole = ParseConfig(text, store);
  const std::size_t lines = std::min(LineCount(text), ParameterCount);
  Require(UntouchedFrom(store, lines), "a slot without a line keeps its value");
  Require(std::all_of(store.ParameterValues.begin(), store.ParameterValues.end(),
                      [](float value) { return std::isfinite(value); }),
          "every value is a number");
  if (!whole) return;
  Require(lines == ParameterCount, "a whole text has all lines");
  store.ParameterValues.back() = 0;
  CheckSaved(store);
}

}  // namespace
}  // namespace gainsmith::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  gainsmith::fuzz::CheckText({reinterpret_cast<const char*>(bytes), count});
  return 0;
}
