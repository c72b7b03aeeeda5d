// The spectrum on the plot: its axes and its curve.
#pragma once

#include "platform/control.h"
#include "trace/axis_labels.h"
#include "trace/fft.h"

namespace gainsmith {

struct SpectrumAxes {
  // Hz, from 0 to about half the sample rate: the labels are round, the top of the axis need not.
  AxisTexts Frequency;
  AxisTexts Energy;
  // The value at the top of the plot.
  float SpectrumTop = 0;
};

// The axes for a capture with `sampleDivider`; of a trace time above 1000 ms all frequencies are 0.
SpectrumAxes SpectrumAxesOf(const FftArray& spectrum, float sampleDivider);

// Draws bins 0 to 64 in a scale of their own, bin numbers from left to right.
void DrawSpectrum(PictureBox& picture, const FftArray& spectrum, float spectrumTop);

}  // namespace gainsmith
