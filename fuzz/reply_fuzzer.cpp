// Replies of any bytes, with the right checksum behind them or not.
#include <algorithm>
#include <vector>

#include "fuzzer.h"
#include "link/frames.h"

namespace gainsmith::fuzz {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Puts the right checksum behind a body.
Bytes Sealed(Bytes body) {
  const Crc16 crc = CalcCrc16(body);
  body.push_back(crc.Low);
  body.push_back(crc.High);
  return body;
}

// A reply that passed every check.
void CheckTaken(const Bytes& reply, const Request& request, Function function, int count) {
  Require(static_cast<int>(reply.size()) >= ReplyLength(function, static_cast<float>(count)),
          "nothing short is taken");
  Require(std::equal(reply.begin(), reply.begin() + 2, request.begin()), "only ours is taken");
  Require(Sealed({reply.begin(), reply.end() - 2}) == reply, "only the right checksum is taken");
  if (function == Function::Write) {
    return Require(std::equal(reply.begin(), reply.begin() + 6, request.begin()), "the echo");
  }
  const std::vector<float> values = DecodeRegisters(reply, count);
  Require(values.size() == static_cast<std::size_t>(count), "all registers");
  for (int i = 0; i < count; ++i) {
    const int raw = RawValue(reply, i);
    const float value = values[static_cast<std::size_t>(i)];
    Require(value == static_cast<float>(raw > 32767 ? raw - 65536 : raw), "the signed view");
  }
}

void CheckOne(FuzzedDataProvider& input) {
  const auto address = input.ConsumeIntegral<std::uint8_t>();
  const Function function = input.ConsumeBool() ? Function::Read : Function::Write;
  const auto number = static_cast<Register>(input.ConsumeIntegral<std::uint16_t>());
  const int count = function == Function::Read ? input.ConsumeIntegralInRange(0, 600)
                                               : input.ConsumeIntegral<std::uint16_t>();
  const bool ours = input.ConsumeBool();
  const bool sealed = input.ConsumeBool();
  const Request request =
      BuildRequest(address, function, number, static_cast<float>(count)).value();
  RequestHeader header{};
  std::copy_n(request.begin(), header.size(), header.begin());

  Bytes reply = input.ConsumeRemainingBytes<std::uint8_t>();
  if (ours) reply.insert(reply.begin(), request.begin(), request.begin() + 2);
  if (sealed) reply = Sealed(reply);
  const ReplyFault fault = CheckReply(reply, address, function, header, count);
  if (fault == ReplyFault::None) CheckTaken(reply, request, function, count);
  if (ours && reply.size() >= 5) Require(fault != ReplyFault::NotOurs, "what is ours is seen");
  if (sealed) Require(fault != ReplyFault::WrongCrc, "a right checksum is seen");
}

}  // namespace
}  // namespace gainsmith::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  FuzzedDataProvider input(bytes, count);
  gainsmith::fuzz::CheckOne(input);
  return 0;
}
