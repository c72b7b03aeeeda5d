// Faults of the simulated drive: what can go wrong on the line, when, and how it spoils a reply.
#include "simulator/wire/faults.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "simulator/wire/modbus_frame.h"

namespace gainsmith::sim {

namespace {

struct Traits {
  std::string_view Name;
  std::string_view Effect;
  std::string_view Value = {};
  int Usual = 0;
  int Most = 0;
};

constexpr std::array<Traits, FaultCount> AllTraits{{
    {"silent", "the drive neither hears nor answers"},
    {"drop-nth", "the drive obeys, its reply is lost"},
    {"late-reply", "the reply misses the host's first look, and makes its second"},
    {"split-reply", "the second half comes as late as a late reply"},
    {"bad-crc", "the last byte of the checksum is wrong"},
    {"wrong-address", "another device answers, checksum right"},
    {"wrong-count", "reads: another byte count, length and checksum right"},
    {"wrong-echo", "writes: another value in the echo, checksum right"},
    {"extra-byte", "one byte more behind a good reply"},
    {"garbage", "noise in the reply's length"},
    {"hang-up", "the device goes away"},
    {"reset-in-test", "the drive restarts while it moves or records"},
    {"lost-byte", "the byte at this place of the reply is lost", " ", 4, 255},
    {"doubled-byte", "the byte at this place of the reply comes twice", " ", 4, 255},
    {"late-by", "the reply is so late, and may fall into the next exchange", " ms", 700, 60'000},
    {"unsolicited", "so many bytes that nobody asked for, ahead of the reply", " bytes", 3, 1000},
    {"echo", "the request comes back first, as on two wires; also with silent"},
    {"stuck-line", "the line is held low: zeros for so long, nothing heard", " ms", 200, 60'000},
    {"wrong-baud", "the reply is sent at this speed, whatever the host's", " baud", 9600,
     1'000'000},
    {"refused-write", "a write is refused and changes nothing"},
    {"wrong-register", "reads: the value of a register so far behind it", " on", 1, 255},
    {"power-loss-in-store", "the power goes while the EEPROM is written: it is damaged"},
}};

const Traits& TraitsOf(Fault fault) { return AllTraits[static_cast<std::size_t>(fault)]; }

constexpr int DefaultDropEvery = 3;

bool CanSpoil(Fault fault, const Occasion& occasion) {
  switch (fault) {
    case Fault::WrongCount:
    case Fault::WrongRegister:
      return !occasion.IsWrite;
    case Fault::WrongEcho:
    case Fault::RefusedWrite:
      return occasion.IsWrite;
    case Fault::PowerLossInStore:
      return occasion.IsStore;
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

std::optional<int> ParseNumber(std::string_view text) {
  int n = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (error != std::errc() || end != text.data() + text.size() || n < 1) return std::nullopt;
  return n;
}

std::optional<Hits> ParseHits(Fault fault, std::string_view text) {
  Hits::Which which = fault == Fault::DropNth ? Hits::Which::Every : Hits::Which::Next;
  if (text.starts_with('/')) which = Hits::Which::Every;
  if (text.starts_with('@')) which = Hits::Which::Only;
  if (text.starts_with('/') || text.starts_with('@')) text.remove_prefix(1);
  const std::optional<int> n = ParseNumber(text);
  return n ? std::optional(Hits{which, *n}) : std::nullopt;
}

}  // namespace

std::string_view NameOf(Fault fault) { return TraitsOf(fault).Name; }

std::string ValueTextOf(Fault fault) {
  const Traits& traits = TraitsOf(fault);
  if (traits.Value.empty()) return {};
  return std::to_string(traits.Usual) + std::string(traits.Value);
}

std::string_view EffectOf(Fault fault) { return TraitsOf(fault).Effect; }

std::optional<FaultOrder> ParseFault(std::string_view text) {
  const std::size_t colon = text.find(':');
  const std::string_view head = text.substr(0, colon);
  const std::size_t equals = head.find('=');
  const auto found = std::find_if(AllTraits.begin(), AllTraits.end(), [&](const Traits& traits) {
    return traits.Name == head.substr(0, equals);
  });
  if (found == AllTraits.end()) return std::nullopt;

  FaultOrder order;
  order.Kind = static_cast<Fault>(found - AllTraits.begin());
  if (equals != std::string_view::npos) {
    order.Value = ParseNumber(head.substr(equals + 1));
    if (!order.Value || *order.Value > found->Most) return std::nullopt;
  }
  order.When = order.Kind == Fault::DropNth ? Hits::Every(DefaultDropEvery) : Hits::All();
  if (colon == std::string_view::npos) return order;
  const std::optional<Hits> hits = ParseHits(order.Kind, text.substr(colon + 1));
  if (!hits) return std::nullopt;
  order.When = *hits;
  return order;
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
    if (!IsHit(rule.Order.When, rule.Seen)) continue;
    const auto kind = static_cast<std::size_t>(rule.Order.Kind);
    faults.Set.set(kind);
    faults.Values[kind] = rule.Order.Value.value_or(AllTraits[kind].Usual);
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
  // Of a reply that has no such byte it is the last.
  const auto at = [&](Fault fault) {
    const auto place = static_cast<std::size_t>(ValueOf(faults, fault));
    return reply.begin() + static_cast<std::ptrdiff_t>(std::min(place, reply.size()) - 1);
  };
  if (Has(faults, Fault::DoubledByte)) {
    const auto place = at(Fault::DoubledByte);
    const std::uint8_t byte = *place;
    reply.insert(place, byte);
  }
  if (Has(faults, Fault::LostByte)) reply.erase(at(Fault::LostByte));
}

std::vector<std::uint8_t> NoiseBytes(int count, std::mt19937& random) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
  for (std::uint8_t& byte : bytes) byte = RandomByte(random);
  return bytes;
}

}  // namespace gainsmith::sim
