// Scratch: a test with a directory of its own.
#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <limits>
#include <optional>
#include <string>

#include "host/files.h"

namespace gainsmith::test {

class Scratch : public testing::Test {
 protected:
  // All of a file; nothing when it can't be read.
  static std::optional<std::string> ReadAll(const std::string& path) {
    return ReadStartOfFile(path, std::numeric_limits<int>::max());
  }
  std::string Path(const std::string& name) { return directory.path().toStdString() + "/" + name; }

  QTemporaryDir directory;
};

}  // namespace gainsmith::test
