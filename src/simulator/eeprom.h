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

  // Why the path can't name such a file: something else stands there. Empty when it can.
  [[nodiscard]] std::string Problem() const;
  // Reads the file. Unless it gives Image, the argument holds the image of a new drive. A damaged
  // file is set aside, under the same name with ".damaged" and, from the second on, a number behind
  // it, and what an interrupted Save has left is removed.
  Found Load(EepromImage& image) const;
  // Replaces the file as a whole. False when it could not be written; the old file then stands.
  [[nodiscard]] bool Save(const EepromImage& image) const;
  // Leaves the file as a Save leaves it that writes in place and loses its power half way.
  void SaveHalf(const EepromImage& image) const;

 private:
  std::string path_;
};

}  // namespace gainsmith::sim
