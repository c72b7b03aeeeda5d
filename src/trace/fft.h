// The spectrum of the velocity: a 128-point transform and the choices of its axes.
#pragma once

#include <array>

#include "trace/trace_state.h"

namespace gainsmith {

using FftArray = std::array<float, SpectrumBins>;

// Samples 70 to 197 of a velocity trace: what the transform sees of a capture.
FftArray FftInputOf(const TraceArray& velocity);

// Magnitudes of the forward transform of `data`, without window, mean removal or normalisation: a
// tone of amplitude a on a whole bin gives 64 a there. Its twiddle factors have four decimals, so a
// pure tone leaves a trace of itself in the other bins. Destroys `data`.
FftArray Fft128(FftArray& data);

// Samples per second of a capture with `divider`, in whole Hz; 0 for all but 1 to 10.
float SampleRate(float divider);

// The largest of bins 2 to 64: the mean and the lowest frequency do not set the scale.
float LargestBin(const FftArray& spectrum);

// `x` (0 or more) up to the next multiple of 50 strictly above its whole part, the fraction kept:
// 1234.5 gives 1250.5, 50 gives 100.
float RoundUpToFifty(float x);

}  // namespace gainsmith
