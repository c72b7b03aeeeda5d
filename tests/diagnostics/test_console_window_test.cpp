// The test console: its toggle, its tick, its formula and its file.
#include "diagnostics/test_console_window.h"

#include "simulator/wire/modbus_frame.h"
#include "support/messages.h"
#include "support/virtual_user.h"

namespace gainsmith::test {
namespace {

struct ConsoleBench {
  // The two registers of every location.
  std::vector<std::uint16_t> Location{0, 0};
  int SilentRegister = -1;
  ScriptedDevice Device{[this](int, const auto& frame) -> std::vector<ScriptedDevice::Reply> {
    if (frame[3] == SilentRegister) return {};
    return {{5000, sim::ReadReply({frame[0], frame[1], frame[3], 2}, Location)}};
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
  void Watch() {
    for (int i = 0; i < 2; ++i) User.Click(Window.Command1);
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
  bench.Location = {0x1234, 0x5678};
  EXPECT_EQ(bench.Shown(), (Texts{"ox66", "0x99", "0xaa", "0xbb", "0xcc"}));
  EXPECT_EQ(bench.Window.Command1.Caption, "OK?");
  for (const auto& [caption, frames] : {std::pair{"Ok?", 0U}, {"Abort?", 5U}, {"Ok?", 5U}}) {
    bench.User.Click(bench.Window.Command1);
    EXPECT_EQ(bench.Window.Command1.Caption, caption);
    bench.World.RunFor(2190);
    EXPECT_EQ(bench.World.Log.Frames().size(), frames);
  }
  EXPECT_EQ(bench.World.Log.Texts(), Tick);
  EXPECT_EQ(bench.Shown(), Texts(5, "3434616"));
}

TEST(TestConsole, AFailedReadEndsTheTickAndTheNextBeginsAnew) {
  ConsoleBench bench;
  bench.Location = {0, 7};
  bench.SilentRegister = 170;
  bench.Watch();
  ASSERT_TRUE(bench.World.RunUntil([&] { return !bench.World.Messages.empty(); }, 20000));
  EXPECT_EQ(bench.World.Log.Texts(),
            (Texts{"R 102x2", "R 153x2", "R 170x2", "R 170x2", "R 170x2", "R 170x2", "R 170x2"}));
  EXPECT_EQ(TakeMessages(bench.World), (Messages{{"通讯故障！", "通讯故障！"}}));
  EXPECT_EQ(bench.Shown(), (Texts{"7", "7", "0xaa", "0xbb", "0xcc"}));

  bench.SilentRegister = -1;
  bench.World.Log.Clear();
  bench.World.RunFor(2000);
  EXPECT_EQ(bench.World.Log.Texts(), Tick);
}

TEST(TestConsole, ClosingTheWindowOrThePortDuringATickEndsTheWatchingWithoutAMessage) {
  for (const bool port : {false, true}) {
    for (const int silent : {-1, 153}) {
      ConsoleBench bench;
      bench.SilentRegister = silent;
      bench.Watch();
      bench.World.At(1200 + 150,
                     [&] { port ? bench.TheLink.ClosePort() : bench.User.Close(bench.Window); });
      bench.World.RunFor(5000);
      EXPECT_EQ(bench.World.Log.Frames().back().Register(), 153);
      EXPECT_TRUE(bench.World.Messages.empty());
      EXPECT_FALSE(bench.Window.Timer1.Enabled());
      EXPECT_EQ(bench.Window.Command1.Caption, port ? "Ok?" : "Abort?");
    }
  }
}

std::string Numbers(std::size_t count, const char* separator) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += std::to_string(i % 256) + separator;
  return text;
}

TEST(TestConsole, TheChecksumRunsOverAllButTheLastTwoNumbersAndZerosBehindThem) {
  ConsoleBench bench;
  std::string& file = bench.World.Files["/program/ACCTxt"];
  for (const auto& [count, separator] : {std::pair{1301U, "\r\n"}, {5U, ",\t"}, {1U, " "}}) {
    file = Numbers(count, separator);
    bench.User.Click(bench.Window.Command2);
    std::vector<std::uint8_t> bytes(1301, 0);
    for (std::size_t i = 0; i + 2 < count; ++i) bytes[i] = static_cast<std::uint8_t>(i % 256);
    ASSERT_TRUE(bench.Window.AccChecksum) << count;
    const Crc16 crc = *bench.Window.AccChecksum;
    EXPECT_EQ(crc.High * 256 + crc.Low, sim::Crc16(bytes)) << count;
  }
  // A file that is no list of bytes gives none.
  for (const auto& bad : Texts{"", Numbers(1302, "\n"), "1 x", "1 256", "1 -2", "1.5"}) {
    file = bad;
    bench.User.Click(bench.Window.Command2);
    EXPECT_FALSE(bench.Window.AccChecksum) << bad.substr(0, 20);
  }
  bench.World.Files.clear();
  bench.User.Click(bench.Window.Command2);
  EXPECT_TRUE(bench.World.Messages.empty() && bench.World.Log.Frames().empty());
}

}  // namespace
}  // namespace gainsmith::test
