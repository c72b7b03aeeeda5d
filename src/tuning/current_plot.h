// The picture of the current loop window: one trace of 200 samples, with a zoom of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/control.h"

namespace gainsmith {

constexpr int CurrentSamples = 200;
constexpr int CurrentZoomLevels = 15;

// Plot units are samples across and amperes upwards. Until ShowTrace there is nothing to draw and
// the mouse finds nothing to zoom.
struct CurrentPlot {
  // --- State.

  // Amperes.
  float TestCurrent = 0;
  std::array<float, CurrentSamples> MeasuredCurrent{};
  // 0 (the full view) to 14; entry of the four arrays.
  std::int16_t ZoomLevel = 0;
  // Visible part in samples, and its top edge and (negative) height in amperes.
  std::array<std::int16_t, CurrentZoomLevels> ZoomLeft{};
  std::array<std::int16_t, CurrentZoomLevels> ZoomWidth{};
  std::array<float, CurrentZoomLevels> ZoomTop{};
  std::array<float, CurrentZoomLevels> ZoomHeight{};
  float DragStartX = 0;
  float DragStartY = 0;
  float DragEndX = 0;
  float DragEndY = 0;
  // A rubber band from the drag's start to its end is to be drawn.
  bool Dragging = false;

  // --- Operations.

  // No trace, no zoom: a window that has just been opened.
  void Reset(PictureBox& picture);
  // Takes a recording (signed counts, 1024 to the ampere) and shows all of it, three times the
  // test current up and down.
  void ShowTrace(const std::array<float, CurrentSamples>& counts, float testCurrent,
                 PictureBox& picture);
  [[nodiscard]] bool HasTrace() const { return trace_ != 0; }
  [[nodiscard]] PictureScale View() const;

  // The mouse on the picture, in plot units.
  void MouseDown(int button, float x, float y);
  void MouseMove(int button, float x, float y);
  void MouseUp(int button, float x, float y);

  // Draws the picture anew; does nothing while it would come out the same.
  void Redraw(PictureBox& picture);

 private:
  // What a drawing shows, as far as it can change.
  struct Drawing {
    std::uint64_t Trace;
    std::int16_t Level;
    bool Dragging;
    std::array<float, 4> Band;
    bool operator==(const Drawing&) const = default;
  };

  void ZoomIn(float spanX, float spanY);
  void DrawTrace(PictureBox& picture) const;
  void WriteAxes(PictureBox& picture) const;
  void DrawRubberBand(PictureBox& picture) const;

  // Number of the trace shown; 0: none.
  std::uint64_t trace_ = 0;
  std::optional<Drawing> drawn_;
};

}  // namespace gainsmith
