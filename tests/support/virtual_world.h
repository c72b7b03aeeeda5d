// VirtualWorld: the world of the tests. Its clock moves only when the logic waits, and then jumps
// to the next timer, scripted action or deadline. Nothing sleeps, and the same script gives the
// same run.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/world.h"
#include "support/frame_log.h"
#include "support/serial_device.h"

namespace gainsmith::test {

class VirtualWorld : public World {
 public:
  // --- The script of a test.

  // Runs `action` when the clock has moved on by `delayMs`, inside whatever wait is under way then.
  void At(std::int64_t delayMs, std::function<void()> action);
  // Lets `ms` milliseconds and one step of the clock pass with nothing waiting: the tool at rest.
  void RunFor(std::int64_t ms);
  // Lets the clock go on while nothing runs, as behind a message box that nobody answers.
  void Pass(std::int64_t ms) { nowMs_ += ms; }
  // Lets time pass until `done`; false when `limitMs` have passed before.
  bool RunUntil(const std::function<bool()>& done, std::int64_t limitMs);

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
  std::set<std::string> Unreadable;
  std::set<std::string> Unwritable;
  // Rows of the store files by path.
  std::map<std::string, std::vector<StoredRow>> StoredRows;

  // --- What happened.

  FrameLog Log;
  // Frames sent since the last call: "R 19", "W 9=2".
  Texts TakeFrames();
  std::vector<Message> Messages;
  // Texts of the messages shown since the last call.
  Texts TakeMessages();
  // Filters of the file dialogs shown.
  std::vector<std::string> FileDialogs;
  std::vector<std::string> Documents;
  Control* Focus = nullptr;
  MousePointer ScreenPointer = MousePointer::Default;
  std::vector<MousePointer> ScreenPointers;
  int Repaints = 0;
  // How deep handlers waited inside each other at most.
  int DeepestWait = 0;

  // --- World.

  bool OpenPort(int portNumber, const std::string& settings) override;
  void ClosePort() override { device_ = nullptr; }
  bool IsPortOpen() const override { return device_ != nullptr; }
  int BytesAvailable() override;
  void ClearInput() override;
  void ClearOutput() override { Log.Begin(); }
  std::vector<std::uint8_t> ReadAll() override;
  void WriteByte(std::uint8_t byte) override;
  std::string DescribePort(int portNumber) override;
  std::int64_t NowMs() override { return nowMs_; }
  void PumpEvents(std::int64_t deadlineMs) override;
  int PresentYear() override { return 2026; }
  void SetFocus(Control& control) override { Focus = &control; }
  void SetScreenPointer(MousePointer pointer) override;
  int ScreenWidthTwips() override { return 1366 * 15; }
  int ScreenHeightTwips() override { return 768 * 15; }
  void Repaint(Window&) override { ++Repaints; }
  MessageAnswer ShowMessage(const Message& message) override;
  bool AwaitsAnswer() const override { return messagesShown_ > 0; }
  ChosenFile AskOpenFile(const std::string& filter) override { return AskFile(filter); }
  ChosenFile AskSaveFile(const std::string& filter) override { return AskFile(filter); }
  std::optional<Colour> AskColour(Colour present) override;
  std::string ProgramDirectory() override { return "/program"; }
  std::optional<std::string> ReadFile(const std::string& path) override;
  bool WriteFile(const std::string& path, const std::string& bytes) override;
  bool FileExists(const std::string& path) override { return Files.contains(path); }
  void OpenDocument(const std::string& address) override { Documents.push_back(address); }
  std::unique_ptr<RowStore> OpenRows(const std::string& path, const std::string& table) override;

 protected:
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
  ChosenFile AskFile(const std::string& filter);
  void Receive();
  Timer* NextTimer();
  void Tick(Timer& timer);

  std::int64_t nowMs_ = 1000;
  int pumping_ = 0;
  int messagesShown_ = 0;
  std::deque<Action> script_;
  std::map<Timer*, TimerState> timers_;
  SerialDevice* device_ = nullptr;
  std::vector<std::uint8_t> input_;
};

}  // namespace gainsmith::test
