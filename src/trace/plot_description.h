// What tells the plots of the three windows apart: data, no behaviour.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "trace/trace_state.h"

namespace gainsmith {

// What the status bar says of the pointer's place.
enum class ReadOut { None, Velocity, Position };

struct PlotDescription {
  // Channels of a recording: 2 or 3 (with position error, and a position column).
  int ChannelCount;
  // In drawing order: later ones are drawn over earlier ones.
  std::span<const Signal> Channels;
  // The plot of a test: it stays empty while TraceReadFailed is true, takes the mouse once a test
  // was started, its time axis is that of the chosen trace time, and the label columns take the
  // colours of the traces. Otherwise the scope's.
  bool FollowsTest;
  // The user chooses which position series are drawn; otherwise it is always the error.
  bool ChoosesPosition;
  // A press of the mouse sets the vertical scale and redraws.
  bool RedrawsOnPress;
  PlotColours TraceState::*Colours;
  // Where the colour of the current's label column comes from.
  PlotColours TraceState::*CurrentColumnColours;
  ReadOut Pointer;
  // Status bar panels until the pointer first moves over a capture.
  std::span<const std::string_view> Panels;
  // Decimals of the current axis before the first capture.
  int StartDecimals;
  std::string_view TimeCaption;      // Label8
  std::string_view CurrentCaption;   // Label9
  std::string_view VelocityCaption;  // Label10
};

namespace plots {

inline constexpr std::array VelocityChannels{Signal::VErr, Signal::VBak, Signal::VRef,
                                             Signal::IErr, Signal::IBak, Signal::IRef};
inline constexpr std::array PositionChannels{Signal::PErr, Signal::PBak, Signal::PRef,
                                             Signal::VErr, Signal::VBak, Signal::VRef,
                                             Signal::IErr, Signal::IBak, Signal::IRef};
inline constexpr std::array ScopeChannels{Signal::PErr, Signal::VBak, Signal::IBak};

// Current, speed, time; with a position error before the time.
inline constexpr std::array<std::string_view, 7> VelocityPanels{
    "", "电流:", "mA", "速度:", "r/min", "时间:", "ms"};
inline constexpr std::array<std::string_view, 9> PositionPanels{
    "", "电流:", " A", "速度:", "r/min", "位置误差:", "p", "时间:", "ms"};

}  // namespace plots

inline constexpr PlotDescription VelocityPlot{
    .ChannelCount = 2,
    .Channels = plots::VelocityChannels,
    .FollowsTest = true,
    .ChoosesPosition = false,
    .RedrawsOnPress = true,
    .Colours = &TraceState::VelocityColours,
    .CurrentColumnColours = &TraceState::PositionColours,
    .Pointer = ReadOut::Velocity,
    .Panels = plots::VelocityPanels,
    .StartDecimals = 2,
    .TimeCaption = "Time(ms)",
    .CurrentCaption = "I_Bak(A)",
    .VelocityCaption = "V_Bak(rpm)",
};

inline constexpr PlotDescription PositionPlot{
    .ChannelCount = 3,
    .Channels = plots::PositionChannels,
    .FollowsTest = true,
    .ChoosesPosition = true,
    .RedrawsOnPress = false,
    .Colours = &TraceState::PositionColours,
    .CurrentColumnColours = &TraceState::PositionColours,
    .Pointer = ReadOut::Position,
    .Panels = plots::PositionPanels,
    .StartDecimals = 2,
    .TimeCaption = "Time (ms)",
    .CurrentCaption = "Current (A)",
    .VelocityCaption = "Velocity (rpm)",
};

inline constexpr PlotDescription ScopePlot{
    .ChannelCount = 3,
    .Channels = plots::ScopeChannels,
    .FollowsTest = false,
    .ChoosesPosition = false,
    .RedrawsOnPress = false,
    .Colours = &TraceState::ScopeColours,
    .CurrentColumnColours = &TraceState::ScopeColours,
    .Pointer = ReadOut::None,
    .Panels = {},
    .StartDecimals = 3,
    .TimeCaption = "Time(ms)",
    .CurrentCaption = "Current (A)",
    .VelocityCaption = "Velocity (rpm)",
};

}  // namespace gainsmith
