// velocityModeTune, "Velocity Mode": the velocity loop tuning window.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "link/link.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/shell_state.h"
#include "trace/plot.h"
#include "trace/trace_state.h"
#include "tuning/run_scheme.h"

namespace gainsmith {

// Runs a back-and-forth speed test on the drive and plots its recordings while it runs. The gains
// stay live meanwhile: Enter in one of them writes it at once. Shown modal, by a caller that has
// cleared TraceState::ClosingPositionWindow.
struct velocityModeTune : Window {
  // Fields of Text1; the numbers between them are not in use.
  enum Field : std::size_t {
    Interval = 0,
    RepeatTimes = 1,
    Vp = 3,
    Kaff = 7,
    TopSpeed = 9,
    Acceleration = 10,
    RunningTime = 11,
    Vi = 14,
    FieldCount = 15,
  };
  // Channels of Check1 and Command4; only two of them are recorded.
  enum Channel : std::size_t { IErr, IBak, IRef, VErr, VBak, VRef, ChannelCount };

  struct Gain {
    Field Text;
    Register Target;
    gainsmith::Slot Slot;
    // What Enter makes of a value of 0 or less, or below 0.
    float Smallest;
  };
  static constexpr std::size_t GainCount = 3;
  static const std::array<Gain, GainCount> Gains;

  velocityModeTune(World& world, Link& link, ParameterStore& params, ShellState& shell,
                   TraceState& trace);

  // --- Controls.
  gainsmith::Frame Frame2;
  gainsmith::Tabs SSTab1;
  std::array<Label, FieldCount> Label1;
  std::array<TextBox, FieldCount> Text1;
  Label Label2;
  ComboBox Combo1;
  std::array<CheckBox, ChannelCount> Check1;
  std::array<Button, ChannelCount> Command4;
  Button Command1;
  StatusBar StatusBar1;
  gainsmith::Plot Plot;
  Timer DataSource;
  Timer err;

  // --- State.
  RunScheme Run;
  // Planned length of the whole test, in ms.
  float VelocityTestMs = 0;
  // The gains as last read from or written to the drive, in the order of Gains.
  std::array<float, GainCount> GainCopies{};
  // What Enter in a motion field has put there; survives the closing of the window.
  struct {
    float TopSpeed = 300;      // rpm
    float Acceleration = 100;  // r/s/s
    float RunningTimeMs = 2000;
    float IntervalMs = 100;
    float RepeatTimes = 1;
  } Remembered;

  // --- Events.
  void Form_Load() override;
  bool Form_Unload() override;
  void Command1_Click();
  // False drops the key.
  bool Text1_KeyPress(Field field, int key);
  void Check1_Click(Channel channel);
  void Command4_Click(Channel channel);
  void DataSource_Timer();

 private:
  using StepValue = RunScheme::StepValue;

  // velocity_design.cpp
  void BuildDesign();
  // Tips of the fields of the motion. `counts` are the pulses per revolution; 0: not known yet.
  void ExplainMotion(float counts);
  // Texts, states and colours of a window just made.
  void ResetDesign();

  // velocity_window.cpp
  void ConnectEvents();
  [[nodiscard]] double Number(Field field) const;
  float* RememberedOf(Field field);
  void WriteGainNow(std::size_t gain);
  // The gains in the drive, the motion of the last Start, and how well it was followed.
  [[nodiscard]] RunNotes NotesOfRun() const;

  // velocity_run.cpp
  void ShowCaption(const char* caption);
  void EnableMotionFields(bool enabled);

  void StartTest(const Errand& errand);
  void StopTest(const Errand& errand);
  // The stop word: see RunScheme::StopTest.
  bool StopVelocityTest(const Errand& errand) { return Run.StopTest(errand); }
  RunScheme::Result WriteStartList(const Errand& errand);
  StepValue GainIfChanged(std::size_t gain);
  // The value where `good`; else the field takes `fallback`, with the message of a bad value.
  StepValue Checked(Field field, float word, bool good, const char* fallback);
  void SayInvalidValue(const std::string& text);
  // Names the gains of this Start that went out before.
  void SayGainRefused(std::size_t gain);

  void readdata(const Errand& errand);
  void ShowRecording();

  World& world_;
  Link& link_;
  ParameterStore& params_;
  ShellState& shell_;
  TraceState& trace_;
  // The gains that the present Start has sent.
  std::vector<std::size_t> sentGains_;
  // What the last Start took from the motion fields.
  std::array<double, FieldCount> motion_{};
};

}  // namespace gainsmith
