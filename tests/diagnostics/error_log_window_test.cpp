// The error log: what its lamps say, how they blink, and how erases and closings cross a pass.
#include "diagnostics/error_log_window.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/modbus_frame.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

using Texts = std::vector<std::string>;

// The window over a log whose words the test sets; an erase takes the newest entry or all.
struct ErrorLogBench {
  std::array<std::uint16_t, 10> Words{};
  bool Silent = false;
  ScriptedDevice Device{[this](int, const std::vector<std::uint8_t>& frame) {
    return Silent ? std::vector<ScriptedDevice::Reply>{}
                  : std::vector<ScriptedDevice::Reply>{{5000, Answer(frame)}};
  }};
  VirtualWorld World;
  Link TheLink{World};
  ShellState Shell;
  Form4 Window{World, TheLink, Shell};
  VirtualUser User{World};

  ErrorLogBench() {
    World.Devices[1] = &Device;
    World.OpenPort(1, TheLink.SerialSettings);
  }

  std::vector<std::uint8_t> Answer(const std::vector<std::uint8_t>& frame) {
    const sim::Request request{frame[0], frame[1], frame[3], frame[5]};
    if (request.Function == sim::ReadFunction) return sim::ReadReply(request, Words);
    if (request.Value == 1) Words.fill(0);
    std::shift_left(Words.begin(), Words.end(), 1);
    Words.back() = 0;
    return sim::WriteReply(request);
  }

  void Open() {
    Shell.ChildWindowOpen = true;
    World.ShowModal(Window);
  }
  Colour Lamp(int entry, int bit) const {
    return Window.Shape1[static_cast<std::size_t>(16 * entry + bit)].BackColor;
  }
  // Bits of entry 0 whose lamps are dark now.
  std::vector<int> Dark() const {
    std::vector<int> bits;
    for (int bit = 0; bit < 16; ++bit) {
      if (!Window.Shape1[static_cast<std::size_t>(bit)].Visible) bits.push_back(bit);
    }
    return bits;
  }
};

TEST(ErrorLog, ShowsTheTenKindsOfEachEntryAndNothingOfTheUpperBits) {
  ErrorLogBench bench;
  bench.Words = {0x0001, 0x0200, 0x0400, 0xFFFF, 0x0155, 0, 0, 0, 0, 0x0080};
  bench.Open();

  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 16x10"}));
  EXPECT_EQ(bench.TheLink.ExpectedReplyLength, 25);
  for (int entry = 0; entry < 10; ++entry) {
    const unsigned word = bench.Words[static_cast<std::size_t>(entry)];
    for (int bit = 0; bit < 16; ++bit) {
      const bool red = bit < 10 && (word >> bit & 1U) != 0;
      EXPECT_EQ(bench.Lamp(entry, bit), red ? 255U : 65280U) << entry << ", " << bit;
    }
  }
  EXPECT_TRUE(bench.Window.BlinkRunning);
  EXPECT_TRUE(bench.Window.Timer1.Enabled());
}

TEST(ErrorLog, BlinksTheRedLampsOfTheNewestEntryOneAfterTheOther) {
  ErrorLogBench bench;
  bench.Words = {0x0205, 0x0002};
  bench.Open();
  std::vector<std::vector<int>> seen;
  for (int i = 0; i < 6; ++i) {
    bench.World.At(300 + 201 * i, [&] { seen.push_back(bench.Dark()); });
  }
  bench.World.RunFor(1400);
  // The first pass begins 200 ms after loading, the second 200 ms after the end of the first.
  EXPECT_EQ(seen, (std::vector<std::vector<int>>{{0}, {2}, {9}, {}, {0}, {2}}));
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 16x10"}));
}

TEST(ErrorLog, NothingBlinksWithoutAnErrorInTheNewestEntry) {
  ErrorLogBench bench;
  bench.Words = {0x0400, 0x0002};
  bench.Open();
  bench.World.RunFor(250);
  EXPECT_TRUE(bench.Dark().empty());
  bench.User.Close(bench.Window);
  EXPECT_FALSE(bench.Window.Loaded || bench.Shell.ChildWindowOpen);
}

TEST(ErrorLog, AClosingDuringAPassWaitsForTheLampUnderWay) {
  // When the user closes after opening, when again, and when the window goes.
  const struct {
    std::int64_t CloseMs;
    std::int64_t AgainMs;
    std::int64_t StillOpenMs;
    std::int64_t GoneMs;
  } cases[] = {
      {50, 900, 395, 410},   // before the first pass: it closes after its first lamp
      {250, 300, 395, 410},  // in the dark of the first lamp
      {450, 500, 595, 610},  // in the dark of the second
      {50, 70, 69, 71},      // a second wish while no pass is under way
  };
  for (const auto& c : cases) {
    ErrorLogBench bench;
    bench.Words = {0x0003};
    bench.Open();
    bench.World.At(c.CloseMs, [&] { bench.User.Close(bench.Window); });
    bench.World.At(c.AgainMs, [&] { bench.User.Close(bench.Window); });
    bench.World.At(c.StillOpenMs, [&] {
      EXPECT_TRUE(bench.Window.Loaded) << c.CloseMs;
      EXPECT_TRUE(bench.Shell.ChildWindowOpen) << c.CloseMs;
    });
    bench.World.RunFor(c.GoneMs);
    EXPECT_FALSE(bench.Window.Loaded) << c.CloseMs;
    EXPECT_FALSE(bench.Shell.ChildWindowOpen) << c.CloseMs;
    EXPECT_TRUE(bench.Dark().empty()) << c.CloseMs;
    EXPECT_FALSE(bench.Window.Timer1.Enabled()) << c.CloseMs;
  }
}

TEST(ErrorLog, AnEraseShowsWhatIsLeft) {
  const struct {
    Form4::CommandIndex Command;
    const char* Frame;
    Colour Newest;
  } cases[] = {{Form4::EraseCurrentError, "W 16=0", 255}, {Form4::EraseAllErrors, "W 16=1", 65280}};
  for (const auto& c : cases) {
    ErrorLogBench bench;
    bench.Words = {0, 0x0020};
    bench.Open();
    bench.World.RunFor(300);
    bench.World.Log.Clear();
    bench.World.At(30, [&] {
      EXPECT_FALSE(bench.User.TryClick(bench.Window.Command1[Form4::EraseCurrentError]));
      EXPECT_EQ(bench.Window.Pointer, MousePointer::Hourglass);
    });
    const std::int64_t start = bench.World.NowMs();
    bench.User.Click(bench.Window.Command1[c.Command]);
    EXPECT_EQ(bench.World.Log.Texts(), (Texts{c.Frame, "R 16x10"}));
    EXPECT_EQ(bench.Lamp(0, 5), c.Newest);
    EXPECT_EQ(bench.Lamp(1, 5), 65280U);
    // Sending, the wait for each reply and the wait behind its bytes, with no closing waits.
    EXPECT_EQ(bench.World.NowMs() - start, 16 + 53 + 51 + 16 + 57 + 51);
    EXPECT_TRUE(bench.User.CanReach(bench.Window.Command1[c.Command]));
    EXPECT_EQ(bench.Window.Pointer, MousePointer::Default);
  }
}

TEST(ErrorLog, AnEraseInTheMiddleOfAPassTakesEffectInThatPass) {
  ErrorLogBench bench;
  bench.Words = {0x0003};
  bench.Open();
  bench.World.At(250, [&] { bench.User.Click(bench.Window.Command1[Form4::EraseAllErrors]); });
  bench.World.RunFor(900);
  EXPECT_EQ(bench.Lamp(0, 1), 65280U);
  EXPECT_TRUE(bench.Dark().empty());
  EXPECT_FALSE(bench.Window.BlinkRunning);
  EXPECT_TRUE(bench.World.Messages.empty());
}

TEST(ErrorLog, AFailedEraseClosesTheWindowAfterOneMessage) {
  // Before the first pass, inside a pass, and with nothing to blink.
  const struct {
    std::uint16_t Newest;
    std::int64_t ClickMs;
  } cases[] = {{0x0003, 10}, {0x0003, 250}, {0, 900}};
  for (const auto& c : cases) {
    ErrorLogBench bench;
    bench.Words = {c.Newest};
    bench.Open();
    bench.World.Log.Clear();
    bench.World.At(c.ClickMs, [&] {
      bench.Silent = true;
      bench.User.Click(bench.Window.Command1[Form4::EraseAllErrors]);
    });
    bench.World.RunFor(10000);
    EXPECT_EQ(bench.World.Log.Texts(), Texts(5, "W 16=1")) << c.ClickMs;
    EXPECT_EQ(bench.World.Messages.size(), 1U) << c.ClickMs;
    EXPECT_FALSE(bench.Window.Loaded) << c.ClickMs;
    EXPECT_FALSE(bench.Shell.ChildWindowOpen) << c.ClickMs;
    EXPECT_TRUE(bench.Window.Command1[Form4::EraseAllErrors].Enabled);
  }
}

TEST(ErrorLog, ADriveThatFallsSilentAtAnyExchangeLeavesTheWindowUsable) {
  const Texts frames[] = {Texts(5, "R 16x10"),
                          Texts(5, "W 16=0"),
                          {"W 16=0", "R 16x10", "R 16x10", "R 16x10", "R 16x10", "R 16x10"}};
  for (std::size_t exchange = 0; exchange < 3; ++exchange) {
    SCOPED_TRACE(exchange);
    ErrorLogBench bench;
    bench.Words = {0, 0x0008};
    bench.Silent = exchange == 0;
    bench.Open();
    bench.World.RunFor(300);
    if (exchange > 0) {
      bench.World.Log.Clear();
      bench.World.At(exchange == 1 ? 1 : 60, [&] { bench.Silent = true; });
      bench.User.Click(bench.Window.Command1[Form4::EraseCurrentError]);
    }
    EXPECT_EQ(bench.World.Log.Texts(), frames[exchange]);
    ASSERT_EQ(bench.World.Messages.size(), 1U);
    EXPECT_EQ(bench.World.Messages[0].Title, "Cmmunication Error");
    EXPECT_EQ(bench.Window.Loaded, exchange != 1);
    // After a failed reading the board is as it was.
    EXPECT_EQ(bench.Lamp(1, 3), exchange == 2 ? 255U : 65280U);
    if (bench.Window.Loaded) bench.User.Close(bench.Window);
    bench.Silent = false;
    bench.Open();
    EXPECT_TRUE(bench.Window.Visible && bench.Window.Timer1.Enabled());
  }
}

TEST(ErrorLog, AClosingDuringAnEraseBetweenPassesReadsNoMore) {
  ErrorLogBench bench;
  bench.Open();
  bench.World.RunFor(300);
  bench.World.At(30, [&] { bench.User.Close(bench.Window); });
  bench.User.Click(bench.Window.Command1[Form4::EraseAllErrors]);
  EXPECT_EQ(bench.World.Log.Texts().back(), "W 16=1");
  EXPECT_FALSE(bench.Window.Loaded || bench.Window.Timer1.Enabled());
}

}  // namespace
}  // namespace gainsmith::test
