// A plot with what its window would give it, and a capture to show.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "trace/capture.h"
#include "trace/plot.h"
#include "trace/zoom.h"

namespace gainsmith::test {

// The words of a recording: each channel has its peak at sample 7 and 0 elsewhere.
inline std::vector<float> Recording(const std::vector<float>& peaks) {
  std::vector<float> words(peaks.size() * ChannelSamples);
  for (std::size_t i = 0; i < peaks.size(); ++i) words[i * ChannelSamples + 7] = peaks[i];
  return words;
}

struct PlotBench {
  explicit PlotBench(const PlotDescription& description)
      : plot(description, trace, linkIdle, combo1, &statusBar1) {
    FillTraceTimes(combo1);
  }

  // 90 pulses of position error, 300 rpm and 1 A at sample 7; axes of 200 pulses, 400 rpm, 2 A.
  void Capture() {
    const bool three = plot.Description.ChannelCount == 3;
    trace.SetTraceTime(20);
    trace.ShowRecordedChannels(plot.Description.ChannelCount);
    SplitTrace(trace, three ? Recording({90, 200, 1024}) : Recording({200, 1024}),
               plot.Description.ChannelCount);
    plot.CaptureHaveData = true;
    plot.SetAxisLabels();
    plot.Form_Resize();
  }

  void Drag(const DragEnds& drag) {
    plot.Picture1.OnMouseDown(LeftButton, drag.StartX, drag.StartY);
    plot.Picture1.OnMouseMove(LeftButton, drag.EndX, drag.EndY);
    plot.Picture1.OnMouseUp(LeftButton, drag.EndX, drag.EndY);
  }
  void Click(float x, float y, int button = LeftButton) {
    plot.Picture1.OnMouseDown(button, x, y);
    plot.Picture1.OnMouseUp(button, x, y);
  }
  void Hover(float x, float y) { plot.Picture1.OnMouseMove(NoButton, x, y); }

  // The zoom level, the last labels of current, time, velocity and position, and how much is drawn.
  std::string View() const {
    std::string view = std::to_string(plot.ZoomLevel) + ":";
    for (const LabelColumn* column : {&plot.Label3, &plot.Label4, &plot.Label6, &plot.Label5}) {
      view += " " + column->back().Caption;
    }
    return view + ", " + std::to_string(plot.Picture1.Lines.size()) + " lines";
  }

  // Every label, column by column: current, time, velocity and position.
  std::vector<std::string> Columns() const {
    std::vector<std::string> texts;
    for (const LabelColumn* column : {&plot.Label3, &plot.Label4, &plot.Label6, &plot.Label5}) {
      std::string& text = texts.emplace_back();
      for (const Label& label : *column) text += (text.empty() ? "" : " ") + label.Caption;
    }
    return texts;
  }

  TraceState trace;
  bool linkIdle = true;
  ComboBox combo1;
  StatusBar statusBar1;
  Plot plot;
};

}  // namespace gainsmith::test
