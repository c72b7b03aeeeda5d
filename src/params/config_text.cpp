// The writer and the reader of a configuration file's lines.
#include "params/config_text.h"

#include <cmath>

#include "params/parameter_table.h"
#include "platform/number_text.h"

namespace gainsmith {
namespace {

constexpr char Separator = '&';

// Takes the first line off `text`; nothing when there is none left.
std::optional<std::string_view> TakeLine(std::string_view& text) {
  if (text.empty()) return std::nullopt;
  const std::size_t end = text.find_first_of("\r\n");
  const std::string_view line = text.substr(0, end);
  if (end == std::string_view::npos) {
    text = {};
  } else {
    const bool pair = text.substr(end, 2) == "\r\n";
    text.remove_prefix(end + (pair ? 2 : 1));
  }
  return line;
}

std::optional<float> ValueOfLine(std::string_view line) {
  const std::size_t key = line.find(Separator);
  if (key == std::string_view::npos) return std::nullopt;
  const std::string_view rest = line.substr(key + 1);
  return WholeNumber(rest.substr(0, rest.find(Separator)));
}

}  // namespace

std::optional<std::string> FormatConfig(const ParameterStore& store) {
  std::string text;
  for (std::size_t i = 0; i < ParameterCount; ++i) {
    const float value = store.ParameterValues[i];
    if (!std::isfinite(value)) return std::nullopt;
    text += ParameterKeys[i];
    text += Separator;
    if (!(value < 0)) text += ' ';
    text += FileText(value);
    text += " \r\n";
  }
  return text;
}

bool ParseConfig(std::string_view text, ParameterStore& store) {
  for (std::size_t i = 0; i < ParameterCount; ++i) {
    const std::optional<std::string_view> line = TakeLine(text);
    if (!line) return false;
    const std::optional<float> value = ValueOfLine(*line);
    if (!value) return false;
    store.ParameterValues[i] = *value;
  }
  return true;
}

}  // namespace gainsmith
