// The named faults: what each does to a reply, whom it hits, and how it is spelled.
#include "simulator/wire/faults.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

#include "drive_host.h"
#include "simulator/bank/factory_values.h"
#include "simulator/wire/framing.h"

namespace gainsmith::sim {
namespace {

void Inject(DriveHost& host, const char* text) {
  const auto order = ParseFault(text);
  ASSERT_TRUE(order) << text;
  host.Drive.Inject(*order);
}

// Sends a read for each 'r' and a write for each 'w'. Gives one letter for each: 'o' answered as it
// should be, '-' not at all, 'x' otherwise.
std::string Answers(DriveHost& host, const std::string& requests) {
  const Request read{1, ReadFunction, 34, 1};
  const Request write{1, WriteFunction, 34, 4};
  std::string answers;
  for (const char kind : requests) {
    const Bytes good = kind == 'r' ? ReadReply(read, Words{4}) : WriteReply(write);
    const Bytes reply = host.Ask(kind == 'r' ? read : write);
    answers += reply.empty() ? '-' : reply == good ? 'o' : 'x';
  }
  return answers;
}

TEST(Faults, HitTheRequestsTheyWereOrderedForAndCanSpoil) {
  const struct {
    const char *Order, *Expected;
  } cases[] = {
      {"bad-crc", "xxxxxxxx"},
      {"bad-crc:3", "xxxooooo"},
      {"bad-crc:/3", "ooxooxoo"},
      {"bad-crc:@5", "ooooxooo"},
      {"silent", "--------"},
      {"silent:2", "--oooooo"},
      {"drop-nth", "oo-oo-oo"},
      {"drop-nth:4", "ooo-ooo-"},
      {"drop-nth:@1", "-ooooooo"},
      {"wrong-count:/2", "oooxooxo"},
      {"wrong-echo:@2", "ooxooooo"},
      {"reset-in-test", "oooooooo"},
      {"refused-write:@2", "ooxooooo"},
      {"lost-byte=2:/4", "oooxooox"},
      {"stuck-line=50:1", "xooooooo"},
      {"wrong-register:2", "xooxoooo"},
      {"power-loss-in-store", "oooooooo"},
  };
  for (const auto& test : cases) {
    DriveHost host;
    Inject(host, test.Order);
    EXPECT_EQ(Answers(host, "rwwrwrrw"), test.Expected) << test.Order;
  }
  DriveHost host;
  for (const char* order : {"silent", "silent:1", "bad-crc:@3"}) Inject(host, order);
  EXPECT_EQ(Answers(host, "rrrr"), "-oxo") << "a new order replaces that of the same fault only";
  for (const char* bad : {"", "silence", "silent:0", "silent:2x", "silent:@", "silent 2",
                          "silent=1", "late-by=0", "late-by=1x", "late-by=60001", "lost-byte:=3"}) {
    EXPECT_FALSE(ParseFault(bad)) << bad;
  }
}

TEST(Faults, SpoilTheReplyInTheirOwnWayOnly) {
  const Request read{1, ReadFunction, 252, 2};
  const Request write{1, WriteFunction, 252, 2};
  const auto spoiled = [](const char* name, const Request& request) {
    DriveHost host;
    Inject(host, name);
    return host.Ask(request);
  };
  const Bytes good = Sealed({1, 3, 4, 0x01, 0x90, 0x02, 0x06});
  Bytes badCrc = good;
  badCrc.back() ^= 1;
  EXPECT_EQ(spoiled("bad-crc", read), badCrc);
  EXPECT_EQ(spoiled("wrong-address", read), Sealed({0, 3, 4, 0x01, 0x90, 0x02, 0x06}));
  EXPECT_EQ(spoiled("wrong-count", read), Sealed({1, 3, 6, 0x01, 0x90, 0x02, 0x06}));
  EXPECT_EQ(spoiled("wrong-echo", write), Sealed({1, 6, 0, 252, 0, 3}));
  const Bytes extra = spoiled("extra-byte", read);
  ASSERT_EQ(extra.size(), good.size() + 1);
  EXPECT_EQ(Bytes(extra.begin(), extra.end() - 1), good);
  EXPECT_EQ(spoiled("lost-byte", read), (Bytes{1, 3, 4, 0x90, 0x02, 0x06, good[7], good[8]}));
  EXPECT_EQ(spoiled("lost-byte=200", read), Bytes(good.begin(), good.end() - 1));
  EXPECT_EQ(spoiled("doubled-byte=5", read),
            (Bytes{1, 3, 4, 0x01, 0x90, 0x90, 0x02, 0x06, good[7], good[8]}));
  EXPECT_EQ(spoiled("wrong-register", read), Sealed({1, 3, 4, 0x02, 0x06, 0x00, 0x70}));
  EXPECT_EQ(spoiled("refused-write", write), Sealed({1, 0x86, 3}));
  Bytes echoed = RequestFrame(read);
  echoed.insert(echoed.end(), good.begin(), good.end());
  EXPECT_EQ(spoiled("echo", read), echoed);
  const Bytes unsolicited = spoiled("unsolicited=5", read);
  ASSERT_EQ(unsolicited.size(), good.size() + 5);
  EXPECT_EQ(Bytes(unsolicited.begin() + 5, unsolicited.end()), good);
  // 10 ms at 3.49 characters a millisecond.
  EXPECT_EQ(spoiled("stuck-line=10", read), Bytes(34, 0));
  const Bytes garbage = spoiled("garbage", read);
  EXPECT_EQ(garbage.size(), good.size());
  EXPECT_NE(garbage[0], good[0]);
}

// The host looks for a reply of 7 bytes 51 ms after its request and again 51 ms later, counted in
// whole milliseconds of a coarse clock.
TEST(Faults, LateAndSplitRepliesMissTheFirstLookAndMakeTheSecond) {
  for (const auto& [name, atFirst] : {std::pair{"late-reply", 0U}, std::pair{"split-reply", 3U}}) {
    DriveHost host;
    Inject(host, name);
    host.Send(RequestFrame({1, 3, 34, 1}));
    EXPECT_EQ(host.Drive.Transmit(host.SentAt + 55'000).size(), atFirst) << name;
    EXPECT_EQ(host.Drive.Transmit(host.SentAt + 100'000).size(), 7U - atFirst) << name;
  }
}

// Worked out by hand: at half the speed of the sender each bit that is read covers two, and at
// twice the speed each is read twice.
TEST(Faults, SpeedsThatDifferMakeGarbageBothWays) {
  const auto reframed = [](Bytes sent, int from, int to) { return Reframe(sent, from, to); };
  EXPECT_EQ(reframed({0x00}, 19200, 9600), Bytes{0xF8});
  EXPECT_EQ(reframed({0x0F}, 9600, 19200), (Bytes{0xFE, 0x80}));

  DriveHost host({.Baud = 19200});
  host.Drive.SetHostBaud(9600);
  EXPECT_EQ(Answers(host, "r"), "-");
  EXPECT_TRUE(host.Drive.TakeEvents().at(0).starts_with("bad request "));
  host.Drive.SetHostBaud(19200);
  host.Pass(200'000);
  EXPECT_EQ(Answers(host, "r"), "o");
  Inject(host, "wrong-baud=9600");
  EXPECT_EQ(Answers(host, "r"), "x");
}

TEST(Faults, PowerLostInMidStoreDamagesTheMemory) {
  const std::string path = testing::TempDir() + "kvt518_power_loss.txt";
  for (const std::string& file : {std::string(), path}) {
    DriveHost host({.EepromPath = file});
    host.Write(Reg::PolePairs, 3);
    host.Write(Reg::StoreEeprom, 1);
    Inject(host, "power-loss-in-store:1");
    EXPECT_FALSE(host.Write(Reg::StoreEeprom, 1));
    host.Pass(1'000'000);
    EXPECT_EQ(host.Read(34), Words{4}) << "as from the factory";
    EXPECT_EQ(host.Read(16), Words{0x200});
  }
  EXPECT_EQ(std::remove((path + ".damaged").c_str()), 0);
  std::remove(path.c_str());
}

TEST(Faults, LostReplyWasObeyedAndSilenceWasNot) {
  for (const auto& [name, polePairs] : {std::pair{"drop-nth:/1", 2}, std::pair{"silent", 4}}) {
    DriveHost host;
    Inject(host, name);
    EXPECT_FALSE(host.Write(Reg::PolePairs, 2));
    EXPECT_EQ(host.Drive.Registers()[Reg::PolePairs], polePairs) << name;
  }
}

TEST(Faults, ResetInTestWaitsForATestAndEndsIt) {
  DriveHost host;
  Inject(host, "reset-in-test:1");
  EXPECT_TRUE(host.Write(Reg::VelocityKp, 401));
  host.Drive.StartMotion(host.Now);
  host.Pass(100'000);
  EXPECT_TRUE(host.Drive.Moving());
  EXPECT_TRUE(host.Read(28).empty());
  host.Pass(5'000'000);
  EXPECT_FALSE(host.Drive.Moving());
  EXPECT_EQ(host.Read(31), Words{FactoryValues()[Reg::VelocityKp]});
}

TEST(Faults, HangUpLastsUntilTheLineIsThereAgain) {
  DriveHost host;
  Inject(host, "hang-up");
  EXPECT_EQ(Answers(host, "rr"), "--");
  EXPECT_TRUE(host.Drive.HungUp());
  host.Drive.ClearFaults();
  EXPECT_EQ(Answers(host, "r"), "-");
  host.Drive.Reconnect();
  EXPECT_FALSE(host.Drive.HungUp());
  EXPECT_EQ(Answers(host, "rw"), "oo");
}

}  // namespace
}  // namespace gainsmith::sim
