// What the drive keeps without power: the stored parameters and the error log, as a text file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "simulator/bank/error_log.h"
#include "simulator/bank/registers.h"

namespace gainsmith::sim {

// Of the registers only the parameters count.
struct EepromImage {
  RegisterBank Stored;
  ErrorLog::Entries Log{};
};

// The image of a new drive: factory values, no errors.
EepromImage FactoryImage();

// The image as text: a title line, "P register value" and "E entry bits" lines, and a last line
// with the checksum of all before it.
std::string EncodeImage(const EepromImage& image);

// Reads such a text. A parameter without a line keeps its factory value. Nothing when the checksum
// or any line is wrong.
std::optional<EepromImage> DecodeImage(std::string_view text);

// A file that holds the image. With an empty path nothing is read or written and all succeeds.
class EepromFile {
 public:
  enum class Found { Image, Missing, Corrupt };

  explicit EepromFile(std::string path) : path_(std::move(path)) {}

  // Reads the file. Unless it gives Image, the argument holds the image of a new drive.
  Found Load(EepromImage& image) const;
  // Replaces the file as a whole. False when it could not be written; the old file then stands.
  bool Save(const EepromImage& image) const;

 private:
  std::string path_;
};

}  // namespace gainsmith::sim
