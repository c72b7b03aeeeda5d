// RunScheme: one button that runs and stops a test, as the velocity and position windows share it.
//
// The button's caption is the state of the test and at once the stop request. Waiting lets events
// run, so the Stop branch of a click runs nested inside the waits of the Start branch or of a tick:
// it turns the caption back to "Start" and writes the stop word. The outer handler reads the
// caption after each of its exchanges, gives up by itself and writes the stop word once more.
//
// What keeps that sound:
// - A run command is never sent again once a stop was asked for, so that it cannot follow the stop
//   word on the line.
// - A Start click is taken only when the handlers of the last click have come to their end and no
//   stop word is on its way; a Stop click is always taken.
// - A tick that falls into another handler's exchange gives way: otherwise ticks, each of which
//   spoils the exchange that it falls into, could keep a gain or a jog command from the drive.
// - A handler whose window was closed while it waited sends nothing more and says nothing.
// - A lost link is reported once, and closes the window.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "link/link.h"
#include "platform/world.h"
#include "trace/capture.h"
#include "trace/trace_state.h"

namespace gainsmith {

class RunScheme {
 public:
  // All of them outlive the scheme. `command` is the register that takes 2 to run the test and 0 to
  // stop it. `dataSource` and `err` are timers of `window`.
  struct Parts {
    World& Surroundings;
    gainsmith::Link& Line;
    TraceState& Trace;
    Window& Owner;
    Button& RunButton;
    Timer& DataSource;
    Timer& Err;
    Register Command;
  };
  explicit RunScheme(const Parts& parts) : p_(parts) {}
  RunScheme(const RunScheme&) = delete;
  RunScheme& operator=(const RunScheme&) = delete;
  ~RunScheme() = default;

  static constexpr const char* StartCaption = "Start";
  static constexpr const char* StopCaption = "Stop";

  // --- State.

  // An upload has ended since the window opened, and no Stop has asked for one of its own since.
  bool TraceUploaded = false;
  // The last upload gave up on a block.
  bool TraceBlockFailed = false;
  // When the test was started, by the world's clock.
  std::int64_t TestStartTick = 0;

  // The button says "Start": no test is wanted.
  bool StopRequested() const { return p_.RunButton.Caption == StartCaption; }
  // A Start click would be taken.
  bool MayStart() const;

  // A tick may use the line.
  bool MayTick() const { return clicks_ == 0 && sending_ == 0; }

  // Milliseconds since the test was started.
  double ElapsedMs() const;

  // --- Loading.

  // For the beginning of Form_Load.
  void Open();
  // An exchange of Form_Load. Failure is left to the err timer to report: Form_Load ends there.
  std::optional<float> LoadRead(Register reg);
  bool LoadWrite(Register reg, float value);
  void err_Timer();

  // --- Clicks.

  // Stands in a click's handler, and around a stop word, from begin to end.
  class Click {
   public:
    explicit Click(RunScheme& scheme);
    Click(const Click&) = delete;
    Click& operator=(const Click&) = delete;
    ~Click();

   private:
    RunScheme& scheme_;
  };
  // Shows the hourglass while a Start click would not be taken; for changes of the caption.
  void ShowPointer();

  // --- The guarded list of writes.

  // What a step of the list finds to do when its turn has come.
  struct StepValue {
    enum class Kind { Write, NothingToWrite, Refused };
    Kind What = Kind::Write;
    float Word = 0;
  };
  struct Step {
    Register Target;
    // Refuses its field with a message of its own.
    std::function<StepValue()> Value;
  };
  enum class Result {
    GoOn,
    Stopped,  // a stop was asked for, and the drive has been told
    Refused,  // a step refused its field
    Closed,   // the window was closed, by the user or by a lost link
  };
  // Runs the steps in order; after each the caption is read.
  Result WriteSteps(const Stay& stay, std::span<const Step> steps);
  // Starts the motor.
  Result SendRunCommand(const Stay& stay);

  // A write that reports nothing.
  bool Send(Register reg, float value, const ExchangeOptions& options);

  // One exchange. False when the window was closed, a lost link included.
  bool Exchange(const Stay& stay, Function function, Register reg, float value);
  bool Write(const Stay& stay, Register reg, float value) {
    return Exchange(stay, Function::Write, reg, value);
  }

  // Writes the stop word, waiting `pauseMs` before each attempt. Goes through with it whatever
  // becomes of the window. False when the window is closed.
  bool StopTest(const Stay& stay, int pauseMs = 0);

  // --- Recordings.

  enum class CaptureEnd {
    Uploaded,   // Link::ReplyValues holds the words
    Abandoned,  // the position window wants to close
    Stopped,    // `wait` was stopped
    Failed,     // a lost link or a recording that never ends; reported
    Closed,
  };
  // Waits for a recording and uploads it.
  CaptureEnd Capture(const Stay& stay, RecordingWait wait, int channelCount);
  // The first recording of a test, given to `show`; a failure is noted in
  // TraceState::TraceReadFailed. False when the window was closed.
  bool TakeFirstRecording(const Stay& stay, int channelCount, const std::function<void()>& show);

  // The failure routine: the message, once; then the window closes.
  void ReportLinkFailure(const Stay& stay);

 private:
  const Parts p_;
  int clicks_ = 0;
  // Exchanges of handlers under way.
  int sending_ = 0;
  // A lost link was reported since the window opened.
  bool reported_ = false;
};

}  // namespace gainsmith
