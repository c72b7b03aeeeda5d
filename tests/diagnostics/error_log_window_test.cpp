// The error log: what its lamps say, how they blink, and how erases and closings cross a pass.
#include "diagnostics/error_log_window.h"

#include "simulator/wire/modbus_frame.h"
#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

using Indices = std::vector<std::size_t>;

// The window over a log whose words the test sets; an erase takes the newest entry or all.
struct ErrorLogBench {
  std::array<std::uint16_t, 10> Words{};
  bool Silent = false;
  ScriptedDevice Device{[this](int, const auto& frame) { return Answer(frame); }};
  VirtualWorld World;
  Link TheLink{World};
  ShellState Shell;
  Form4 Window{World, TheLink, Shell};
  Button& EraseAll = Window.Command1[Form4::EraseAllErrors];
  VirtualUser User{World};

  ErrorLogBench() {
    World.Devices[1] = &Device;
    World.OpenPort(1, TheLink.SerialSettings);
  }

  std::vector<ScriptedDevice::Reply> Answer(const std::vector<std::uint8_t>& frame) {
    if (Silent) return {};
    const sim::Request request{frame[0], frame[1], frame[3], frame[5]};
    if (request.Function == sim::ReadFunction) return {{5000, sim::ReadReply(request, Words)}};
    if (request.Value == 1) Words.fill(0);
    std::shift_left(Words.begin(), Words.end(), 1);
    Words.back() = 0;
    return {{5000, sim::WriteReply(request)}};
  }

  void Open() {
    Shell.ChildWindowOpen = true;
    World.ShowModal(Window);
  }
  // Lamps that are dark now, and those of a colour.
  Indices Dark() const { return Lamps(&Lamp::Visible, false); }
  Indices Red() const {
    EXPECT_EQ(Lamps(&Lamp::Marked, true), Lamps(&Lamp::BackColor, Colour{255}));
    EXPECT_EQ(Lamps(&Lamp::State, std::string("error")), Lamps(&Lamp::BackColor, Colour{255}));
    return Lamps(&Lamp::BackColor, Colour{255});
  }
  std::size_t Unread() const { return Lamps(&Lamp::BackColor, DefaultColour).size(); }
  template <typename Member, typename Value>
  Indices Lamps(Member member, Value value) const {
    Indices indices;
    for (std::size_t i = 0; i < Window.Shape1.size(); ++i) {
      if (Window.Shape1[i].*member == value) indices.push_back(i);
    }
    return indices;
  }
};

TEST(ErrorLog, ShowsTheTenKindsOfEachEntryAndNothingOfTheUpperBits) {
  ErrorLogBench bench;
  bench.Words = {0x0001, 0x0200, 0x0400, 0xFC03, 0, 0, 0, 0, 0, 0x0080};
  bench.Open();
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 16x10"}));
  EXPECT_EQ(bench.Red(), (Indices{0, 16 + 9, 3 * 16, 3 * 16 + 1, 9 * 16 + 7}));
  EXPECT_EQ(bench.Window.Shape1[1].BackColor, 65280U);
  EXPECT_EQ(bench.Unread(), 60U) << "those without a meaning";
  EXPECT_TRUE(bench.Window.BlinkRunning());
}

TEST(ErrorLog, BlinksTheRedLampsOfTheNewestEntryOneAfterTheOther) {
  ErrorLogBench bench;
  bench.Words = {0x0205, 0x0002};
  bench.Open();
  std::vector<Indices> seen;
  for (int i = 0; i < 6; ++i) {
    bench.World.At(300 + 201 * i, [&] { seen.push_back(bench.Dark()); });
  }
  bench.World.RunFor(1400);
  // The first pass begins 200 ms after loading, the second 200 ms after the end of the first.
  EXPECT_EQ(seen, (std::vector<Indices>{{0}, {2}, {9}, {}, {0}, {2}}));
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"R 16x10"}));
}

TEST(ErrorLog, AClosingDuringAPassWaitsForTheLampUnderWay) {
  // When the user closes after opening, when again, and when the window goes.
  const struct {
    std::uint16_t Newest;
    std::int64_t CloseMs, AgainMs, StillOpenMs, GoneMs;
  } cases[] = {
      {0x0003, 50, 2000, 395, 410},   // before the first pass: it closes after its first lamp
      {0x0003, 450, 500, 595, 610},   // in the dark of the second
      {0x0003, 50, 70, 69, 71},       // a second wish while no pass is under way
      {0x0400, 250, 2000, 249, 251},  // nothing blinks
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.Newest) + " after " + std::to_string(c.CloseMs));
    ErrorLogBench bench;
    bench.Words = {c.Newest, 0x0002};
    bench.Open();
    bench.World.At(c.CloseMs, [&] { bench.User.Close(bench.Window); });
    bench.World.At(c.AgainMs, [&] { bench.User.Close(bench.Window); });
    bench.World.At(c.StillOpenMs,
                   [&] { EXPECT_TRUE(bench.Window.Loaded && bench.Shell.ChildWindowOpen); });
    bench.World.RunFor(c.GoneMs);
    EXPECT_FALSE(bench.Window.Loaded || bench.Shell.ChildWindowOpen);
    EXPECT_FALSE(bench.Window.Timer1.Enabled());

    bench.Open();
    bench.World.RunFor(700);
    EXPECT_TRUE(bench.Window.Loaded) << "the wish is forgotten";
  }
}

TEST(ErrorLog, AnEraseShowsWhatIsLeft) {
  ErrorLogBench bench;
  Button& erase = bench.Window.Command1[Form4::EraseCurrentError];
  bench.Words = {0, 0x0020};
  bench.Open();
  bench.World.RunFor(300);
  bench.World.TakeFrames();
  // In the write and in the read behind it.
  for (const int delayMs : {30, 150}) {
    bench.World.At(delayMs, [&] {
      EXPECT_FALSE(bench.User.TryClick(erase) || bench.User.TryClick(bench.EraseAll));
      EXPECT_EQ(bench.Window.Pointer, MousePointer::Hourglass);
    });
  }
  const std::int64_t start = bench.World.NowMs();
  bench.User.Click(erase);
  EXPECT_EQ(bench.World.Log.Texts(), (Texts{"W 16=0", "R 16x10"}));
  EXPECT_EQ(bench.Red(), Indices{5});
  // Sending, the wait for each reply and the wait behind its bytes, with no closing waits.
  EXPECT_EQ(bench.World.NowMs() - start, 16 + 53 + 51 + 16 + 57 + 51);
  EXPECT_TRUE(bench.User.CanReach(erase));
  EXPECT_EQ(bench.Window.Pointer, MousePointer::Default);
}

TEST(ErrorLog, AnEraseInTheMiddleOfAPassTakesEffectInThatPass) {
  ErrorLogBench bench;
  bench.Words = {0x0003};
  bench.Open();
  bench.World.At(250, [&] { bench.User.Click(bench.EraseAll); });
  bench.World.RunFor(900);
  EXPECT_EQ(bench.Red(), Indices{});
  EXPECT_EQ(bench.Dark(), Indices{});
  EXPECT_FALSE(bench.Window.BlinkRunning());
}

TEST(ErrorLog, AFailureLeavesTheLampsAsTheyWereRead) {
  const struct {
    const char* What;
    std::int64_t SilentMs;  // from the opening on
    std::size_t Frames;
    Indices Red;
    std::size_t Unread;
  } cases[] = {
      {"at the opening", 0, 5, {}, 160},
      {"behind the erase", 1090, 2 + 5, {0, 16 + 3}, 60},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.What);
    ErrorLogBench bench;
    bench.Words = {0x0001, 0x0008};
    bench.World.At(c.SilentMs, [&] { bench.Silent = true; });
    if (c.SilentMs > 0) bench.World.At(1030, [&] { bench.User.Click(bench.EraseAll); });
    bench.Open();
    bench.World.RunFor(10'000);
    EXPECT_EQ(bench.World.Log.Frames().size(), c.Frames);
    EXPECT_TRUE(bench.Window.Loaded && !bench.Window.Timer1.Enabled());
    EXPECT_EQ(bench.Red(), c.Red);
    EXPECT_EQ(bench.Unread(), c.Unread);
  }
}

TEST(ErrorLog, AClosingDuringAnEraseBetweenPassesReadsNoMore) {
  ErrorLogBench bench;
  bench.Open();
  bench.World.RunFor(300);
  bench.World.At(30, [&] { bench.User.Close(bench.Window); });
  bench.User.Click(bench.EraseAll);
  EXPECT_EQ(bench.World.Log.Texts().back(), "W 16=1");
  EXPECT_FALSE(bench.Window.Loaded || bench.Window.Timer1.Enabled());
  bench.Open();
  EXPECT_TRUE(bench.User.CanReach(bench.EraseAll));
}

}  // namespace
}  // namespace gainsmith::test
