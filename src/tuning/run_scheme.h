// RunScheme: one button that runs and stops a test, as the velocity and position windows share it.
//
// The button's caption is the state of the test and at once the stop request. Waiting lets events
// run, so the Stop branch of a click runs nested inside the waits of the Start branch or of a tick:
// it turns the caption back to "Start" and writes the stop word. The outer handler reads the
// caption after each of its exchanges, gives up by itself and writes the stop word once more.
//
// What else keeps that sound: what calls a word off is in link/errand.h; a Start click is taken
// only when no other click of a run button, no jog, no stop word and no tick that has heard a Stop
// is under way, while a Stop click always is; a lost link is reported once, and closes the window.
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
    gainsmith::World& World;
    gainsmith::Link& Link;
    TraceState& Trace;
    gainsmith::Window& Window;
    Button& RunButton;
    Timer& DataSource;
    Timer& Err;
    Register Command;
  };
  explicit RunScheme(const Parts& parts) : p_(parts) {}
  RunScheme(const RunScheme&) = delete;
  RunScheme& operator=(const RunScheme&) = delete;
  ~RunScheme() = default;

  // What a command register takes to stop the motor.
  static constexpr float StopWord = 0;
  static constexpr const char* StartCaption = "Start";
  static constexpr const char* StopCaption = "Stop";
  // The button's tool tip when no further recording is taken and the button still says "Stop".
  static constexpr const char* PlanOverTip = "Test over: press Stop";

  // --- State.

  // An upload has ended since the window opened, and no Stop has asked for one of its own since.
  bool TraceUploaded = false;
  // The last upload gave up on a block.
  bool TraceBlockFailed = false;
  // When the test was started, by the world's clock.
  std::int64_t TestStartTick = 0;

  // The button says "Start": no test is wanted.
  [[nodiscard]] bool StopRequested() const { return p_.RunButton.Caption == StartCaption; }
  // A Start click would be taken.
  [[nodiscard]] bool MayStart() const;

  // Milliseconds since the test was started.
  [[nodiscard]] double ElapsedMs() const;

  // --- Loading.

  // For the beginning of Form_Load.
  void Open();
  // An exchange of Form_Load. Failure is left to the err timer to report: Form_Load ends there.
  std::optional<float> LoadRead(const Errand& errand, Register reg);
  bool LoadWrite(const Errand& errand, Register reg, float value);
  void err_Timer();

  // --- Handlers.

  // Shows the pointer anew at the end of a handler.
  struct PointerAtEnd {
    RunScheme& Scheme;
    ~PointerAtEnd() { Scheme.ShowPointer(); }
  };
  // Stands in a handler that has to do with the motor, from begin to end: a click of the run
  // button, a jog, a stop word.
  class MotorErrand {
   public:
    explicit MotorErrand(RunScheme& scheme);
    [[nodiscard]] const Errand& Own() const { return errand_; }

   private:
    PointerAtEnd pointer_;
    Errand errand_;
  };
  // Stands in a tick. No tick begins inside another.
  class Tick {
   public:
    explicit Tick(RunScheme& scheme);
    [[nodiscard]] const Errand& Own() const { return errand_; }

   private:
    struct Mark {
      Mark(bool& mark, bool set) : Set(mark) { Set = set; }
      ~Mark() { Set = false; }
      bool& Set;
    };
    PointerAtEnd pointer_;
    Errand errand_;
    Mark ofTest_;
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
    Jogged,   // a jog has taken the motor: the test is over, and the drive is still to be told
    Refused,  // a step refused its field
    Closed,   // the window was closed, by the user or by a lost link
  };
  // Runs the steps in order; after each the caption is read.
  Result WriteSteps(const Errand& errand, std::span<const Step> steps);
  // Starts the motor.
  Result SendRunCommand(const Errand& errand);

  // One exchange. False when the window was closed, a lost link included.
  bool Exchange(const Errand& errand, Function function, Register reg, float value);
  bool Write(const Errand& errand, Register reg, float value) {
    return Exchange(errand, Function::Write, reg, value);
  }

  // Writes the stop word, waiting `pauseMs` before each attempt. Goes through with it whatever
  // becomes of the window. False when the window is closed.
  bool StopTest(const Errand& errand, int pauseMs = 0);

  // --- Recordings.

  enum class CaptureEnd {
    Uploaded,   // Link::ReplyValues holds the words
    Abandoned,  // the position window wants to close
    Stopped,    // `wait` was stopped
    Failed,     // a lost link or a recording that never ends; reported
    Closed,
  };
  // Waits for a recording and uploads it.
  CaptureEnd Capture(const Errand& errand, const RecordingWait& wait, int channelCount);
  // The first recording of a test, given to `show`; a failure is noted in
  // TraceState::TraceReadFailed. Stopped: a jog has taken the motor meanwhile.
  CaptureEnd TakeFirstRecording(const Errand& errand, int channelCount,
                                const std::function<void()>& show);

  // For the end of a Stop: `read`, where no upload has ended that the test asked for.
  void ReadAfterStop(const Errand& errand, const std::function<void(const Errand&)>& read);
  // Splits the words of the last upload into the traces; the two that have a box are shown where it
  // is ticked.
  void SplitRecording(int channelCount, const CheckBox& iBak, const CheckBox& vBak);

  // A jog has taken the motor from the test that `errand` starts.
  [[nodiscard]] bool Jogged(const Errand& errand) const;

  // The failure routine: the message, once; then the window closes.
  void ReportLinkFailure(const Errand& errand);

 private:
  void FailLoad();

  const Parts p_;
  // A tick is under way that began while a test was wanted.
  bool tickOfTest_ = false;
  // A lost link was reported since the window opened.
  bool reported_ = false;
};

}  // namespace gainsmith
