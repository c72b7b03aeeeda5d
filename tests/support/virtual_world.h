// VirtualWorld: the world of the tests. Its clock moves only when the logic waits, and then jumps
// to the next timer, scripted action or deadline. Nothing sleeps, and the same script gives the
// same run.
#pragma once

#include <algorithm>
#include <map>
#include <set>

#include "platform/memory_rows.h"
#include "platform/world.h"
#include "support/frame_log.h"
#include "support/serial_device.h"

namespace gainsmith::test {

class VirtualWorld : public World {
 public:
  // --- The script of a test.

  // Runs `action` when the clock has moved on by `delayMs`, inside whatever wait is under way then.
  void At(std::int64_t delayMs, std::function<void()> action) {
    const std::int64_t at = nowMs_ + delayMs;
    const auto later = std::find_if(script_.begin(), script_.end(),
                                    [&](const Action& other) { return other.AtMs > at; });
    script_.insert(later, {at, std::move(action)});
  }
  // Lets `ms` milliseconds and one step of the clock pass with nothing waiting: the tool at rest.
  void RunFor(std::int64_t ms) {
    const std::int64_t end = nowMs_ + ms;
    while (nowMs_ <= end && !Ended()) PumpEvents(end);
  }
  // Lets the clock go on while nothing runs, as behind a message box that nobody answers.
  void Pass(std::int64_t ms) { nowMs_ += ms; }
  // Lets time pass until `done`; false when `limitMs` have passed before.
  bool RunUntil(const std::function<bool()>& done, std::int64_t limitMs) {
    const std::int64_t end = nowMs_ + limitMs;
    while (!done()) {
      if (nowMs_ > end || Ended()) return false;
      PumpEvents(end);
    }
    return true;
  }

  // Devices by COM number. A port without one cannot be opened, nor can one that is in use.
  std::map<int, SerialDevice*> Devices;
  std::set<int> PortsInUse;

  // Answers to come, in order. Without one a message gets its default, a dialog is cancelled.
  std::deque<MessageAnswer> Answers;
  std::deque<ChosenFile> ChosenFiles;
  std::deque<std::optional<Colour>> ChosenColours;
  // Called while a message is on the screen. A release of a held button is all that may happen
  // there; what its handler waits for comes, timers and scripted actions do not.
  std::function<void(const Message&)> OnMessage;

  // Files by path. Paths in the two sets can't be read or written.
  std::map<std::string, std::string> Files;
  std::set<std::string> Unreadable, Unwritable;
  // Rows of the store files by path.
  std::map<std::string, std::vector<StoredRow>> StoredRows;

  // --- What happened.

  FrameLog Log;
  // Frames sent since the last call: "R 19", "W 9=2".
  Texts TakeFrames() {
    Texts texts = Log.Texts();
    Log.Clear();
    return texts;
  }
  std::vector<Message> Messages;
  // Texts of the messages shown since the last call.
  Texts TakeMessages() {
    Texts texts;
    for (const Message& message : Messages) texts.push_back(message.Text);
    Messages.clear();
    return texts;
  }
  // Filters of the file dialogs shown.
  std::vector<std::string> FileDialogs, Documents;
  std::string Clipboard;
  Control* Focus = nullptr;
  MousePointer ScreenPointer = MousePointer::Default;
  std::vector<MousePointer> ScreenPointers;
  int Repaints = 0;
  // How deep handlers waited inside each other at most.
  int DeepestWait = 0;

  // --- World.

  bool OpenPort(int portNumber, const std::string&) override {
    const auto device = Devices.find(portNumber);
    if (device == Devices.end() || PortsInUse.contains(portNumber) || Ended()) return false;
    device_ = device->second;
    input_.clear();
    return true;
  }
  void ClosePort() override { device_ = nullptr; }
  bool IsPortOpen() const override { return device_ != nullptr; }
  int BytesAvailable() override {
    Receive();
    return device_ == nullptr ? 0 : static_cast<int>(input_.size());
  }
  void ClearInput() override {
    Receive();
    input_.clear();
  }
  void ClearOutput() override { Log.Begin(); }
  std::vector<std::uint8_t> ReadAll() override {
    Receive();
    return std::exchange(input_, {});
  }
  void WriteByte(std::uint8_t byte) override {
    if (device_ == nullptr) return;
    Log.Write(byte, nowMs_);
    device_->Receive(byte, nowMs_ * 1000);
  }
  std::string DescribePort(int portNumber) override {
    return Devices.contains(portNumber) ? "simulated drive" : "";
  }
  std::int64_t NowMs() override { return nowMs_; }
  void PumpEvents(std::int64_t deadlineMs) override {
    if (Ended()) return;
    if (messagesShown_ > 0) {
      nowMs_ = std::max(nowMs_, deadlineMs + 1);
      return;
    }
    if (nowMs_ >= refreshDueMs_) RefreshWindows();
    DeepestWait = std::max(DeepestWait, ++pumping_);
    Timer* timer = NextTimer();
    const bool scripted = !script_.empty() && script_.front().AtMs <= deadlineMs &&
                          (timer == nullptr || script_.front().AtMs <= timers_[timer].DueMs);
    if (scripted) {
      const Action action = std::move(script_.front());
      script_.pop_front();
      nowMs_ = std::max(nowMs_, action.AtMs);
      action.Do();
    } else if (timer != nullptr && timers_[timer].DueMs <= deadlineMs) {
      nowMs_ = std::max(nowMs_, timers_[timer].DueMs);
      Tick(*timer);
    } else {
      nowMs_ = std::max(nowMs_, deadlineMs + 1);
    }
    --pumping_;
  }
  int PresentYear() override { return 2026; }
  std::string TimeOfDay() override { return "12:00:00"; }
  void SetFocus(Control& control) override { Focus = &control; }
  void SetScreenPointer(MousePointer pointer) override {
    ScreenPointer = pointer;
    ScreenPointers.push_back(pointer);
  }
  int ScreenWidthTwips() override { return 1366 * 15; }
  int ScreenHeightTwips() override { return 768 * 15; }
  void Repaint(Window&) override { ++Repaints; }
  bool AwaitsAnswer() const override { return messagesShown_ > 0; }
  ChosenFile AskOpenFile(const std::string& filter) override { return AskFile(filter); }
  ChosenFile AskSaveFile(const std::string& filter) override { return AskFile(filter); }
  std::optional<Colour> AskColour(Colour) override {
    return Next(ChosenColours, std::optional<Colour>());
  }
  std::string ProgramDirectory() override { return "/program"; }
  std::optional<std::string> ReadFile(const std::string& path) override {
    const auto file = Files.find(path);
    if (file == Files.end() || Unreadable.contains(path)) return std::nullopt;
    return LimitedToMost(file->second);
  }
  bool WriteFile(const std::string& path, const std::string& bytes) override {
    if (Unwritable.contains(path) || Ended()) return false;
    Files[path] = bytes;
    return true;
  }
  bool FileExists(const std::string& path) override { return Files.contains(path); }
  void CopyText(const std::string& text) override { Clipboard = text; }
  void OpenDocument(const std::string& address) override { Documents.push_back(address); }
  std::unique_ptr<RowStore> OpenRows(const std::string& path, const std::string&) override {
    return std::make_unique<MemoryRows>(&StoredRows[path]);
  }

 protected:
  MessageAnswer AnswerMessage(const Message& message) override {
    RefreshWindows();
    Messages.push_back(message);
    ++messagesShown_;
    if (OnMessage) OnMessage(message);
    --messagesShown_;
    return Next(Answers, message.Default);
  }
  void WindowShown(Window&) override {}
  void WindowHidden(Window&) override {}
  void ProgramEnded() override {}

 private:
  struct TimerState {
    std::uint64_t Starts = 0;
    std::int64_t DueMs = 0;
    bool Ticking = false;
  };
  struct Action {
    std::int64_t AtMs;
    std::function<void()> Do;
  };
  // What the test has laid out next.
  template <typename T>
  static T Next(std::deque<T>& script, const T& otherwise) {
    if (script.empty()) return otherwise;
    const T first = std::move(script.front());
    script.pop_front();
    return first;
  }
  // There is no screen: once a second, and behind each message, is what a World owes.
  void RefreshWindows() {
    refreshDueMs_ = nowMs_ + 1000;
    for (Window* window : LoadedWindows()) {
      if (window->Visible) window->Refresh();
    }
  }
  ChosenFile AskFile(const std::string& filter) {
    FileDialogs.push_back(filter);
    return Next(ChosenFiles, ChosenFile());
  }
  void Receive() {
    if (device_ == nullptr) return;
    const std::vector<std::uint8_t> arrived = device_->Transmit(nowMs_ * 1000);
    input_.insert(input_.end(), arrived.begin(), arrived.end());
  }
  Timer* NextTimer() {
    Timer* next = nullptr;
    for (Window* window : LoadedWindows()) {
      for (Timer* timer : window->Timers) {
        if (!timer->Enabled()) continue;
        TimerState& state = timers_[timer];
        if (state.Starts != timer->Starts()) {
          state.Starts = timer->Starts();
          state.DueMs = nowMs_ + timer->IntervalMs;
        }
        if (state.Ticking) continue;
        if (next == nullptr || state.DueMs < timers_[next].DueMs) next = timer;
      }
    }
    return next;
  }
  void Tick(Timer& timer) {
    timers_[&timer].Ticking = true;
    timer.OnTimer();
    TimerState& state = timers_[&timer];
    state.Ticking = false;
    state.Starts = timer.Starts();
    state.DueMs = nowMs_ + timer.IntervalMs;
  }

  std::int64_t nowMs_ = 1000;
  std::int64_t refreshDueMs_ = 0;
  int pumping_ = 0;
  int messagesShown_ = 0;
  std::deque<Action> script_;
  std::map<Timer*, TimerState> timers_;
  SerialDevice* device_ = nullptr;
  std::vector<std::uint8_t> input_;
};

}  // namespace gainsmith::test
