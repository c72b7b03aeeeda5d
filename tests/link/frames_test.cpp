// Frames: layouts, checksum, packing and the checks of a reply.
#include "link/frames.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string_view>

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

TEST(Frames, ChecksumHasItsPublishedCheckValue) {
  constexpr std::string_view Digits = "123456789";
  EXPECT_EQ(CalcCrc16(Bytes(Digits.begin(), Digits.end())), (Crc16{0x37, 0x4B}));
  EXPECT_EQ(CalcCrc16(Bytes{}), (Crc16{0xFF, 0xFF}));
}

TEST(Frames, RequestsStandToTheByte) {
  struct Case {
    Function Kind;
    int Number;
    float Value;
    Request Bytes;
    int ReplyBytes;
  };
  const Case cases[] = {
      {Function::Read, 255, 1, {0x01, 0x03, 0x00, 0xFF, 0x00, 0x01, 0xB4, 0x3A}, 7},
      {Function::Write, 2, 1, {0x01, 0x06, 0x00, 0x02, 0x00, 0x01, 0xE9, 0xCA}, 8},
      {Function::Read, 16, 10, {0x01, 0x03, 0x00, 0x10, 0x00, 0x0A, 0xC4, 0x08}, 25},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(BuildRequest(1, c.Kind, static_cast<Register>(c.Number), c.Value), c.Bytes);
    EXPECT_EQ(ReplyLength(c.Kind, c.Value), c.ReplyBytes);
  }
  EXPECT_EQ(ReplyLength(Function::Read, 50), 105);
  const Request high = BuildRequest(0, Function::Write, static_cast<Register>(655), 65535).value();
  EXPECT_EQ(RequestHeader({high[0], high[1], high[2], high[3], high[4], high[5]}),
            (RequestHeader{0x00, 0x06, 0x02, 0x8F, 0xFF, 0xFF}));
}

TEST(Frames, PacksTheNearestWordWithTiesToEven) {
  struct Case {
    float Value;
    std::optional<std::uint16_t> Word;
  };
  constexpr float Infinity = std::numeric_limits<float>::infinity();
  const Case cases[] = {
      {2.5F, 2},          {3.5F, 4},  {0.5F, 0},      {12.3F, 12},     {65535, 65535},
      {65535.49F, 65535}, {-0.5F, 0}, {-0.51F, {}},   {65535.5F, {}},  {-1, {}},
      {65536, {}},        {NAN, {}},  {Infinity, {}}, {-Infinity, {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(PackWord(c.Value), c.Word) << c.Value;
    EXPECT_EQ(BuildRequest(1, Function::Write, Register::CurrentKp, c.Value).has_value(),
              c.Word.has_value())
        << c.Value;
  }
}

TEST(Frames, TheFirstFailedCheckOfAReplyIsTheResult) {
  constexpr RequestHeader Read{5, 3, 0, 19, 0, 1};
  constexpr RequestHeader Write{5, 6, 0, 2, 0, 1};
  struct Case {
    const char* What;
    RequestHeader Sent;
    Bytes Reply;
    ReplyFault Fault;
  };
  const Case cases[] = {
      {"good read", Read, Sealed({5, 3, 2, 0x12, 0x34}), ReplyFault::None},
      {"good write", Write, Sealed({5, 6, 0, 2, 0, 1}), ReplyFault::None},
      {"another address", Read, Sealed({6, 3, 2, 0x12, 0x34}), ReplyFault::NotOurs},
      {"another function", Read, Sealed({5, 6, 2, 0x12, 0x34}), ReplyFault::NotOurs},
      {"address before checksum", Read, {6, 3, 2, 0x12, 0x34, 0, 0}, ReplyFault::NotOurs},
      {"one bit wrong", Read, {5, 3, 2, 0x12, 0x34, 0, 0}, ReplyFault::WrongCrc},
      {"checksum before count", Read, {5, 3, 4, 0x12, 0x34, 0, 0}, ReplyFault::WrongCrc},
      {"byte count", Read, Sealed({5, 3, 4, 0x12, 0x34}), ReplyFault::WrongCount},
      {"echo, register high", Write, Sealed({5, 6, 1, 2, 0, 1}), ReplyFault::WrongEcho},
      {"echo, register low", Write, Sealed({5, 6, 0, 3, 0, 1}), ReplyFault::WrongEcho},
      {"echo, value high", Write, Sealed({5, 6, 0, 2, 1, 1}), ReplyFault::WrongEcho},
      {"echo, value low", Write, Sealed({5, 6, 0, 2, 0, 0}), ReplyFault::WrongEcho},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CheckReply(c.Reply, 5, static_cast<Function>(c.Sent[1]), c.Sent, 1), c.Fault)
        << c.What;
  }
}

TEST(Frames, ARegisterHasARawAndASignedView) {
  const Bytes reply = Sealed({1, 3, 8, 0xFF, 0xFF, 0x80, 0x00, 0x7F, 0xFF, 0x01, 0x02});
  const int raws[] = {65535, 32768, 32767, 258};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(RawValue(reply, i), raws[i]);
  EXPECT_EQ(DecodeRegisters(reply, 4), (std::vector<float>{-1, -32768, 32767, 258}));
}

}  // namespace
}  // namespace gainsmith::test
