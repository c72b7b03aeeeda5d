// The command line of gainsmithctl.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "console/exit_status.h"

namespace gainsmith {

// What the user typed. Values for the tool's windows stay the texts that they are: the windows
// check them.
struct Options {
  std::string Verb;

  // "COM1" to "COM12", or the path of a device.
  std::string Port = "COM1";
  std::string Baud = "38400";
  std::string Device = "1";
  bool Json = false;
  bool Quiet = false;
  bool Yes = false;
  // Each frame sent goes there, one a line; empty: none does.
  std::string FrameLog;

  // Of single verbs.
  bool Scan = false;
  std::vector<int> ScanNumbers;
  std::string File;
  std::string OtherFile;
  bool Store = false;
  bool DryRun = false;
  // "current" or "all"; empty: nothing is erased.
  std::string Erase;
  std::string Csv;
  std::string Amperes;
  // Recordings after which watch ends; 0: it goes on until it is interrupted.
  int Count = 0;
  // Fields that were given, by their option's name without dashes ("kp", "velocity", "trace-ms").
  std::map<std::string, std::string> Fields;

  [[nodiscard]] const std::string* Field(const std::string& name) const {
    const auto field = Fields.find(name);
    return field == Fields.end() ? nullptr : &field->second;
  }
};

// Takes the command line apart. Nothing where the program ends with it (help, version, a fault in
// it, all of which have been printed then); `status` says how.
std::optional<Options> ParseCommandLine(int count, char** words, ExitStatus& status);

}  // namespace gainsmith
