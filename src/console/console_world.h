// ConsoleWorld: the world without a screen. Windows are their records and nothing else; the serial
// port, time and files are real.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/event_pump.h"
#include "host/serial_line.h"
#include "host/window_timers.h"
#include "platform/world.h"

namespace gainsmith {

// Made after the QCoreApplication, and destroyed before it.
class ConsoleWorld : public World {
 public:
  // Fixed files and COM links are looked for in `programDirectory`. `device` stands behind COM1
  // where it is not empty.
  ConsoleWorld(std::string programDirectory, std::string device);

  // --- The script's part. All may be empty.

  // Answers a message. No timer ticks meanwhile.
  std::function<MessageAnswer(const Message&)> OnMessage;
  // Called before each wait for events, the nested ones too.
  std::function<void()> OnIdle;
  // Each frame when its last byte has been written: "R 19", "R 256x50" for a block, "W 9=2".
  std::function<void(const std::string& frame)> OnFrame;
  // What file dialogs give; none: they are cancelled.
  ChosenFile NextFile;

  // The path or system name behind COM`portNumber`; empty: no such port.
  [[nodiscard]] QString DeviceOf(int portNumber) const;

  // --- World.

  bool OpenPort(int portNumber, const std::string& settings) override;
  void ClosePort() override { line_.Close(); }
  [[nodiscard]] bool IsPortOpen() const override { return line_.IsOpen(); }
  int BytesAvailable() override { return line_.BytesAvailable(); }
  void ClearInput() override { line_.ClearInput(); }
  void ClearOutput() override;
  std::vector<std::uint8_t> ReadAll() override { return line_.ReadAll(); }
  void WriteByte(std::uint8_t byte) override;
  // The device alone: nobody looks at the tool tips of a list here.
  std::string DescribePort(int portNumber) override;

  std::int64_t NowMs() override { return EventPump::NowMs(); }
  void PumpEvents(std::int64_t deadlineMs) override;
  int PresentYear() override;
  std::string TimeOfDay() override;

  void SetFocus(Control&) override {}
  void SetScreenPointer(MousePointer) override {}
  int ScreenWidthTwips() override { return 1366 * 15; }
  int ScreenHeightTwips() override { return 768 * 15; }
  void Repaint(Window&) override {}

  [[nodiscard]] bool AwaitsAnswer() const override { return messagesShown_ > 0; }
  ChosenFile AskOpenFile(const std::string&) override { return NextFile; }
  ChosenFile AskSaveFile(const std::string&) override { return NextFile; }
  std::optional<Colour> AskColour(Colour) override { return std::nullopt; }

  std::string ProgramDirectory() override { return programDirectory_; }
  std::optional<std::string> ReadFile(const std::string& path) override;
  bool WriteFile(const std::string& path, const std::string& bytes) override;
  bool FileExists(const std::string& path) override;
  void OpenDocument(const std::string&) override {}
  void CopyText(const std::string&) override {}
  // Rows are kept in memory: there is no grid to look at, and many programs may run at once.
  std::unique_ptr<RowStore> OpenRows(const std::string& path, const std::string& table) override;

 protected:
  MessageAnswer AnswerMessage(const Message& message) override;
  void WindowShown(Window&) override {}
  void WindowHidden(Window&) override {}
  void ProgramEnded() override;

 private:
  std::string programDirectory_;
  std::string device_;
  EventPump pump_;
  WindowTimers timers_{*this};
  SerialLine line_;
  std::vector<std::uint8_t> frame_;
  int messagesShown_ = 0;
};

}  // namespace gainsmith
