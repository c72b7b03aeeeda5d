// Faults of the simulated drive: what can go wrong on the line, when, and how it spoils a reply.
#include "simulator/wire/faults.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

namespace {

constexpr std::array<std::string_view, FaultCount> Names{
    "silent",      "drop-nth",   "late-reply", "split-reply", "bad-crc", "wrong-address",
    "wrong-count", "wrong-echo", "extra-byte", "garbage",     "hang-up", "reset-in-test"};
constexpr int DefaultDropEvery = 3;

bool CanSpoil(Fault fault, const Occasion& occasion) {
  switch (fault) {
    case Fault::WrongCount:
      return !occasion.IsWrite;
    case Fault::WrongEcho:
      return occasion.IsWrite;
    case Fault::ResetInTest:
      return occasion.UnderTest;
    default:
      return true;
  }
}

// The seen-th occasion of a rule, counted from 1.
bool IsHit(const Hits& hits, int seen) {
  switch (hits.Kind) {
    case Hits::Which::All:
      return true;
    case Hits::Which::Next:
      return seen <= hits.N;
    case Hits::Which::Every:
      return seen % hits.N == 0;
    case Hits::Which::Only:
      return seen == hits.N;
  }
  return false;
}

void Reseal(std::vector<std::uint8_t>& frame) {
  frame.pop_back();
  frame.pop_back();
  Seal(frame);
}

std::uint8_t RandomByte(std::mt19937& random) { return static_cast<std::uint8_t>(random() & 0xFF); }

std::optional<Hits> ParseHits(Fault fault, std::string_view text) {
  Hits::Which which = fault == Fault::DropNth ? Hits::Which::Every : Hits::Which::Next;
  if (text.starts_with('/')) which = Hits::Which::Every;
  if (text.starts_with('@')) which = Hits::Which::Only;
  if (text.starts_with('/') || text.starts_with('@')) text.remove_prefix(1);
  int n = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (error != std::errc() || end != text.data() + text.size() || n < 1) return std::nullopt;
  return Hits{which, n};
}

}  // namespace

std::string_view NameOf(Fault fault) { return Names[static_cast<std::size_t>(fault)]; }

std::span<const std::string_view> FaultNames() { return Names; }

std::optional<FaultOrder> ParseFault(std::string_view text) {
  const std::size_t colon = text.find(':');
  const auto found = std::find(Names.begin(), Names.end(), text.substr(0, colon));
  if (found == Names.end()) return std::nullopt;
  const auto fault = static_cast<Fault>(found - Names.begin());
  if (colon == std::string_view::npos) {
    return FaultOrder{fault, fault == Fault::DropNth ? Hits::Every(DefaultDropEvery) : Hits::All()};
  }
  const std::optional<Hits> hits = ParseHits(fault, text.substr(colon + 1));
  if (!hits) return std::nullopt;
  return FaultOrder{fault, *hits};
}

void FaultPlan::Inject(const FaultOrder& order) {
  std::erase_if(rules_, [&](const Rule& rule) { return rule.Order.Kind == order.Kind; });
  rules_.push_back({order});
}

FaultSet FaultPlan::Strike(const Occasion& occasion) {
  FaultSet faults;
  for (Rule& rule : rules_) {
    if (!CanSpoil(rule.Order.Kind, occasion)) continue;
    ++rule.Seen;
    if (IsHit(rule.Order.When, rule.Seen)) faults.set(static_cast<std::size_t>(rule.Order.Kind));
  }
  std::erase_if(rules_, [](const Rule& rule) {
    const Hits& hits = rule.Order.When;
    const bool ends = hits.Kind == Hits::Which::Next || hits.Kind == Hits::Which::Only;
    return ends && rule.Seen >= hits.N;
  });
  return faults;
}

void Spoil(std::vector<std::uint8_t>& reply, const FaultSet& faults, std::mt19937& random) {
  if (Has(faults, Fault::WrongAddress)) {
    reply[0] ^= 0x01;
    Reseal(reply);
  }
  if (Has(faults, Fault::WrongCount)) {
    reply[2] ^= 0x02;
    Reseal(reply);
  }
  if (Has(faults, Fault::WrongEcho)) {
    reply[reply.size() - 3] ^= 0x01;
    Reseal(reply);
  }
  if (Has(faults, Fault::BadCrc)) reply.back() ^= 0x01;
  if (Has(faults, Fault::Garbage)) {
    const std::uint8_t address = reply[0];
    for (std::uint8_t& byte : reply) byte = RandomByte(random);
    // Noise must not be a good reply by chance.
    if (reply[0] == address) reply[0] ^= 0xFF;
  }
  if (Has(faults, Fault::ExtraByte)) reply.push_back(RandomByte(random));
}

}  // namespace gainsmith::sim
