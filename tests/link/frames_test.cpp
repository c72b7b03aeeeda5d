// Frames: layouts, checksum, packing and the checks of a reply.
#include "link/frames.h"

#include <gtest/gtest.h>

#include <cmath>

namespace gainsmith::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Puts the right checksum behind a body.
Bytes Sealed(Bytes body) {
  const Crc16 crc = CalcCrc16(body);
  body.push_back(crc.Low);
  body.push_back(crc.High);
  return body;
}

TEST(Frames, RequestsStandToTheByte) {
  EXPECT_EQ(BuildRequest(1, Function::Read, Register::Flags, 1),
            (Request{0x01, 0x03, 0x00, 0xFF, 0x00, 0x01, 0xB4, 0x3A}));
  EXPECT_EQ(BuildRequest(0, Function::Write, static_cast<Register>(655), 65535),
            (Request{0x00, 0x06, 0x02, 0x8F, 0xFF, 0xFF, 0xB9, 0xF8}));
  EXPECT_EQ(ReplyLength(Function::Read, 10), 25);
  EXPECT_EQ(ReplyLength(Function::Write, 10), 8);
}

TEST(Frames, PacksTheNearestWordWithTiesToEven) {
  const std::pair<float, std::optional<std::uint16_t>> cases[] = {
      {2.5F, 2},    {3.5F, 4},  {12.3F, 12},      {65535.49F, 65535}, {65535.5F, {}},
      {-0.51F, {}}, {-0.5F, 0}, {-HUGE_VALF, {}}, {HUGE_VALF, {}},    {NAN, {}},
  };
  for (const auto& [value, word] : cases) EXPECT_EQ(PackWord(value), word) << value;
}

TEST(Frames, TheFirstFailedCheckOfAReplyIsTheResult) {
  constexpr RequestHeader Read{5, 3, 0, 19, 0, 1};
  constexpr RequestHeader Write{5, 6, 0, 2, 0, 1};
  const struct {
    const char* What;
    RequestHeader Sent;
    Bytes Reply;
    ReplyFault Fault;
  } cases[] = {
      {"good read", Read, Sealed({5, 3, 2, 0x12, 0x34}), ReplyFault::None},
      {"another function", Read, Sealed({5, 6, 2, 0x12, 0x34}), ReplyFault::NotOurs},
      {"address before checksum", Read, {6, 3, 2, 0x12, 0x34, 0, 0}, ReplyFault::NotOurs},
      {"checksum before count", Read, {5, 3, 4, 0x12, 0x34, 0, 0}, ReplyFault::WrongCrc},
      {"echo, first byte", Write, Sealed({5, 6, 1, 2, 0, 1}), ReplyFault::WrongEcho},
      {"echo, last byte", Write, Sealed({5, 6, 0, 2, 0, 0}), ReplyFault::WrongEcho},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CheckReply(c.Reply, 5, static_cast<Function>(c.Sent[1]), c.Sent, 1), c.Fault)
        << c.What;
  }
}

TEST(Frames, ARegisterHasARawAndASignedView) {
  const Bytes reply = Sealed({1, 3, 8, 0xFF, 0xFF, 0x80, 0x00, 0x7F, 0xFF, 0x01, 0x02});
  EXPECT_EQ(RawValue(reply), 65535);
  EXPECT_EQ(RawValue(reply, 3), 258);
  EXPECT_EQ(DecodeRegisters(reply, 4), (std::vector<float>{-1, -32768, 32767, 258}));
}

}  // namespace
}  // namespace gainsmith::test
