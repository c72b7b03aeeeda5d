// Form5, "Scope": a slow oscilloscope on the drive's current, velocity and position error.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "link/link.h"
#include "params/parameter_store.h"
#include "platform/world.h"
#include "shell/shell_state.h"
#include "trace/fft.h"
#include "trace/plot.h"
#include "trace/trace_state.h"

namespace gainsmith {

// Records again and again while something else moves the motor, and shows each recording whole;
// after a stop it can show the spectrum of the velocity instead. It starts no motion of its own.
// Shown modal. It cannot be closed while a cycle runs; a lost link is told once and closes it.
struct Form5 : Window {
  // Channels of Check1; the number 0 is not in use.
  enum Channel : std::size_t { Current = 1, Velocity = 2, PositionError = 3, ChannelCount = 4 };

  static constexpr const char* StartCaption = "Start";
  static constexpr const char* StopCaption = "Stop";

  Form5(World& world, Link& link, ParameterStore& params, ShellState& shell, TraceState& trace);

  // --- Controls.
  gainsmith::Frame Frame2;
  gainsmith::Plot Plot;
  gainsmith::Frame Frame1;
  // Colour swatches without action.
  std::array<Button, 3> Command4;
  std::array<CheckBox, ChannelCount> Check1;
  Label Label2;
  ComboBox Combo1;
  Button Command1;
  CheckBox Check2;
  // The capture cycle. The main window's command turns it on and off, too.
  Timer Timer1;
  // Tells a failed load.
  Timer err;

  // --- State.

  // Ends the cycle under way at its next test, and drops what it has recorded.
  bool StopRequested = false;
  // The last upload gave up on a block.
  bool TraceBlockFailed = false;
  // What the last spectrum was made of; the transform has overwritten it.
  FftArray FftInput{};

  // --- Events.
  void Form_Load() override;
  bool Form_Unload() override;
  void Command1_Click();
  void Check1_Click(Channel channel);
  void Check2_Click();
  void Timer1_Timer();
  void err_Timer();

 private:
  // What a handler that waits began in: its errand, and the run of the last Start click.
  class ScopeRun {
   public:
    explicit ScopeRun(Form5& scope, Errand::Of of = Errand::Of::Handler)
        : errand_(scope.link_, scope, of), scope_(scope), start_(scope.starts_) {}
    [[nodiscard]] const Errand& Of() const { return errand_; }
    // The window was closed.
    [[nodiscard]] bool Closed() const { return errand_.Over(); }
    // It was closed, or a new Start has overtaken the run: the handler gives up.
    [[nodiscard]] bool Over() const { return Closed() || start_ != scope_.starts_; }

   private:
    Errand errand_;
    const Form5& scope_;
    std::uint64_t start_;
  };

  void BuildDesign();
  // Captions and states of a window just made.
  void ResetDesign();
  void ConnectEvents();
  // What may be changed while no cycle runs; the button apart.
  void EnableSetup(bool enabled);
  void EnableChannels(bool enabled);

  bool ReadEncoderCounts(const ScopeRun& run);
  bool ChooseTraceKind(const ScopeRun& run);
  // Leaves the message to `err`.
  void FailLoad();

  void StartScope();
  void StopScope();

  // True when the cycle ends here: closed, stopped or overtaken.
  bool EndsCycle(const ScopeRun& run);
  // Each gives false when the cycle has come to its end.
  bool Arm(const ScopeRun& run);
  bool AwaitRecording(const ScopeRun& run);
  bool Upload(const ScopeRun& run, std::vector<float>& words);
  void ShowRecording(const std::vector<float>& words);

  void ShowSpectrum();
  void ShowTraces();

  // The message; then the window closes.
  void ReportLinkFailure(const ScopeRun& run);

  World& world_;
  Link& link_;
  ParameterStore& params_;
  ShellState& shell_;
  TraceState& trace_;
  // Start clicks so far.
  std::uint64_t starts_ = 0;
};

}  // namespace gainsmith
