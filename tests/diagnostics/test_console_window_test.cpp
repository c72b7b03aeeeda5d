// The test console: its toggle, its tick, its formula and its file.
#include "diagnostics/test_console_window.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "simulator/modbus_frame.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

using Texts = std::vector<std::string>;

struct ConsoleBench {
  // The two registers of every location.
  std::vector<std::uint16_t> Words{0, 0};
  int SilentRegister = -1;
  ScriptedDevice Device{[this](int, const std::vector<std::uint8_t>& frame) {
    std::vector<ScriptedDevice::Reply> replies;
    if (frame[3] != SilentRegister) {
      replies.push_back({5000, sim::ReadReply({frame[0], frame[1], frame[3], 2}, Words)});
    }
    return replies;
  }};
  VirtualWorld World;
  Link TheLink{World};
  Form110 Window{World, TheLink};
  VirtualUser User{World};

  ConsoleBench() {
    World.Devices[1] = &Device;
    World.OpenPort(1, TheLink.SerialSettings);
    World.Show(Window);
  }
  Texts Shown() const {
    Texts texts;
    for (const TextBox& field : Window.Text1) texts.push_back(field.Text);
    return texts;
  }
};

const Texts Tick{"R 102x2", "R 153x2", "R 170x2", "R 187x2", "R 204x2"};

TEST(TestConsole, TheSecondClickStartsAndTheThirdStops) {
  ConsoleBench bench;
  EXPECT_EQ(bench.Shown(), (Texts{"ox66", "0x99", "0xaa", "0xbb", "0xcc"}));
  const struct {
    const char* Caption;
    std::size_t Frames;
  } clicks[] = {{"Ok?", 0}, {"Abort?", 5}, {"Ok?", 5}, {"Abort?", 10}};
  EXPECT_EQ(bench.Window.Command1.Caption, "OK?");
  for (const auto& click : clicks) {
    bench.User.Click(bench.Window.Command1);
    EXPECT_EQ(bench.Window.Command1.Caption, click.Caption);
    bench.World.RunFor(1190);
    const std::size_t before = bench.World.Log.Frames().size();
    bench.World.RunFor(1000);
    EXPECT_EQ(bench.World.Log.Frames().size(), click.Frames) << before;
  }
}

TEST(TestConsole, ATickReadsTheFiveLocationsInOrderByTheFormula) {
  const struct {
    std::uint16_t First;
    std::uint16_t Second;
    const char* Text;
  } cases[] = {{0, 0, "0"},
               {0x0001, 0, "65536"},
               {0x0100, 0, "256"},
               {0, 0x0100, "256"},
               {0, 0x0001, "1"},
               {0x1234, 0x5678, "3434616"},
               {0xFFFF, 0xFFFF, "16842495"}};
  for (const auto& c : cases) {
    ConsoleBench bench;
    bench.Words = {c.First, c.Second};
    bench.Window.Timer1_Timer();
    EXPECT_EQ(bench.World.Log.Texts(), Tick);
    EXPECT_EQ(bench.Shown(), Texts(5, c.Text));
  }
}

TEST(TestConsole, AFailedReadEndsTheTickAndTheNextBeginsAnew) {
  ConsoleBench bench;
  bench.Words = {0, 7};
  bench.SilentRegister = 170;
  bench.User.Click(bench.Window.Command1);
  bench.User.Click(bench.Window.Command1);
  ASSERT_TRUE(bench.World.RunUntil([&] { return !bench.World.Messages.empty(); }, 20000));
  EXPECT_EQ(bench.World.Log.Texts(),
            (Texts{"R 102x2", "R 153x2", "R 170x2", "R 170x2", "R 170x2", "R 170x2", "R 170x2"}));
  EXPECT_EQ(bench.World.Messages[0].Text, "通讯故障！");
  EXPECT_EQ(bench.World.Messages[0].Title, "通讯故障！");
  EXPECT_EQ(bench.Shown(), (Texts{"7", "7", "0xaa", "0xbb", "0xcc"}));
  EXPECT_TRUE(bench.Window.Timer1.Enabled());

  bench.SilentRegister = -1;
  bench.World.Log.Clear();
  bench.World.RunFor(2000);
  EXPECT_EQ(bench.World.Log.Texts(), Tick);
}

TEST(TestConsole, ClosingDuringATickEndsItWithoutAMessage) {
  for (const int silent : {-1, 153}) {
    ConsoleBench bench;
    bench.SilentRegister = silent;
    bench.World.At(150, [&] { bench.User.Close(bench.Window); });
    bench.Window.Timer1_Timer();
    EXPECT_EQ(bench.World.Log.Writes(153).size(), 0U);
    EXPECT_EQ(bench.World.Log.Frames().back().Register(), 153);
    EXPECT_TRUE(bench.World.Messages.empty());
    bench.World.Log.Clear();
    bench.World.RunFor(5000);
    EXPECT_TRUE(bench.World.Log.Frames().empty());
  }
}

std::string Numbers(std::size_t count, const char* separator) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += std::to_string(i % 256) + separator;
  return text;
}

TEST(TestConsole, TheFileGivesAllButItsLastTwoNumbersIntoAnArrayOfZeros) {
  for (const char* separator : {"\n", "\r\n", " ", ", ", ",\t"}) {
    const auto bytes = Form110::ReadAccNumbers(Numbers(1301, separator));
    ASSERT_TRUE(bytes);
    for (std::size_t i = 0; i < 1301; ++i) {
      ASSERT_EQ((*bytes)[i], i < 1299 ? i % 256 : 0) << i;
    }
  }
  EXPECT_EQ((*Form110::ReadAccNumbers("9 8 7"))[0], 9);
  EXPECT_EQ((*Form110::ReadAccNumbers("9 8 7"))[1], 0);
  EXPECT_EQ(*Form110::ReadAccNumbers("9"), Form110::AccArray{});
}

TEST(TestConsole, TheChecksumRunsOverAllTheBytesOfTheArray) {
  ConsoleBench bench;
  bench.World.Files["/program/ACCTxt"] = "1 2 3 4 5";
  bench.User.Click(bench.Window.Command2);
  std::vector<std::uint8_t> bytes(1301, 0);
  bytes[0] = 1;
  bytes[1] = 2;
  bytes[2] = 3;
  const std::uint16_t crc = sim::Crc16(bytes);
  ASSERT_TRUE(bench.Window.AccChecksum);
  EXPECT_EQ(bench.Window.AccChecksum->High * 256 + bench.Window.AccChecksum->Low, crc);
}

TEST(TestConsole, AFileThatIsNoListOfBytesDoesNothing) {
  const std::string files[] = {
      "",      " \r\n",    Numbers(1302, "\n"), "1 2 x", "1 2 256", "1 -2 3", "1.5 2",
      "1;2;3", "\xEF\xBB", std::string(3, '\0')};
  for (const std::string& file : files) {
    ConsoleBench bench;
    bench.World.Files["/program/ACCTxt"] = file;
    bench.User.Click(bench.Window.Command2);
    EXPECT_FALSE(bench.Window.AccChecksum) << file.substr(0, 20);
    EXPECT_TRUE(bench.World.Messages.empty());
    EXPECT_TRUE(bench.World.Log.Frames().empty());
  }
  ConsoleBench bench;
  bench.User.Click(bench.Window.Command2);
  EXPECT_FALSE(bench.Window.AccChecksum);
}

}  // namespace
}  // namespace gainsmith::test
