// The simulated drive on its line: replies, pacing, EEPROM, error log, determinism.
#include "simulator/simulated_drive.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "drive_host.h"

namespace gainsmith::sim {
namespace {

constexpr TimeUs BootUs = 200'000;

TEST(SimulatedDrive, AnswersAndRefusesAsAModbusSlaveDoes) {
  const struct {
    Request Asked;
    Bytes Expected;  // without the checksum
  } cases[] = {
      {{1, 3, 255, 1}, {1, 3, 2, 1, 0x84}}, {{1, 3, 28, 1}, {1, 3, 2, 0, 1}},
      {{1, 6, 2, 1}, {1, 6, 0, 2, 0, 1}},   {{1, 3, 0, 0}, {1, 0x83, 3}},
      {{1, 3, 855, 2}, {1, 0x83, 2}},       {{1, 6, 256, 1}, {1, 0x86, 2}},
      {{1, 6, 253, 1}, {1, 0x86, 2}},       {{1, 6, 16, 2}, {1, 0x86, 3}},
      {{1, 6, 12, 0}, {1, 0x86, 3}},        {{1, 4, 0, 1}, {1, 0x84, 1}},
  };
  EXPECT_EQ(RequestFrame({1, 3, 255, 1}), (Bytes{0x01, 0x03, 0x00, 0xFF, 0x00, 0x01, 0xB4, 0x3A}));
  DriveHost host;
  for (const auto& [asked, expected] : cases) {
    EXPECT_EQ(host.Ask(asked), Sealed(expected))
        << int{asked.Function} << ' ' << asked.Register << ' ' << asked.Value;
  }
  EXPECT_EQ(host.Ask({2, 3, 0, 1}), Bytes{}) << "to another drive";
  EXPECT_EQ(host.Ask({0, 6, 0, 1}), Bytes{}) << "to all drives";
  EXPECT_EQ(DriveHost{}.Read(731, 125), Words(125, 0)) << "the end of a memory never recorded to";
  EXPECT_EQ(DriveHost({.Address = 0}).Ask({0, 3, 252, 1}), Sealed({0, 3, 2, 0x01, 0x90}));
}

TEST(SimulatedDrive, FindsRequestsInEveryStream) {
  // Writes, whose echoes tell which requests were found.
  const Bytes first = RequestFrame({1, 6, 34, 7});
  const Bytes second = RequestFrame({1, 6, 4, 512});
  Bytes corrupt = first;
  corrupt[5] ^= 0x80;
  const Bytes cut(first.begin(), first.end() - 1);
  const struct {
    const char* Name;
    std::vector<Bytes> Stream;
    Bytes Expected;
    TimeUs ApartUs = 2'000;
  } cases[] = {
      {"bad checksum", {corrupt}, {}},
      {"good after bad", {corrupt, second}, second},
      {"noise before", {{0xFF, 0x01, 0x06, 0x00}, first}, first},
      {"lost last byte, sent again", {cut, second}, second},
      {"held up", {first}, first, FrameFeeder::DefaultGapUs},
      {"torn", {first}, {}, FrameFeeder::DefaultGapUs + 1},
  };
  for (const auto& test : cases) {
    DriveHost host;
    Bytes echoes;
    for (const Bytes& part : test.Stream) {
      host.Send(part, test.ApartUs);
      echoes = host.Listen();
    }
    EXPECT_EQ(echoes, test.Expected) << test.Name;
  }
}

TEST(SimulatedDrive, PacesElevenBitsACharacter) {
  const struct {
    DriveOptions Options;
    TimeUs ReplyUs;  // 1 request character, 1 ms, 105 reply characters
  } cases[] = {{{.Baud = 38400}, 287 + 1'000 + 30'079},
               {{.Baud = 19200}, 573 + 1'000 + 60'157},
               {{.Baud = 9600}, 1'146 + 1'000 + 120'313},
               {{.Paced = false}, 1'000}};
  for (const auto& [options, replyUs] : cases) {
    DriveHost host(options);
    EXPECT_EQ(host.Read(256, 50).size(), 50U);
    EXPECT_EQ(host.RepliedAt - host.SentAt, replyUs) << options.Baud;
  }

  // Each byte is there when it has left and not before.
  DriveHost host;
  host.Send(RequestFrame({1, 3, 0, 1}));
  const TimeUs first = host.SentAt + 287 + 1'000 + 287;
  ASSERT_EQ(host.Drive.NextTransmitAt(), first);
  EXPECT_TRUE(host.Drive.Transmit(first - 1).empty());
  EXPECT_EQ(host.Drive.Transmit(first).size(), 1U);
  EXPECT_EQ(host.Drive.Transmit(first + 600).size(), 2U);
}

// A pseudo-terminal hands over in a moment what a line carries in half a minute.
TEST(SimulatedDrive, AFloodIsLostAndLeavesItListening) {
  DriveHost host;
  host.Send(Bytes(100'000, 0x55), 0);
  EXPECT_EQ(host.Listen(), Bytes{});
  host.Pass(100'000 + FrameFeeder::DefaultGapUs);
  EXPECT_EQ(host.Read(34), Words{4});
}

TEST(SimulatedDrive, KeepsOnlyWhatWasStoredOverAReset) {
  DriveHost host;
  EXPECT_TRUE(host.Write(Reg::PolePairs, 2));
  EXPECT_TRUE(host.Write(Reg::StoreEeprom, 1));
  EXPECT_GE(host.RepliedAt - host.SentAt, 300'000);
  EXPECT_TRUE(host.Write(Reg::PolePairs, 7));
  EXPECT_TRUE(host.Write(Reg::TestCurrent, 512));
  EXPECT_TRUE(host.Write(Reg::CurrentStep, 1));
  EXPECT_NEAR(host.Read(455).at(0), 512, 50) << "the step's last sample";
  EXPECT_TRUE(host.Write(Reg::FilterSwitch, 1));
  EXPECT_TRUE(host.Drive.FilterOff());
  EXPECT_EQ(host.Read(254), Words{112});

  host.Drive.Reset(host.Now);
  EXPECT_FALSE(host.Drive.FilterOff());
  EXPECT_EQ(host.Read(34), Words{}) << "deaf while it boots";
  host.Pass(BootUs);
  EXPECT_EQ(host.Read(34), Words{2});
  EXPECT_EQ(host.Read(4), Words{0});
  EXPECT_EQ(host.Read(455), Words{0});
}

TEST(SimulatedDrive, ErrorLogStandsBesideTheRegistersOfItsNumbers) {
  DriveHost host;
  EXPECT_TRUE(host.Write(Reg::FollowingErrorLimit, 1234));
  for (const DriveError error :
       {DriveError::OverCurrent, DriveError::Eeprom, DriveError::FollowingError}) {
    host.Drive.RaiseError(error);
  }
  EXPECT_EQ(host.Read(16, 10), (Words{0x020, 0x200, 0x001, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(host.Read(18, 2), (Words{1234, 4000}));

  EXPECT_TRUE(host.Write(Reg::ErrorLog, 0));
  host.Drive.Reset(host.Now);
  host.Pass(BootUs);
  EXPECT_EQ(host.Read(16, 10), (Words{0x200, 0x001, 0, 0, 0, 0, 0, 0, 0, 0}));
  for (int i = 0; i < 10; ++i) host.Drive.RaiseError(DriveError::Limit);
  EXPECT_EQ(host.Read(16, 10), Words(10, 0x040)) << "the oldest fall out";
  EXPECT_TRUE(host.Write(Reg::ErrorLog, 1));
  EXPECT_EQ(host.Read(16, 10), Words(10, 0));
}

TEST(SimulatedDrive, WatchAddressesMoveWithTheMotorAndTheClock) {
  for (const std::uint16_t reg : Words{102, 153, 170, 187, 204}) {
    DriveHost host({.Motor = *FindMotorPreset("heavy-load")});
    const Words earlier = host.Read(reg, 2);
    EXPECT_EQ(earlier.size(), 2U);
    host.Drive.StartMotion(host.Now, {.FrequencyHz = 10, .AmplitudeRpm = 1000});
    host.Pass(20'000);
    EXPECT_NE(host.Read(reg, 2), earlier) << reg;
  }
}

TEST(SimulatedDrive, TellsOfCommandsFaultsAndErrors) {
  DriveHost host;
  host.Write(Reg::CurrentStep, 1);
  host.Write(Reg::ErrorLog, 2);
  host.Write(Reg::CurrentKp, 1000);
  host.Drive.Inject(Fault::BadCrc, Hits::Next(1));
  host.Read(0);
  host.Read(0);
  host.Drive.RaiseError(DriveError::Phase);
  host.Drive.PlugEncoder(false, host.Now);
  host.Send({1, 3, 0, 0, 0, 1, 0xFF, 0x00, 0xAA});
  EXPECT_EQ(host.Drive.TakeEvents(),
            (std::vector<std::string>{"write 2 = 1: current step", "write 16 = 2 refused",
                                      "write 0 = 1000", "fault bad-crc", "error phase",
                                      "bad request 01 03 00 00 00 01 FF 00"}));
  // The current step had taken the power off.
  for (const auto& [reg, value] :
       {std::pair{Reg::PositionCommand, 1}, {Reg::PositionCommand, 1}, {Reg::ErrorLog, 1}}) {
    host.Write(reg, static_cast<std::uint16_t>(value));
  }
  EXPECT_EQ(
      host.Drive.TakeEvents(),
      (std::vector<std::string>{
          "write 9 = 1: position command", "trip encoder-loss: no power until reset or erased",
          "error encoder", "write 9 = 1: position command",
          "motion refused after trip encoder-loss", "write 16 = 1: erase errors"}));
  EXPECT_TRUE(host.Drive.TakeEvents().empty());
}

TEST(SimulatedDrive, EepromFileCarriesParametersAndErrorsToTheNextRun) {
  const std::string path = testing::TempDir() + "kvt518_eeprom_test.txt";
  std::remove(path.c_str());
  {
    DriveHost host({.EepromPath = path});
    EXPECT_EQ(host.Drive.Errors().All()[0], 0) << "a new drive has no errors";
    host.Write(Reg::Resistance, 999);
    host.Write(Reg::StoreEeprom, 1);
    host.Write(Reg::Resistance, 1);
    host.Drive.RaiseError(DriveError::Limit);
  }
  DriveHost next({.EepromPath = path});
  EXPECT_EQ(next.Drive.Registers()[Reg::Resistance], 999);
  EXPECT_EQ(next.Drive.Errors().All()[0], 0x040);
  next.Write(Reg::ErrorLog, 1);
  EXPECT_EQ(SimulatedDrive({.EepromPath = path}).Errors().All()[0], 0) << "erased for good";

  // Taken whole or not at all; what is damaged is set aside, each under a name of its own.
  std::string digit = EncodeImage(FactoryImage());
  ASSERT_TRUE(DecodeImage(digit));
  const std::string half = digit.substr(0, digit.size() / 2);
  digit[digit.find("P 34 4") + 5] = '5';
  std::string aside = path + ".damaged";
  for (const std::string& text : {digit, half, std::string(100'000, 'P')}) {
    std::remove(aside.c_str());
    std::ofstream(path) << text;
    std::ofstream(path + ".new") << "left behind";
    SimulatedDrive corrupt({.EepromPath = path});
    EXPECT_EQ(corrupt.Registers()[Reg::PolePairs], 4);
    EXPECT_EQ(corrupt.Errors().All()[0], 0x200);
    EXPECT_EQ(std::filesystem::file_size(aside), text.size());
    EXPECT_FALSE(std::filesystem::exists(path + ".new"));
    aside = path + (aside.ends_with('d') ? ".damaged2" : ".damaged3");
  }
  EXPECT_FALSE(DecodeImage(""));
  for (const char* end : {"", ".damaged", ".damaged2", ".damaged3"}) {
    std::remove((path + end).c_str());
  }

  for (const std::string& place : {testing::TempDir() + "no/such/directory/eeprom",
                                   testing::TempDir(), std::string("/dev/full")}) {
    DriveHost unwritable({.EepromPath = place});
    EXPECT_TRUE(unwritable.Write(Reg::StoreEeprom, 1));
    EXPECT_EQ(unwritable.Drive.Errors().All()[0], 0x200) << place;
  }
  EXPECT_NE(EepromFile("/dev/full").Problem(), "");
  EXPECT_FALSE(std::filesystem::exists(testing::TempDir() + ".new"));
}

TEST(SimulatedDrive, SameSeedAndScriptGiveTheSameBytes) {
  // Samples, a random byte behind them, and when it came.
  const auto run = [](std::uint32_t seed) {
    DriveHost host({.Seed = seed});
    host.Drive.Inject(Fault::ExtraByte, Hits::All());
    host.Drive.StartMotion(host.Now);
    host.Write(Reg::ArmRecorder, 200);
    host.Pass(1'200'000);
    const Bytes reply = host.Ask({1, 3, 356, 100});
    EXPECT_EQ(reply.size(), 206U);
    return std::tuple{Bytes(reply.begin(), reply.end() - 3), int{reply.back()}, host.RepliedAt};
  };
  EXPECT_EQ(run(5), run(5));
  EXPECT_NE(std::get<1>(run(5)), std::get<1>(run(6)));
}

}  // namespace
}  // namespace gainsmith::sim
