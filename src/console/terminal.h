// Terminal: what the user of gainsmithctl sees and answers.
//
// Data goes to standard output, all else to standard error, with a bar of progress where that is a
// terminal.
#pragma once

#include <string>

namespace gainsmith {

class Terminal {
 public:
  // `quiet` leaves only troubles on standard error.
  explicit Terminal(bool quiet);
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() { EndProgress(); }

  // --- Standard output.

  void Print(const std::string& line);
  // False when something of it could not be written (a full disk, say).
  bool Flush();

  // --- Standard error.

  void Note(const std::string& line);
  void Trouble(const std::string& line);
  // `what` is as "Reading settings: 12 of 44". Nothing where it was shown last.
  void Progress(const std::string& what, int done, int total);
  void EndProgress();

  // --- Questions.

  // Somebody is there to answer.
  [[nodiscard]] bool CanAsk() const;
  // Waits for a line that begins with y or Y. Also false at the end of the input, and when
  // `interruptHandle` can be read.
  bool Ask(const std::string& question, int interruptHandle);

 private:
  bool quiet_;
  bool showsProgress_;
  bool colour_;
  std::string progress_;
};

}  // namespace gainsmith
