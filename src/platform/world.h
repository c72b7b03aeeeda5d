// World: the one interface through which everything outside the logic comes in.
//
// There are two complete worlds: the Qt desktop, and the virtual world of the tests with a clock
// that moves only when the logic waits. All calls come from one thread. Nothing here throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/row_store.h"
#include "platform/window.h"

namespace gainsmith {

enum class MessageButtons { Ok, YesNo };
enum class MessageIcon { None, Critical, Warning, Information };
enum class MessageAnswer { Ok, Yes, No };

struct Message {
  std::string Text;
  std::string Title;
  MessageButtons Buttons = MessageButtons::Ok;
  MessageIcon Icon = MessageIcon::None;
  // Yes or No for YesNo. Closing such a box by other means answers No.
  MessageAnswer Default = MessageAnswer::Ok;
};

// What a file dialog gives: a path, or nothing and why.
struct ChosenFile {
  enum class Outcome { Chosen, Cancelled, Failed };
  Outcome Result = Outcome::Cancelled;
  std::string Path;
};

class World {
 public:
  World() = default;
  World(const World&) = delete;
  World& operator=(const World&) = delete;
  virtual ~World() = default;

  // --- The serial port. One port, used through Link only.

  // Opens COM`portNumber` (1 to 12) raw and binary; `settings` is as "38400,n,8,2". False when the
  // port does not exist, is in use or is forbidden; it is closed then.
  virtual bool OpenPort(int portNumber, const std::string& settings) = 0;
  virtual void ClosePort() = 0;
  // The tool's own idea of open: true from OpenPort to ClosePort, whatever became of the device.
  [[nodiscard]] virtual bool IsPortOpen() const = 0;
  // Bytes received and not yet read. 0 from a closed port and from a device that has gone.
  virtual int BytesAvailable() = 0;
  virtual void ClearInput() = 0;
  virtual void ClearOutput() = 0;
  virtual std::vector<std::uint8_t> ReadAll() = 0;
  virtual void WriteByte(std::uint8_t byte) = 0;
  // What stands behind COM`portNumber`, in words for the user (a device path, a product name, or
  // why it cannot be opened and how to mend it); empty when there is no such port.
  virtual std::string DescribePort(int portNumber) = 0;
  // The same for COM1 to COM`lastPort`, in their order.
  virtual std::vector<std::string> DescribePorts(int lastPort);

  // --- Time.

  // A monotonic count of milliseconds.
  virtual std::int64_t NowMs() = 0;
  // Runs the events that are queued (timers, user input). Where there are none it sleeps until one
  // comes or until NowMs() has passed `deadlineMs`, whichever is first.
  virtual void PumpEvents(std::int64_t deadlineMs) = 0;
  virtual int PresentYear() = 0;
  // The user's time of day: "14:05:09".
  virtual std::string TimeOfDay() = 0;

  // --- Windows.

  // Loads the window if it is not loaded, and shows it beside the others; a window that is still
  // loading comes to the screen when it has loaded.
  void Show(Window& window);
  // Loads the window and shows it so that no other window takes input until it is unloaded.
  // Returns as soon as it is shown; `afterClosing` runs once, when it has been unloaded (also when
  // it unloads itself in its load). A window that is loaded already is only raised, and
  // `afterClosing` runs at once. Other windows take no input from the call on, the load included.
  void ShowModal(Window& window, std::function<void()> afterClosing = {});
  // Takes the window from the screen; it stays loaded.
  void Hide(Window& window);
  // Closes the window after asking its Form_Unload; false when that refused or when the window is
  // being unloaded already. Stops the window's timers. True for a window that is not loaded.
  bool Unload(Window& window);
  // Loaded windows in the order of their loading, the main window among them.
  [[nodiscard]] const std::vector<Window*>& LoadedWindows() const { return loaded_; }
  // The modal window that holds the input, the last one shown; none: nullptr.
  [[nodiscard]] Window* ModalWindow() const;

  virtual void SetFocus(Control& control) = 0;
  // Pointer over all windows; a window's own is in its record.
  virtual void SetScreenPointer(MousePointer pointer) = 0;
  virtual int ScreenWidthTwips() = 0;
  virtual int ScreenHeightTwips() = 0;
  // Brings the records onto the screen now, for handlers that show progress without waiting.
  virtual void Repaint(Window& window) = 0;

  // --- Dialogs. Other events wait until they are answered, but for painting and the release of
  // what the user held when the dialog came up: its handler runs, and may wait, inside the dialog.

  MessageAnswer ShowMessage(const Message& message);
  // Told of each message that is about to be shown; may neither wait nor show anything.
  std::function<void(const Message&)> OnMessageShown = [](const Message&) {};
  // A message or dialog is on the screen: the handlers below it go on when it is answered.
  [[nodiscard]] virtual bool AwaitsAnswer() const = 0;
  // `filter` is as "*.tvd|*.tvd|": pairs of description and pattern.
  virtual ChosenFile AskOpenFile(const std::string& filter) = 0;
  virtual ChosenFile AskSaveFile(const std::string& filter) = 0;
  // Nothing when the user cancels.
  virtual std::optional<Colour> AskColour(Colour present) = 0;

  // --- Files and documents.

  // Directory of the program with no separator at its end; all fixed files lie there.
  virtual std::string ProgramDirectory() = 0;
  // The most that is read of a file: many times what any file of the tool takes.
  static constexpr std::size_t MostFileBytes = 1U << 20U;
  // The bytes of a plain file; nothing when it can't be read (missing, forbidden, a directory, a
  // device). Of a file that is larger than MostFileBytes, the whole lines in its first
  // MostFileBytes; the rest is never read.
  virtual std::optional<std::string> ReadFile(const std::string& path) = 0;
  // Writes a file whole or not at all (temporary file, then rename); false leaves the old one.
  virtual bool WriteFile(const std::string& path, const std::string& bytes) = 0;
  virtual bool FileExists(const std::string& path) = 0;
  // Puts a text where other programs can paste it from.
  virtual void CopyText(const std::string& text) = 0;
  // Hands a document or web address to the desktop's default handler.
  virtual void OpenDocument(const std::string& address) = 0;
  // Opens the table of the store file `path`. Never fails: a store that can't be written is kept
  // in memory.
  virtual std::unique_ptr<RowStore> OpenRows(const std::string& path, const std::string& table) = 0;

  // --- The end.

  // Ends the program. From here on waits return at once, nothing is shown or asked (a message is
  // answered with its default), the port is closed and files stay as they are, so that the
  // handlers under way come to their end without effect.
  void EndProgram();
  [[nodiscard]] bool Ended() const { return ended_; }

 protected:
  // What ReadFile gives of a file that begins with `bytes`: all of it, or its first
  // MostFileBytes + 1 at least.
  static std::string LimitedToMost(std::string bytes);

  // Shows the message until it is answered.
  virtual MessageAnswer AnswerMessage(const Message& message) = 0;
  // The window's record says that it is visible (and perhaps modal): bring it to the screen.
  virtual void WindowShown(Window& window) = 0;
  // The window is no longer visible, or no longer loaded.
  virtual void WindowHidden(Window& window) = 0;
  virtual void ProgramEnded() = 0;

 private:
  struct Closing {
    Window* Closed;
    std::function<void()> Then;
  };
  void Load(Window& window);
  void Reveal(Window& window);

  std::vector<Window*> loaded_;
  std::vector<Closing> closings_;
  bool ended_ = false;
};

}  // namespace gainsmith
