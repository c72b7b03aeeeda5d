// Window records: a window's controls and timers and its three life events.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/control.h"

namespace gainsmith {

enum class MousePointer { Default = 0, Hourglass = 11, ArrowQuestion = 14 };

// An interval timer of a window. It ticks only while its window is loaded, never inside its own
// tick and never while a message box or file dialog is open; its interval starts anew when a tick
// has ended.
class Timer {
 public:
  Timer() = default;
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;

  int IntervalMs = 1000;
  std::function<void()> OnTimer;

  // Starting a timer that runs changes nothing.
  void Start() {
    if (!running_) ++starts_;
    running_ = true;
  }
  void Stop() { running_ = false; }
  [[nodiscard]] bool Enabled() const { return running_; }
  // How often the timer was started: tells a World a restart from a run.
  [[nodiscard]] std::uint64_t Starts() const { return starts_; }

 private:
  bool running_ = false;
  std::uint64_t starts_ = 0;
};

// Owned by the tool for the life of the program: a handler may return into a window that was
// unloaded while it waited. Loading resets no field by itself; Form_Load does.
struct Window {
  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window() = default;

  // The system's own name ("Form3").
  std::string Name;
  std::string Caption;
  // Place on the screen and size of the client area, in twips.
  int LeftTwips = 0;
  int TopTwips = 0;
  int ClientWidthTwips = 0;
  int ClientHeightTwips = 0;
  Colour BackColor = DefaultColour;
  MousePointer Pointer = MousePointer::Default;

  // All controls, containers before what lies in them; the order of fields and buttons is the tab
  // order. Filled once, by the window's design.
  std::vector<Control*> Controls;
  std::vector<Timer*> Timers;

  // Kept by World. Loadings counts how often the window was loaded.
  bool Loaded = false;
  std::uint64_t Loadings = 0;
  bool Visible = false;
  bool Modal = false;
  bool Loading = false;
  bool Unloading = false;

  // Before the window is shown for the first time after it was closed. May wait, and may unload
  // the window, which is then not shown.
  virtual void Form_Load() {}
  // Asked when something wants to close the window; false keeps it open. May wait; a further wish
  // to close that arrives meanwhile is dropped.
  virtual bool Form_Unload() { return true; }
  // Called while the window is on show, before its record is brought to the screen and at least
  // once a second, also behind a message: brings the record up to date with what it shows of other
  // state. May neither wait nor show nor unload anything.
  virtual void Refresh() {}

  // Adds a control under its name; for the designs.
  template <typename T>
  T& Add(T& control, const std::string& name, Control* container = nullptr, int page = 0) {
    control.Name = name;
    control.Container = container;
    control.Page = page;
    Controls.push_back(&control);
    return control;
  }
  // The same for one of an array of controls: "Text1(3)".
  template <typename T>
  T& Add(T& control, const char* name, std::size_t index, Control* container = nullptr,
         int page = 0) {
    return Add(control, name + ("(" + std::to_string(index) + ")"), container, page);
  }
};

// The stay of a window on the screen during which a handler began. A handler that waits asks
// whether its window has been closed under it, even if it has been opened anew since.
class Stay {
 public:
  explicit Stay(const Window& window) : window_(window), loading_(window.Loadings) {}
  [[nodiscard]] bool Over() const { return !window_.Loaded || window_.Loadings != loading_; }

 private:
  const Window& window_;
  std::uint64_t loading_;
};

struct MenuItem {
  std::string Name;
  // '&' marks the access key; "-" is a separator.
  std::string Caption;
  // As "Ctrl+O"; empty: none.
  std::string Shortcut;
  bool Enabled = true;
  bool Visible = true;
  std::function<void()> OnClick;
  std::vector<MenuItem*> Items;
};

struct ToolButton {
  std::string ToolTip;
  // Name of the program's icon.
  std::string Icon;
  bool Enabled = true;
  std::function<void()> OnClick;
};

// A window with a menu bar and a tool bar; the one main window. Closing it ends the program.
struct FrameWindow : Window {
  std::vector<MenuItem*> Menus;
  std::vector<ToolButton*> ToolButtons;
  bool MaximizeBox = true;
  bool Maximized = false;
  // Size of the area below the bars as it is on the screen, kept by World; 0 before the first show.
  int AreaWidthTwips = 0;
  int AreaHeightTwips = 0;
  // Height of the strip along the bottom edge of that area. Windows that fit above it are moved, on
  // the screen only, so that it stays in view.
  int StripTwips = 0;
};

}  // namespace gainsmith
