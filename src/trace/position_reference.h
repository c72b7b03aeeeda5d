// The position reference, which the drive does not record: worked out again on the computer.
#pragma once

#include "trace/trace_state.h"

namespace gainsmith {

// Runs the pulse generator's profile (ProfileSpeed and the words beside it) tick by tick and fills
// PRefTrace, and PBakTrace with reference minus PErrTrace. The motion begins with the sample after
// the sixth, as it does in the drive when a recording catches its start. Only 24 bits of the
// distance count. With a SampleDivider above 1 the last entry of both arrays stays 0.
void RegeneratePositionReference(TraceState& trace);

}  // namespace gainsmith
