// A plot with what its window would give it, and a capture to show.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "trace/capture.h"
#include "trace/plot.h"

namespace gainsmith::test {

struct PlotBench {
  explicit PlotBench(const PlotDescription& description)
      : plot(description, trace, linkIdle, combo1, &statusBar1) {
    FillTraceTimes(combo1);
  }

  // 90 pulses of position error, 300 rpm and 1 A at sample 7; axes of 200 pulses, 400 rpm, 2 A.
  void Capture() {
    const int channels = plot.Description.ChannelCount;
    trace.SetTraceTime(20);
    trace.ShowRecordedChannels(channels);
    std::vector<float> words;
    for (float peak : {90.0F, 200.0F, 1024.0F}) {
      if (channels == 2 && words.empty() && peak == 90) continue;
      std::vector<float> channel(ChannelSamples);
      channel[7] = peak;
      words.insert(words.end(), channel.begin(), channel.end());
    }
    SplitTrace(trace, words, channels);
    plot.CaptureHaveData = true;
    plot.SetAxisLabels();
    plot.Form_Resize();
  }

  void Drag(float x1, float y1, float x2, float y2) {
    plot.Picture1.OnMouseDown(LeftButton, x1, y1);
    plot.Picture1.OnMouseMove(LeftButton, x2, y2);
    plot.Picture1.OnMouseUp(LeftButton, x2, y2);
  }
  void Click(float x, float y) {
    plot.Picture1.OnMouseDown(LeftButton, x, y);
    plot.Picture1.OnMouseUp(LeftButton, x, y);
  }

  TraceState trace;
  bool linkIdle = true;
  ComboBox combo1;
  StatusBar statusBar1;
  Plot plot;
};

}  // namespace gainsmith::test
