// Faults of the simulated drive: what can go wrong on the line, when, and how it spoils a reply.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace gainsmith::sim {

// EffectOf says what each does. Those up to ResetInTest break a reply or keep it back; of those
// behind it, late-by, echo and wrong-register may give a host that can't tell a wrong value as a
// good one.
enum class Fault {
  Silent,
  DropNth,
  LateReply,
  SplitReply,
  BadCrc,
  WrongAddress,
  WrongCount,
  WrongEcho,
  ExtraByte,
  Garbage,
  HangUp,
  ResetInTest,
  LostByte,
  DoubledByte,
  LateBy,
  Unsolicited,
  Echo,
  StuckLine,
  WrongBaud,
  RefusedWrite,
  WrongRegister,
  PowerLossInStore,
};
constexpr std::size_t FaultCount = 22;

// Names for the command line: "silent", "drop-nth", "late-by" and so on.
std::string_view NameOf(Fault fault);
// Its usual value with what it counts, "700 ms"; empty for a fault without a value.
std::string ValueTextOf(Fault fault);
// What it does, on half a line.
std::string_view EffectOf(Fault fault);

// Which of the requests that a fault can spoil it hits. They are counted from the injection on,
// and only those that it can spoil: wrong-count and wrong-register count reads, wrong-echo and
// refused-write writes, power-loss-in-store the stores, reset-in-test the requests that come while
// the motor moves or a recording runs, the others every request to this drive.
struct Hits {
  enum class Which { All, Next, Every, Only };
  Which Kind = Which::All;
  int N = 1;  // at least 1; without meaning for All

  static Hits All() { return {Which::All, 1}; }
  static Hits Next(int n) { return {Which::Next, n}; }    // the next n
  static Hits Every(int n) { return {Which::Every, n}; }  // the n-th, the 2n-th ...
  static Hits Only(int k) { return {Which::Only, k}; }    // the k-th and no other
};

struct FaultOrder {
  Fault Kind = Fault::Silent;
  Hits When;
  std::optional<int> Value;  // empty: the usual one
};

// "NAME" hits all, "NAME:N" the next N, "NAME:/N" every N-th, "NAME:@K" the K-th alone. For
// drop-nth, "drop-nth:N" is every N-th and the bare name every third. A fault with a value takes it
// behind the name, "late-by=250:/3". Nothing for any other text.
std::optional<FaultOrder> ParseFault(std::string_view text);

// What a request is, as far as faults look at it.
struct Occasion {
  bool IsWrite = false;
  bool UnderTest = false;
  bool IsStore = false;
};

// The faults that hit one request, each with its value.
struct FaultSet {
  std::bitset<FaultCount> Set;
  std::array<int, FaultCount> Values{};
};
inline bool Has(const FaultSet& faults, Fault fault) {
  return faults.Set[static_cast<std::size_t>(fault)];
}
inline int ValueOf(const FaultSet& faults, Fault fault) {
  return faults.Values[static_cast<std::size_t>(fault)];
}

// The faults in force. A fault injected again replaces its earlier order.
class FaultPlan {
 public:
  void Inject(const FaultOrder& order);
  void Clear() { rules_.clear(); }
  // Counts a request, and says which faults hit it.
  FaultSet Strike(const Occasion& occasion);

 private:
  struct Rule {
    FaultOrder Order;
    int Seen = 0;
  };
  std::vector<Rule> rules_;
};

// Spoils a sealed reply by those faults of the set that change its bytes.
void Spoil(std::vector<std::uint8_t>& reply, const FaultSet& faults, std::mt19937& random);

// Noise of so many bytes.
std::vector<std::uint8_t> NoiseBytes(int count, std::mt19937& random);

}  // namespace gainsmith::sim
