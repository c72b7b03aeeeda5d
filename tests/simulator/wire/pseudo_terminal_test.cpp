// The pseudo-terminal: its link, its bytes, and hosts that come and go.
#include "simulator/wire/pseudo_terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <filesystem>
#include <numeric>

namespace gainsmith::sim {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

class PseudoTerminalTest : public testing::Test {
 protected:
  PseudoTerminalTest() {
    std::string pattern = testing::TempDir() + "kvt518_terminal_XXXXXX";
    directory_ = mkdtemp(pattern.data());
    link_ = directory_ / "COM1";
  }
  ~PseudoTerminalTest() override { fs::remove_all(directory_); }

  int OpenHost() const { return open(link_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK); }

  // Waits for bytes on a handle, a second at most.
  static bool HasBytes(int handle) {
    pollfd entry{handle, POLLIN, 0};
    return poll(&entry, 1, 1000) == 1 && (entry.revents & POLLIN) != 0;
  }

  fs::path directory_;
  fs::path link_;
};

TEST_F(PseudoTerminalTest, CarriesEveryByteUnchangedBothWaysUntilItCloses) {
  PseudoTerminal terminal;
  ASSERT_TRUE(terminal.Open(link_.string())) << terminal.Problem();
  EXPECT_FALSE(terminal.HasHost());
  int host = OpenHost();
  ASSERT_GE(host, 0);
  EXPECT_TRUE(terminal.HasHost());
  EXPECT_EQ(terminal.HostBaud(), 38400);

  Bytes all(256);
  std::iota(all.begin(), all.end(), std::uint8_t{0});
  ASSERT_EQ(write(host, all.data(), all.size()), 256);
  ASSERT_TRUE(HasBytes(terminal.Handle()));
  EXPECT_EQ(terminal.ReadSome(), all);
  terminal.Write(all);
  ASSERT_TRUE(HasBytes(host));
  Bytes received(300);
  ASSERT_EQ(read(host, received.data(), received.size()), 256);
  received.resize(256);
  EXPECT_EQ(received, all);

  close(host);
  EXPECT_FALSE(terminal.HasHost());
  host = OpenHost();
  EXPECT_TRUE(terminal.HasHost()) << "the next host";
  terminal.Close();
  EXPECT_FALSE(fs::exists(fs::symlink_status(link_)));
  close(host);
}

TEST_F(PseudoTerminalTest, ReplacesALinkLeftBehindAndNothingElse) {
  PseudoTerminal terminal;
  fs::create_symlink("/dev/serial/by-id/adapter", link_);
  EXPECT_FALSE(terminal.Open(link_.string()));
  EXPECT_NE(terminal.Problem().find("COM1"), std::string::npos);
  EXPECT_EQ(fs::read_symlink(link_), "/dev/serial/by-id/adapter");
  fs::remove(link_);

  fs::create_symlink("/dev/pts/999999", link_);
  EXPECT_TRUE(terminal.Open(link_.string())) << terminal.Problem();
}

TEST_F(PseudoTerminalTest, ServesItsLinkAloneAlsoWhileItsDeviceIsAway) {
  PseudoTerminal another;
  {
    PseudoTerminal terminal;
    ASSERT_TRUE(terminal.Open(link_.string()));
    for (const bool away : {false, true}) {
      if (away) terminal.Close();
      EXPECT_FALSE(another.Open((directory_ / "." / "COM1").string()));
      EXPECT_NE(another.Problem().find("another simulated drive"), std::string::npos);
    }
    EXPECT_TRUE(another.Open((directory_ / "COM2").string()));
    ASSERT_TRUE(terminal.Open(link_.string())) << terminal.Problem();
    EXPECT_EQ(fs::read_symlink(link_).string(), terminal.DevicePath());
  }
  EXPECT_TRUE(another.Open(link_.string())) << another.Problem();
}

}  // namespace
}  // namespace gainsmith::sim
