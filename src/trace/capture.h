// Capture: waiting for the drive's recorder and reading its sample memory.
#pragma once

#include <functional>
#include <span>

#include "link/link.h"
#include "trace/trace_state.h"

namespace gainsmith {

// Kinds of recording for Register::TraceKind: velocity and current, or position error before them.
constexpr float TwoChannels = 144;
constexpr float ThreeChannels = 145;
// What Register::ArmRecorder takes.
constexpr float ArmSamples = ChannelSamples;

// The 15 trace times of the windows, their item data being SampleDivider, with "2000ms" chosen.
void FillTraceTimes(ComboBox& combo);

// How a wait for the end of a recording goes.
struct RecordingWait {
  // Not-ready answers at which the wait gives up.
  int NotReadyLimit = 0;
  // Pause after a not-ready answer.
  int PauseMs = 0;
  // Any good answer counts as ready.
  bool AnyAnswer = false;
  // Whether to stop, asked before each poll and after each good one; either may be empty.
  std::function<bool()> StopBefore = {};
  std::function<bool()> StopAfter = {};
};

// For the first recording of a test and each one of a position test: a trace time between polls.
RecordingWait TestWait(const TraceState& trace);
// For the later recordings of a velocity test.
RecordingWait AnyAnswerWait();
// For the scope: polls follow each other at once.
RecordingWait ScopeWait(const std::function<bool()>& stop);

enum class WaitResult { Ready, Stopped, NotReady, LinkFailed, Off };

// Polls the recorder until it has finished. Failed frames add up over all polls: the twelfth gives
// LinkFailed. Lets events run.
WaitResult WaitForRecording(Link& link, const Errand& errand, const RecordingWait& wait);

// Reads `lastOffset` + 1 registers from Register::Samples + `offset` on and puts their values into
// `TraceRaw` from `offset` on, which has room for them; nothing is stored unless the drive answers.
// `abandon` (may be empty) is asked before each frame; true calls the read off.
Sent ReadTraceBlock(Link& link, const Errand& errand, int offset, int lastOffset,
                    std::span<float> TraceRaw, const std::function<bool()>& abandon = {});

enum class UploadResult { Done, Abandoned, Failed };

// Reads a recording of `channelCount` channels, block by block; then Link::ReplyValues holds its
// words, as SplitTrace takes them. `abandon` (may be empty) is asked before each frame; true, or an
// errand that is off, ends the upload after a short wait. Unless Done, nothing of it is kept.
UploadResult UploadTrace(Link& link, const Errand& errand, int channelCount,
                         const std::function<bool()>& abandon = {});

}  // namespace gainsmith
