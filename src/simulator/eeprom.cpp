// What the drive keeps without power: the stored parameters and the error log, as a text file.
#include "simulator/eeprom.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <vector>

#include "simulator/bank/factory_values.h"
#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view Title = "kvt518-sim eeprom 1";
// Far more than any image; what is longer is none.
constexpr std::size_t LongestText = 65536;

// Whether only a file of our own can be hit by reading and writing there: a device may have no end,
// and would be replaced.
bool IsFileOrNothing(const std::string& path) {
  std::error_code ignored;
  const fs::file_status status = fs::status(path, ignored);
  return !fs::exists(status) || fs::is_regular_file(status);
}

std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(LongestText, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

void SetAside(const std::string& path) {
  std::string aside = path + ".damaged";
  std::error_code ignored;
  for (int number = 2; fs::exists(aside, ignored); ++number) {
    aside = path + ".damaged" + std::to_string(number);
  }
  fs::rename(path, aside, ignored);
}

unsigned Checksum(std::string_view text) {
  return Crc16(std::vector<std::uint8_t>(text.begin(), text.end()));
}

bool IsParameter(int number) {
  const auto parameters = FactoryParameters();
  return std::any_of(parameters.begin(), parameters.end(), [number](const FactoryValue& parameter) {
    return static_cast<int>(parameter.Register) == number;
  });
}

bool DecodeLine(const std::string& line, EepromImage& image) {
  std::istringstream fields(line);
  char kind = 0;
  int number = -1;
  int value = -1;
  if (!(fields >> kind >> number >> value) || value < 0 || value > 0xFFFF) return false;
  const auto word = static_cast<std::uint16_t>(value);
  if (kind == 'P' && IsParameter(number)) {
    image.Stored.Values[static_cast<std::size_t>(number)] = word;
    return true;
  }
  if (kind == 'E' && number >= 0 && number < static_cast<int>(ErrorLog::Length)) {
    image.Log[static_cast<std::size_t>(number)] = word;
    return true;
  }
  return false;
}

}  // namespace

EepromImage FactoryImage() { return {FactoryValues(), {}}; }

std::string EncodeImage(const EepromImage& image) {
  std::ostringstream text;
  text << Title << '\n';
  for (const FactoryValue& parameter : FactoryParameters()) {
    text << "P " << static_cast<int>(parameter.Register) << ' ' << image.Stored[parameter.Register]
         << '\n';
  }
  for (std::size_t entry = 0; entry < image.Log.size(); ++entry) {
    text << "E " << entry << ' ' << image.Log[entry] << '\n';
  }
  const std::string body = text.str();
  return body + "S " + std::to_string(Checksum(body)) + '\n';
}

std::optional<EepromImage> DecodeImage(std::string_view text) {
  const std::size_t sum = text.rfind("\nS ");
  if (sum == std::string_view::npos) return std::nullopt;
  const std::string_view body = text.substr(0, sum + 1);
  if (text.substr(sum + 1) != "S " + std::to_string(Checksum(body)) + '\n') return std::nullopt;

  std::istringstream lines{std::string(body)};
  std::string line;
  if (!std::getline(lines, line) || line != Title) return std::nullopt;
  EepromImage image = FactoryImage();
  while (std::getline(lines, line)) {
    if (!DecodeLine(line, image)) return std::nullopt;
  }
  return image;
}

EepromFile::Found EepromFile::Load(EepromImage& image) const {
  image = FactoryImage();
  std::error_code ignored;
  if (path_.empty() || !Problem().empty()) return Found::Missing;
  fs::remove(path_ + ".new", ignored);
  if (!fs::exists(path_, ignored)) return Found::Missing;
  const std::optional<EepromImage> decoded = DecodeImage(ReadText(path_));
  if (!decoded) {
    SetAside(path_);
    return Found::Corrupt;
  }
  image = *decoded;
  return Found::Image;
}

std::string EepromFile::Problem() const {
  return IsFileOrNothing(path_) ? std::string() : path_ + " is not a file to keep the EEPROM in";
}

bool EepromFile::Save(const EepromImage& image) const {
  if (path_.empty()) return true;
  if (!Problem().empty()) return false;
  const std::string newPath = path_ + ".new";
  std::ofstream file(newPath, std::ios::binary | std::ios::trunc);
  file << EncodeImage(image);
  file.close();
  if (!file.fail() && std::rename(newPath.c_str(), path_.c_str()) == 0) return true;
  std::remove(newPath.c_str());
  return false;
}

void EepromFile::SaveHalf(const EepromImage& image) const {
  if (path_.empty() || !Problem().empty()) return;
  const std::string text = EncodeImage(image);
  std::ofstream(path_, std::ios::binary | std::ios::trunc) << text.substr(0, text.size() / 2);
}

}  // namespace gainsmith::sim
