// Faults of the simulated drive: what can go wrong on the line, when, and how it spoils a reply.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace gainsmith::sim {

enum class Fault {
  Silent,        // the drive neither hears nor answers
  DropNth,       // the drive obeys, its reply is lost
  LateReply,     // the reply is complete only after the host's first look, before its second
  SplitReply,    // the second half comes as late as a late reply
  BadCrc,        // last checksum byte wrong
  WrongAddress,  // another device address, checksum right
  WrongCount,    // reads: another byte count, length and checksum right
  WrongEcho,     // writes: another value in the echo, checksum right
  ExtraByte,     // one byte more behind a good reply
  Garbage,       // noise of the same length
  HangUp,        // the device goes away
  ResetInTest,   // the drive restarts while it moves or records
};
constexpr std::size_t FaultCount = 12;
using FaultSet = std::bitset<FaultCount>;

// Names for the command line: "silent", "drop-nth", "late-reply" and so on.
std::string_view NameOf(Fault fault);
std::span<const std::string_view> FaultNames();

// Which of the requests that a fault can spoil it hits. They are counted from the injection on,
// and only those that it can spoil: wrong-count counts reads, wrong-echo writes, reset-in-test the
// requests that come while the motor moves or a recording runs, the others every request to this
// drive.
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
};

// "NAME" hits all, "NAME:N" the next N, "NAME:/N" every N-th, "NAME:@K" the K-th alone. For
// drop-nth, "drop-nth:N" is every N-th and the bare name every third. Nothing for any other text.
std::optional<FaultOrder> ParseFault(std::string_view text);

// What a request is, as far as faults look at it.
struct Occasion {
  bool IsWrite = false;
  bool UnderTest = false;
};

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

constexpr bool Has(const FaultSet& faults, Fault fault) {
  return faults[static_cast<std::size_t>(fault)];
}

}  // namespace gainsmith::sim
