// Form3, "Position Mode": the position loop tuning window, with jog.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "link/link.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/progress_window.h"
#include "shell/shell_state.h"
#include "trace/plot.h"
#include "trace/trace_state.h"
#include "tuning/run_scheme.h"

namespace gainsmith {

// Shows both gain sets of the drive, sets up its pulse generator for a forth-and-back move, starts
// it, and plots the recordings while the motor moves. Every field is checked before anything is
// sent; gains are written at Start only. Shown modal, by a caller that has cleared
// TraceState::ClosingPositionWindow.
struct Form3 : Window {
  // Fields of Text1; the numbers between them are not in use.
  enum Field : std::size_t {
    PositionKp = 0,  // Position Loop 1, the high speed gains
    Kvff = 1,
    PositionKd = 2,
    VelocityKp = 3,
    Velocity = 9,
    Acceleration = 10,
    Distance = 11,
    Interval = 12,
    RepeatTimes = 13,
    VelocityKi = 14,
    LowPositionKp = 15,  // Position Loop 2, the low speed gains
    LowPositionKi = 16,
    LowPositionKd = 17,
    LowVelocityKp = 18,
    LowVelocityKi = 19,
    LowKvff = 20,  // only shown
    LowKaff = 21,  // only shown
    FieldCount = 22,
  };
  enum Channel : std::size_t { IErr, IBak, IRef, VErr, VBak, VRef, PErr, PBak, PRef, ChannelCount };
  // Run buttons: the one in sight, and one on each of three pages.
  enum RunButton : std::size_t { MotionStart, GainStart, CurveStart, MainStart, RunButtonCount };
  enum GroupFrame : std::size_t {
    HighPosition,
    HighVelocity,
    LowPosition,
    LowVelocity,
    Feedforward,
    GroupFrameCount
  };
  enum JogButton : std::size_t { Clockwise, CounterClockwise, JogButtonCount };
  // Values of JogState.
  static constexpr float JogSettled = 0;
  static constexpr float JogPressed = 1;
  static constexpr float JogReleased = 2;

  Form3(World& world, Link& link, ParameterStore& params, ShellState& shell, TraceState& trace,
        Form9& progress);

  // --- Controls.
  gainsmith::Frame Frame2;  // all of it
  gainsmith::Frame Frame3;  // pulse generator
  gainsmith::Frame Frame4;  // scope settings
  gainsmith::Frame Frame5;  // Position Loop 1
  gainsmith::Frame Frame6;  // Position Loop 2
  std::array<gainsmith::Frame, GroupFrameCount> Frame1;
  gainsmith::Tabs SSTab1;
  std::array<Label, FieldCount> Label1;  // 7 and 8 belong to the jog fields
  std::array<TextBox, FieldCount> Text1;
  Label Label7;
  TextBox Text5;  // Kaff of Position Loop 1
  Label Label2;
  ComboBox Combo1;
  std::array<CheckBox, ChannelCount> Check1;
  std::array<Button, ChannelCount> Command4;
  std::array<Button, RunButtonCount> Command1;
  TextBox Text2;    // jog speed
  TextBox Text3;    // jog acceleration
  Button Command2;  // jog one way
  Button Command3;  // and the other
  StatusBar StatusBar1;
  gainsmith::Plot Plot;
  Timer DataSource;
  Timer err;

  // --- State.
  RunScheme Run;
  // Planned length of the whole test, in ms.
  float PositionTestMs = 0;
  // The gains as last read from or written to the drive, by field.
  std::array<float, FieldCount> GainCopies{};
  float KaffCopy = 0;
  // The motion fields of the last Start; survive the closing of the window.
  struct {
    float Velocity = 300;      // rpm
    float Acceleration = 200;  // r/s/s
    float Distance = 40000;    // pulses
    float IntervalMs = 100;
  } Remembered;
  std::array<float, JogButtonCount> JogState{};

  // --- Events.
  void Form_Load() override;
  bool Form_Unload() override;
  void Command1_Click();
  void DataSource_Timer();
  void Check1_Click(Channel channel);
  void Command4_Click(std::size_t index);
  // False drops the key.
  bool Text2_KeyPress(int key);
  bool Text3_KeyPress(int key);
  void Command2_MouseDown() { PressJog(Clockwise); }
  void Command2_MouseUp() { ReleaseJog(Clockwise); }
  void Command3_MouseDown() { PressJog(CounterClockwise); }
  void Command3_MouseUp() { ReleaseJog(CounterClockwise); }

  // A jog button is held down.
  [[nodiscard]] bool JogHeld() const { return jogHeld_[Clockwise] || jogHeld_[CounterClockwise]; }

 private:
  // The numbers of the fields at a Start click. The fields stay open to the user while the gains
  // are written; what was checked is what is sent.
  struct Entries {
    std::array<double, FieldCount> Text1{};
    double Kaff = 0;
  };

  // position_design.cpp, position_pages.cpp
  void BuildDesign();
  void AddGainFrames();
  void AddMotionAndScopeFrames();
  void AddPages();
  // `counts` are the pulses per revolution; 0: not known yet.
  void AddFieldTips(float counts);
  void ConnectEvents();
  // Texts, states and colours of a window just made.
  void ResetDesign();

  // position_fields.cpp
  bool ReadGains(const Errand& errand);
  bool ReadGain(const Errand& errand, Register reg, Slot slot, float& copy, TextBox& text);
  [[nodiscard]] Entries TakeEntries() const;
  bool ValidateFields(const Entries& entries);
  // Whether the drive can take the words of the motion.
  bool ValidateWords(const Entries& entries);
  bool RefuseField(TextBox& field, const std::string& text);
  bool WriteChangedGains(const Errand& errand, const Entries& entries);
  bool WriteFieldIfChanged(const Errand& errand, const Entries& entries, std::size_t index);
  bool WriteKaff(const Errand& errand, const Entries& entries);
  float* RememberedOf(std::size_t index);
  // The gains in the drive, the motion of the last Start, and how well it was followed.
  [[nodiscard]] RunNotes NotesOfRun() const;

  // position_run.cpp
  void ShowCaption(const char* caption);
  void ShowRunColour(Colour colour) { Command1[MainStart].BackColor = colour; }
  void EnableFields(bool enabled);
  [[nodiscard]] float PlanMs(const Entries& entries) const;
  void StartTest(const Errand& errand);
  void StopTest(const Errand& errand);
  // The stop word: see RunScheme::StopTest.
  bool StopPositionTest(const Errand& errand, int pauseMs = 0) {
    return Run.StopTest(errand, pauseMs);
  }
  RunScheme::Result WriteStartList(const Errand& errand);
  // The caption, colour and fields of a window in which no test is wanted.
  void ShowStoppable();
  // Ends a Start that a jog has taken the motor from; the stop word waits for the release.
  void LeaveToJog();
  // The drive has been stopped behind the back of the handler that finds it.
  void ShowStopped();
  // The guard of the tick: true when it has ended the tick.
  bool StoppedInTick(const Errand& errand);
  void readdata(const Errand& errand);
  // Splits what was uploaded and draws it, with the position error on the position axis.
  void ShowRecording();

  // position_jog.cpp
  void PressJog(JogButton button);
  void ReleaseJog(JogButton button);
  void SetJogVelocity(const Errand& errand);
  void SetJogAcceleration(const Errand& errand);
  void SendJogWord(const Errand& errand, TextBox& field, Register reg, float word, bool good,
                   const char* fallback);
  void WriteJogStop(const Errand& errand);
  // The last word that went to the drive has set it jogging.
  [[nodiscard]] bool JogInForce() const;

  World& world_;
  Link& link_;
  ParameterStore& params_;
  ShellState& shell_;
  TraceState& trace_;
  Form9& progress_;
  Entries entries_;
  // The newest press of a jog button owns the motor.
  std::uint64_t jogPresses_ = 0;
  JogButton jogOwner_ = Clockwise;
  // Pressed and not yet released.
  std::array<bool, JogButtonCount> jogHeld_{};
};

}  // namespace gainsmith
