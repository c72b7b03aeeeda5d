// DesktopWorld: the world of real windows, a real serial port and real time.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/input_queue.h"
#include "desktop/key_repeats.h"
#include "desktop/window_view.h"
#include "host/event_pump.h"
#include "host/serial_line.h"
#include "host/window_timers.h"
#include "platform/world.h"

namespace gainsmith {

// Made after the QApplication and its look, and destroyed before it. Touches no record after
// EndProgram, nor when it is destroyed; the records of windows on show must outlive either.
class DesktopWorld : public World, private QObject {
 public:
  using RowStoreOpener = std::unique_ptr<RowStore> (*)(const std::string& path,
                                                       const std::string& table);
  // Fixed files and COM links are looked for in `programDirectory`. Without `openRows` all rows are
  // kept in memory.
  explicit DesktopWorld(std::string programDirectory, RowStoreOpener openRows = nullptr);
  ~DesktopWorld() override;

  bool OpenPort(int portNumber, const std::string& settings) override;
  void ClosePort() override { line_.Close(); }
  [[nodiscard]] bool IsPortOpen() const override { return line_.IsOpen(); }
  int BytesAvailable() override { return line_.BytesAvailable(); }
  void ClearInput() override { line_.ClearInput(); }
  void ClearOutput() override { line_.ClearOutput(); }
  std::vector<std::uint8_t> ReadAll() override { return line_.ReadAll(); }
  void WriteByte(std::uint8_t byte) override { line_.WriteByte(byte); }
  std::string DescribePort(int portNumber) override;
  std::vector<std::string> DescribePorts(int lastPort) override;

  std::int64_t NowMs() override { return EventPump::NowMs(); }
  void PumpEvents(std::int64_t deadlineMs) override;
  int PresentYear() override;
  std::string TimeOfDay() override;

  void SetFocus(Control& control) override;
  void SetScreenPointer(MousePointer pointer) override;
  int ScreenWidthTwips() override;
  int ScreenHeightTwips() override;
  void Repaint(Window& window) override;

  [[nodiscard]] bool AwaitsAnswer() const override { return queue_.Held(); }
  ChosenFile AskOpenFile(const std::string& filter) override;
  ChosenFile AskSaveFile(const std::string& filter) override;
  std::optional<Colour> AskColour(Colour present) override;

  std::string ProgramDirectory() override { return programDirectory_; }
  std::optional<std::string> ReadFile(const std::string& path) override;
  bool WriteFile(const std::string& path, const std::string& bytes) override;
  bool FileExists(const std::string& path) override;
  void CopyText(const std::string& text) override;
  void OpenDocument(const std::string& address) override;
  std::unique_ptr<RowStore> OpenRows(const std::string& path, const std::string& table) override;

 protected:
  MessageAnswer AnswerMessage(const Message& message) override;
  void WindowShown(Window& window) override;
  void WindowHidden(Window& window) override;
  void ProgramEnded() override;
  // Keeps input from windows that another one holds it from, their load included.
  bool eventFilter(QObject* receiver, QEvent* event) override;
  bool RepeatsEnter(const QKeyEvent& event);

 private:
  class DialogScope;
  // Brings records that changed onto widgets and takes note of timers.
  void BeforeSleep();
  [[nodiscard]] WindowView* ViewOf(const Window& window) const;
  const WindowView* ViewOfWidget(const QWidget* widget) const;
  [[nodiscard]] QWidget* MainWidget() const;
  void FocusPending();
  void ShowScreenPointer();
  void DeleteClosed();

  std::string programDirectory_;
  RowStoreOpener openRows_;
  EventPump pump_;
  InputQueue queue_;
  WindowTimers timers_;
  SerialLine line_;
  ViewHost host_;
  // Widgets belong to themselves until the end; those that are left then are deleted here.
  std::vector<QPointer<WindowView>> views_;
  std::vector<QPointer<QWidget>> topLevels_;
  Control* pendingFocus_ = nullptr;
  MousePointer screenPointer_ = MousePointer::Default;
  // The pointer that is set in Qt: dialogs have the ordinary one.
  MousePointer shownPointer_ = MousePointer::Default;
  QElapsedTimer sinceRepaint_;
  QTimer everySecond_;
  KeyRepeats enterRepeats_;
};

}  // namespace gainsmith
