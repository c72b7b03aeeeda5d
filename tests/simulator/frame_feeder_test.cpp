// Requests in a stream of bytes: split, merged, corrupt, wrapped in noise.
#include "simulator/frame_feeder.h"

#include <gtest/gtest.h>

#include <vector>

namespace gainsmith::sim {
namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes ReadFlags{0x01, 0x03, 0x00, 0xFF, 0x00, 0x01, 0xB4, 0x3A};
const Bytes RunStep{0x01, 0x06, 0x00, 0x02, 0x00, 0x01, 0xE9, 0xCA};
const Request ReadFlagsRequest{1, 3, 255, 1};
const Request RunStepRequest{1, 6, 2, 1};

// Feeds bytes one millisecond apart and collects what comes out.
std::vector<Request> FeedAll(FrameFeeder& feeder, const Bytes& bytes, TimeUs& now,
                             TimeUs apartUs = 1'000) {
  std::vector<Request> requests;
  for (const std::uint8_t byte : bytes) {
    now += apartUs;
    if (const auto request = feeder.Feed(byte, now)) requests.push_back(*request);
  }
  return requests;
}

Bytes Joined(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

TEST(FrameFeeder, FindsRequestsInEveryStream) {
  Bytes corrupt = ReadFlags;
  corrupt[4] ^= 0x80;
  const Bytes cut(RunStep.begin(), RunStep.end() - 1);
  const struct {
    const char* Name;
    Bytes Stream;
    std::vector<Request> Expected;
  } cases[] = {
      {"one", ReadFlags, {ReadFlagsRequest}},
      {"merged", Joined({ReadFlags, RunStep}), {ReadFlagsRequest, RunStepRequest}},
      {"bad checksum", corrupt, {}},
      {"good after bad", Joined({corrupt, RunStep}), {RunStepRequest}},
      {"noise before", Joined({{0xFF, 0x01, 0x03, 0x00}, ReadFlags}), {ReadFlagsRequest}},
      {"noise between", Joined({ReadFlags, {0x01}, RunStep}), {ReadFlagsRequest, RunStepRequest}},
      {"lost last byte, sent again", Joined({cut, RunStep}), {RunStepRequest}},
  };
  for (const auto& test : cases) {
    FrameFeeder feeder;
    TimeUs now = 0;
    EXPECT_EQ(FeedAll(feeder, test.Stream, now), test.Expected) << test.Name;
  }
}

TEST(FrameFeeder, HoldsTogetherADelayedRequestButNotOneAcrossTheGap) {
  FrameFeeder feeder;
  TimeUs now = 0;
  EXPECT_EQ(FeedAll(feeder, ReadFlags, now, 60'000).size(), 1U);
  EXPECT_TRUE(FeedAll(feeder, Bytes(ReadFlags.begin(), ReadFlags.begin() + 5), now).empty());
  now += FrameFeeder::DefaultGapUs + 1;
  EXPECT_TRUE(FeedAll(feeder, Bytes(ReadFlags.begin() + 5, ReadFlags.end()), now).empty());
  EXPECT_EQ(FeedAll(feeder, RunStep, now), (std::vector<Request>{RunStepRequest}));
}

TEST(ModbusFrame, ChecksumOfTheCheckString) {
  const std::string_view digits = "123456789";
  EXPECT_EQ(Crc16(Bytes(digits.begin(), digits.end())), 0x4B37);
}

}  // namespace
}  // namespace gainsmith::sim
