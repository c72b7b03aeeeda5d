// The simulated drive on its line: replies, pacing, EEPROM, error log, determinism.
#include "simulator/simulated_drive.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "drive_host.h"
#include "simulator/factory_values.h"

namespace gainsmith::sim {
namespace {

using Words = std::vector<std::uint16_t>;

TEST(SimulatedDrive, AnswersToTheByte) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  EXPECT_EQ(host.Ask(3, 255, 1), (Bytes{0x01, 0x03, 0x02, 0x01, 0x84, 0xB9, 0xB7}));
  EXPECT_EQ(host.Ask(6, 2, 1), (Bytes{0x01, 0x06, 0x00, 0x02, 0x00, 0x01, 0xE9, 0xCA}));
  EXPECT_EQ(host.Read(253, 2), (Words{518, 112}));
  EXPECT_EQ(host.Read(600, 125).size(), 125U);
  SimulatedDrive zero{{.Address = 0}};
  const Bytes reply = DriveHost(zero).Ask(3, 252, 1, 0);
  ASSERT_EQ(reply.size(), 7U);
  EXPECT_EQ(reply[0], 0);
}

TEST(SimulatedDrive, RefusesAsAModbusSlaveDoes) {
  const struct {
    Request Asked;
    Bytes Expected;  // without the checksum; empty for silence
  } cases[] = {
      {{1, 3, 0, 0}, {0x01, 0x83, 0x03}},
      {{1, 3, 0, 126}, {0x01, 0x83, 0x03}},
      {{1, 3, 855, 2}, {0x01, 0x83, 0x02}},
      {{1, 3, 65535, 125}, {0x01, 0x83, 0x02}},
      {{1, 6, 256, 1}, {0x01, 0x86, 0x02}},
      {{1, 6, 253, 1}, {0x01, 0x86, 0x02}},
      {{1, 6, 16, 2}, {0x01, 0x86, 0x03}},
      {{1, 4, 0, 1}, {0x01, 0x84, 0x01}},
      {{2, 3, 0, 1}, {}},
      {{0, 6, 0, 1}, {}},
  };
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  for (const auto& test : cases) {
    Bytes expected = test.Expected;
    if (!expected.empty()) Seal(expected);
    const Request& asked = test.Asked;
    EXPECT_EQ(host.Ask(asked.Function, asked.Register, asked.Value, asked.Address), expected)
        << int{asked.Address} << ' ' << int{asked.Function} << ' ' << asked.Register << ' '
        << asked.Value;
  }
  EXPECT_EQ(host.Read(0, 1), Words{FactoryValues()[Reg::CurrentKp]});
}

TEST(SimulatedDrive, PacesElevenBitsACharacter) {
  const struct {
    int Baud;
    TimeUs ReadUs;   // 1 request character, 1 ms, 7 reply characters
    TimeUs BlockUs;  // 1 request character, 1 ms, 105 reply characters
  } cases[] = {{38400, 287 + 1'000 + 2'006, 287 + 1'000 + 30'079},
               {19200, 573 + 1'000 + 4'011, 573 + 1'000 + 60'157},
               {9600, 1'146 + 1'000 + 8'021, 1'146 + 1'000 + 120'313}};
  for (const auto& test : cases) {
    SimulatedDrive drive{{.Baud = test.Baud}};
    DriveHost host(drive);
    host.Read(0);
    EXPECT_EQ(host.RepliedAt - host.SentAt, test.ReadUs) << test.Baud;
    EXPECT_EQ(host.Read(256, 50).size(), 50U);
    EXPECT_EQ(host.RepliedAt - host.SentAt, test.BlockUs) << test.Baud;
  }
  SimulatedDrive unpaced{{.Paced = false}};
  DriveHost host(unpaced);
  host.Read(256, 50);
  EXPECT_EQ(host.RepliedAt - host.SentAt, 1'000);
}

TEST(SimulatedDrive, GivesEachByteWhenItHasLeftAndNotBefore) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  host.Send(RequestFrame({1, 3, 0, 1}));
  const TimeUs first = host.SentAt + 287 + 1'000 + 287;
  ASSERT_EQ(drive.NextTransmitAt(), first);
  EXPECT_TRUE(drive.Transmit(first - 1).empty());
  EXPECT_EQ(drive.Transmit(first).size(), 1U);
  EXPECT_EQ(drive.Transmit(first + 600).size(), 2U);
  EXPECT_EQ(drive.Transmit(first + 60'000).size(), 4U);
  EXPECT_FALSE(drive.NextTransmitAt());
}

TEST(SimulatedDrive, KeepsOnlyWhatWasStoredOverAReset) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  EXPECT_TRUE(host.Write(Reg::PolePairs, 2));
  EXPECT_TRUE(host.Write(Reg::StoreEeprom, 1));
  EXPECT_GE(host.RepliedAt - host.SentAt, 300'000);
  EXPECT_TRUE(host.Write(Reg::PolePairs, 7));
  EXPECT_TRUE(host.Write(Reg::TestCurrent, 512));
  EXPECT_TRUE(host.Write(Reg::FilterSwitch, 1));
  EXPECT_TRUE(drive.FilterOff());
  EXPECT_EQ(host.Read(254), Words{112});

  drive.Reset(host.Now);
  EXPECT_FALSE(drive.FilterOff());
  EXPECT_TRUE(host.Ask(3, 34, 1).empty()) << "deaf while it boots";
  host.Now += 200'000;
  EXPECT_EQ(host.Read(34), Words{2});
  EXPECT_EQ(host.Read(4), Words{0});
}

TEST(SimulatedDrive, ErrorLogStandsBesideTheRegistersOfItsNumbers) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  EXPECT_TRUE(host.Write(Reg::FollowingErrorLimit, 1234));
  drive.RaiseError(DriveError::OverCurrent);
  drive.RaiseError(DriveError::Eeprom);
  drive.RaiseError(DriveError::FollowingError);
  EXPECT_EQ(host.Read(16, 10), (Words{0x020, 0x200, 0x001, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(host.Read(18), Words{1234});
  EXPECT_EQ(host.Read(19), Words{4000});

  EXPECT_TRUE(host.Write(Reg::ErrorLog, 0));
  EXPECT_EQ(host.Read(16, 10), (Words{0x200, 0x001, 0, 0, 0, 0, 0, 0, 0, 0}));
  drive.Reset(host.Now);
  host.Now += 200'000;
  EXPECT_EQ(host.Read(16, 10), (Words{0x200, 0x001, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_TRUE(host.Write(Reg::ErrorLog, 1));
  EXPECT_EQ(host.Read(16, 10), Words(10, 0));

  for (int i = 0; i < 11; ++i) drive.RaiseError(i == 0 ? DriveError::Brake : DriveError::Limit);
  EXPECT_EQ(host.Read(16, 10), Words(10, 0x040)) << "the oldest falls out";
}

TEST(SimulatedDrive, RunsTheCurrentStepIntoTheSampleMemory) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  host.Write(Reg::TestCurrent, 512);
  host.Write(Reg::CurrentStep, 1);
  const Words last = host.Read(406, 50);
  ASSERT_EQ(last.size(), 50U);
  EXPECT_NEAR(last[49], 512, 50);
  drive.Reset(host.Now);
  host.Now += 200'000;
  EXPECT_EQ(host.Read(406, 50), Words(50, 0));
}

TEST(SimulatedDrive, WatchAddressesMove) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  for (const std::uint16_t reg : Words{102, 153, 170, 187, 204}) {
    EXPECT_EQ(host.Read(reg, 2).size(), 2U);
  }
  const Words earlier = host.Read(204, 2);
  host.Now += 1'200'000;
  EXPECT_NE(host.Read(204, 2), earlier);
}

TEST(SimulatedDrive, TellsOfCommandsFaultsAndErrors) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  host.Write(Reg::CurrentStep, 1);
  host.Write(Reg::CurrentKp, 1000);
  drive.Inject(Fault::BadCrc, Hits::Next(1));
  host.Read(0);
  host.Read(0);
  drive.RaiseError(DriveError::Phase);
  EXPECT_EQ(drive.TakeEvents(), (std::vector<std::string>{"write 2 = 1: current step",
                                                          "fault bad-crc", "error phase"}));
  EXPECT_TRUE(drive.TakeEvents().empty());
}

// A file that is gone before and after the test.
class EepromFileTest : public testing::Test {
 protected:
  EepromFileTest() { std::remove(path_.c_str()); }
  ~EepromFileTest() override { std::remove(path_.c_str()); }

  std::string Text() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  void SetText(const std::string& text) const { std::ofstream(path_, std::ios::binary) << text; }

  const std::string path_ = testing::TempDir() + "kvt518_eeprom_test.txt";
};

TEST_F(EepromFileTest, CarriesParametersAndErrorsToTheNextRun) {
  {
    SimulatedDrive drive{{.EepromPath = path_}};
    DriveHost host(drive);
    host.Write(Reg::Resistance, 999);
    host.Write(Reg::StoreEeprom, 1);
    host.Write(Reg::Resistance, 1);
    drive.RaiseError(DriveError::Limit);
  }
  SimulatedDrive drive{{.EepromPath = path_}};
  EXPECT_EQ(drive.Registers()[Reg::Resistance], 999);
  EXPECT_EQ(drive.Errors().All()[0], 0x040);
}

TEST_F(EepromFileTest, StartsWithFactoryValuesOnABadFileAndSaysSo) {
  SimulatedDrive{{.EepromPath = path_}}.RaiseError(DriveError::Limit);
  const std::string good = Text();
  std::string oneDigit = good;
  oneDigit[good.find("P 34 4") + 5] = '5';
  for (const std::string& bad : {std::string{}, std::string("\0\xFF noise", 8), oneDigit,
                                 good.substr(0, good.size() / 2), good + good}) {
    SetText(bad);
    SimulatedDrive drive{{.EepromPath = path_}};
    EXPECT_EQ(drive.Registers()[Reg::PolePairs], 4);
    EXPECT_EQ(drive.Errors().All()[0], 0x200);
  }
}

TEST(SimulatedDrive, ReportsAnEepromThatCannotBeWritten) {
  SimulatedDrive drive{{.EepromPath = testing::TempDir() + "no/such/directory/eeprom"}};
  DriveHost host(drive);
  EXPECT_EQ(drive.Errors().All()[0], 0) << "a new drive has no errors";
  EXPECT_TRUE(host.Write(Reg::StoreEeprom, 1));
  EXPECT_EQ(drive.Errors().All()[0], 0x200);
  EXPECT_EQ(drive.Errors().All()[1], 0);
}

// A session with faults that draw random bytes: every byte of it with its time.
std::vector<TimeUs> Session(std::uint32_t seed) {
  SimulatedDrive drive{{.Seed = seed}};
  drive.Inject(Fault::Garbage, Hits::Every(3));
  drive.Inject(Fault::ExtraByte, Hits::Every(4));
  drive.Inject(Fault::SplitReply, Hits::Only(7));
  DriveHost host(drive);
  std::vector<TimeUs> log;
  const auto ask = [&](std::uint8_t function, std::uint16_t reg, std::uint16_t value) {
    for (const std::uint8_t byte : host.Ask(function, reg, value)) log.push_back(byte);
    log.push_back(host.RepliedAt);
  };
  for (std::uint16_t i = 0; i < 30; ++i) ask(3, i, 5);
  ask(6, 26, 2);
  ask(6, 20, 200);
  ask(6, 9, 2);
  for (std::uint16_t reg = 256; reg < 856; reg = static_cast<std::uint16_t>(reg + 50)) {
    ask(3, reg, 50);
  }
  ask(3, 204, 2);
  return log;
}

TEST(SimulatedDrive, SameSeedAndScriptGiveTheSameBytes) {
  EXPECT_EQ(Session(5), Session(5));
  EXPECT_NE(Session(5), Session(6));
}

}  // namespace
}  // namespace gainsmith::sim
