// The named faults: what each does to a reply, whom it hits, and how it is spelled.
#include "simulator/faults.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "drive_host.h"
#include "simulator/factory_values.h"

namespace gainsmith::sim {
namespace {

using Words = std::vector<std::uint16_t>;

// One letter for each request: 'o' answered as it should be, '-' not at all, 'x' otherwise.
std::string Answers(DriveHost& host, int count) {
  const Request request{1, ReadFunction, 34, 1};
  const Bytes good = ReadReply(request, std::vector<std::uint16_t>{4});
  std::string answers;
  for (int i = 0; i < count; ++i) {
    const Bytes reply = host.Ask(request.Function, request.Register, request.Value);
    answers += reply.empty() ? '-' : reply == good ? 'o' : 'x';
  }
  return answers;
}

TEST(Faults, HitTheRequestsTheyWereOrderedFor) {
  const struct {
    const char* Order;
    const char* Expected;
  } cases[] = {
      {"bad-crc", "xxxxxxxx"},    {"bad-crc:3", "xxxooooo"},     {"bad-crc:/3", "ooxooxoo"},
      {"bad-crc:@5", "ooooxooo"}, {"silent", "--------"},        {"silent:2", "--oooooo"},
      {"drop-nth", "oo-oo-oo"},   {"drop-nth:4", "ooo-ooo-"},    {"drop-nth:@1", "-ooooooo"},
      {"wrong-echo", "oooooooo"}, {"reset-in-test", "oooooooo"},
  };
  for (const auto& test : cases) {
    const auto order = ParseFault(test.Order);
    ASSERT_TRUE(order) << test.Order;
    SimulatedDrive drive{{}};
    DriveHost host(drive);
    drive.Inject(order->Kind, order->When);
    EXPECT_EQ(Answers(host, 8), test.Expected) << test.Order;
  }
}

TEST(Faults, CountOnlyTheRequestsTheyCanSpoil) {
  FaultPlan plan;
  plan.Inject({Fault::WrongCount, Hits::Only(2)});
  plan.Inject({Fault::WrongEcho, Hits::Only(2)});
  plan.Inject({Fault::ResetInTest, Hits::Next(1)});
  const Occasion read{.IsWrite = false, .UnderTest = false};
  const Occasion write{.IsWrite = true, .UnderTest = false};
  const Occasion readInTest{.IsWrite = false, .UnderTest = true};
  EXPECT_TRUE(plan.Strike(read).none());
  EXPECT_TRUE(plan.Strike(write).none());
  FaultSet faults = plan.Strike(readInTest);
  EXPECT_TRUE(Has(faults, Fault::WrongCount) && Has(faults, Fault::ResetInTest));
  EXPECT_EQ(faults.count(), 2U);
  EXPECT_TRUE(plan.Strike(readInTest).none());
  EXPECT_TRUE(Has(plan.Strike(write), Fault::WrongEcho));
}

TEST(Faults, AreParsedFromTheirNamesAndNothingElse) {
  for (const std::string_view name : FaultNames()) {
    const auto order = ParseFault(name);
    ASSERT_TRUE(order) << name;
    EXPECT_EQ(NameOf(order->Kind), name);
  }
  for (const char* bad : {"", "silence", "silent:", "silent:0", "silent:-1", "silent:2x",
                          "silent:/", "silent:@", "silent:/0", "silent 2", "SILENT"}) {
    EXPECT_FALSE(ParseFault(bad)) << bad;
  }
}

TEST(Faults, InjectedAgainOrClearedEndTheEarlierOrder) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  drive.Inject(Fault::Silent);
  drive.Inject(Fault::Silent, Hits::Next(1));
  EXPECT_EQ(Answers(host, 3), "-oo");
  drive.Inject(Fault::Silent);
  drive.Inject(Fault::BadCrc);
  drive.ClearFaults();
  EXPECT_EQ(Answers(host, 2), "oo");
}

// A reply under one fault, asked for with a read of two registers or a write.
Bytes Spoiled(Fault fault, std::uint8_t function) {
  SimulatedDrive drive{{}};
  drive.Inject(fault);
  DriveHost host(drive);
  return host.Ask(function, 252, 2);
}

Bytes Sealed(Bytes frame) {
  Seal(frame);
  return frame;
}

TEST(Faults, SpoilTheReplyInTheirOwnWayOnly) {
  const Bytes good = Sealed({1, 3, 4, 0x01, 0x90, 0x02, 0x06});
  Bytes badCrc = good;
  badCrc.back() ^= 1;
  EXPECT_EQ(Spoiled(Fault::BadCrc, 3), badCrc);
  EXPECT_EQ(Spoiled(Fault::WrongAddress, 3), Sealed({0, 3, 4, 0x01, 0x90, 0x02, 0x06}));
  EXPECT_EQ(Spoiled(Fault::WrongCount, 3), Sealed({1, 3, 6, 0x01, 0x90, 0x02, 0x06}));
  EXPECT_EQ(Spoiled(Fault::WrongCount, 6), Sealed({1, 6, 0, 252, 0, 2}));
  EXPECT_EQ(Spoiled(Fault::WrongEcho, 6), Sealed({1, 6, 0, 252, 0, 3}));
  const Bytes extra = Spoiled(Fault::ExtraByte, 3);
  ASSERT_EQ(extra.size(), good.size() + 1);
  EXPECT_EQ(Bytes(extra.begin(), extra.end() - 1), good);
  const Bytes garbage = Spoiled(Fault::Garbage, 3);
  EXPECT_EQ(garbage.size(), good.size());
  EXPECT_NE(garbage[0], good[0]);
}

// The host looks for a reply of 7 bytes 51 ms after its request and again 51 ms later, counted in
// whole milliseconds of a coarse clock.
TEST(Faults, LateAndSplitRepliesMissTheFirstLookAndMakeTheSecond) {
  for (const Fault fault : {Fault::LateReply, Fault::SplitReply}) {
    SimulatedDrive drive{{}};
    drive.Inject(fault);
    DriveHost host(drive);
    host.Send(RequestFrame({1, 3, 34, 1}));
    host.Now = host.SentAt + 55'000;
    const std::size_t first = drive.Transmit(host.Now).size();
    EXPECT_EQ(first, fault == Fault::SplitReply ? 3U : 0U);
    EXPECT_EQ(first + drive.Transmit(host.SentAt + 100'000).size(), 7U);
  }
}

TEST(Faults, LostReplyWasObeyedAndSilenceWasNot) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  drive.Inject(Fault::DropNth, Hits::Next(1));
  EXPECT_FALSE(host.Write(Reg::PolePairs, 2));
  EXPECT_EQ(drive.Registers()[Reg::PolePairs], 2);
  drive.Inject(Fault::Silent, Hits::Next(1));
  EXPECT_FALSE(host.Write(Reg::PolePairs, 3));
  EXPECT_EQ(drive.Registers()[Reg::PolePairs], 2);
}

TEST(Faults, ResetInTestWaitsForATestAndEndsIt) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  drive.Inject(Fault::ResetInTest, Hits::Next(1));
  EXPECT_TRUE(host.Write(Reg::VelocityKp, 401));
  // One move of ten revolutions and back, two seconds each way.
  const std::pair<Reg, std::uint16_t> setup[] = {
      {Reg::SpeedWord, 1000},   {Reg::AccelerationWord, 20}, {Reg::LengthHigh, 0},
      {Reg::LengthLow, 40000},  {Reg::RepeatCount, 1},       {Reg::PauseWord, 200},
      {Reg::SampleDivider, 10}, {Reg::TraceKind, 145},
  };
  for (const auto& [reg, value] : setup) EXPECT_TRUE(host.Write(reg, value));
  EXPECT_TRUE(host.Write(Reg::PositionCommand, 2));
  host.Now += 500'000;
  drive.Advance(host.Now);
  EXPECT_TRUE(drive.Moving());
  EXPECT_TRUE(host.Read(28).empty());
  host.Now += 5'000'000;  // the motor coasts to a stop, short of its way
  drive.Advance(host.Now);
  EXPECT_FALSE(drive.Moving());
  EXPECT_LT(drive.Motor().ShaftPositionPulses(), 40'000);
  EXPECT_EQ(host.Read(31), Words{FactoryValues()[Reg::VelocityKp]});
}

TEST(Faults, HangUpLastsUntilTheLineIsThereAgain) {
  SimulatedDrive drive{{}};
  DriveHost host(drive);
  drive.Inject(Fault::HangUp, Hits::Only(2));
  EXPECT_EQ(Answers(host, 3), "o--");
  EXPECT_TRUE(drive.HungUp());
  EXPECT_FALSE(drive.NextTransmitAt());
  drive.Reconnect();
  EXPECT_FALSE(drive.HungUp());
  EXPECT_EQ(Answers(host, 2), "oo");
}

}  // namespace
}  // namespace gainsmith::sim
