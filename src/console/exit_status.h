// How gainsmithctl ends, for the scripts that call it.
#pragma once

namespace gainsmith {

enum class ExitStatus {
  Done = 0,
  // What was compared differs; of a load or a reset: the drive gives back another value than it
  // was sent.
  Different = 1,
  // Bad command line, no such port, bad file, no consent, and all that has no status of its own.
  Trouble = 2,
  // A window refused a value.
  Refused = 3,
  // The drive does not answer, or no longer.
  LostLink = 4,
  // A signal ended it.
  Interrupted = 5,
};

}  // namespace gainsmith
