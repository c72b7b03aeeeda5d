// Control records: what a window shows, as plain data, and the events that its window handles.
//
// Handlers read and write these records and nothing else. A World puts user input into a record and
// then calls the handler; before its event loop sleeps it shows the records that changed. Setting a
// record from code calls no handler: code that wants the effect of a click calls the handler
// itself.
//
// Places are in twips (1/1440 inch; 15 of them are one device-independent pixel) inside the
// container, or inside the window's client area where there is none. Colours are 0x00BBGGRR.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace gainsmith {

using Colour = std::uint32_t;

// A colour of the desktop's own scheme rather than a fixed one.
constexpr Colour SystemColour(std::uint32_t index) { return 0x80000000U | index; }
constexpr Colour DefaultColour = SystemColour(15);
constexpr Colour Rgb(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return red | green << 8U | blue << 16U;
}

// Keys that OnKeyPress distinguishes; other keys come as their character code.
constexpr int KeyBackspace = 8;
constexpr int KeyEnter = 13;

// Bits of the mouse buttons.
constexpr int NoButton = 0;
constexpr int LeftButton = 1;
constexpr int RightButton = 2;

enum class ControlKind {
  Label,
  TextBox,
  Button,
  CheckBox,
  OptionButton,
  ComboBox,
  Frame,
  Tabs,
  PictureBox,
  Lamp,
  ProgressBar,
  StatusBar,
  Grid,
  Image,
};

struct Control {
  explicit Control(ControlKind kind) : Kind(kind) {}
  // Controls refer to each other by address (Container), so they stay where they were made.
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  ~Control() = default;

  const ControlKind Kind;
  // The system's own name, index included: "Text1(9)". Unique inside its window.
  std::string Name;
  std::string Caption;
  std::string ToolTip;
  // What a screen reader says: the visible label beside a field. Empty: the caption.
  std::string AccessibleName;
  bool Enabled = true;
  bool Visible = true;
  // Exists as state and behaviour and is never on show (and needs no place).
  bool Parked = false;
  Colour BackColor = DefaultColour;
  Colour ForeColor = DefaultColour;
  int LeftTwips = 0;
  int TopTwips = 0;
  int WidthTwips = 0;
  int HeightTwips = 0;
  // Frame, Tabs or PictureBox of the same window that this control lies in; none: the client area.
  Control* Container = nullptr;
  // Page of the container, when that is Tabs.
  int Page = 0;

  void Place(int leftTwips, int topTwips, int widthTwips, int heightTwips) {
    LeftTwips = leftTwips;
    TopTwips = topTwips;
    WidthTwips = widthTwips;
    HeightTwips = heightTwips;
  }
};

enum class TextAlignment { Left, Centre, Right };

struct Label : Control {
  Label() : Control(ControlKind::Label) {}
  TextAlignment Alignment = TextAlignment::Left;
  bool WordWrap = false;
  bool Heading = false;
  // A text wider than its place ends in an ellipsis, and is whole in the tool tip.
  bool Elided = false;
  // A text that is wider than its label is drawn narrower, and all the labels of its array that are
  // as wide alike: the columns of an axis, whose digits grow with the zoom.
  bool Squeeze = false;
  // A label with a handler is shown as a link.
  std::function<void()> OnClick;
};

struct TextBox : Control {
  TextBox() : Control(ControlKind::TextBox) {}
  std::string Text;
  // Asked with each key before it takes effect; false drops the key. Without a handler all pass.
  // KeyEnter never becomes part of the text: its call is an action as a click is, and may wait. For
  // any other key the handler only answers.
  std::function<bool(int key)> OnKeyPress;
  std::function<void()> OnLostFocus;

 private:
  friend class Commit;
  // The text whose commit began last and is still under way.
  const std::string* committing_ = nullptr;
};

// Stands in the handler that commits a field's text, which may wait. Enter with the text that is
// under way already commits nothing; another text nests, as the newer one.
class Commit {
 public:
  explicit Commit(TextBox& field) : field_(field), outer_(field.committing_), text_(field.Text) {
    field_.committing_ = &text_;
  }
  Commit(const Commit&) = delete;
  Commit& operator=(const Commit&) = delete;
  ~Commit() { field_.committing_ = outer_; }
  [[nodiscard]] bool Repeats() const { return outer_ != nullptr && *outer_ == text_; }

 private:
  TextBox& field_;
  const std::string* outer_;
  const std::string text_;
};

struct Button : Control {
  Button() : Control(ControlKind::Button) {}
  // A colour swatch shows its BackColor over its whole area.
  bool Swatch = false;
  // Enter presses the button from wherever Enter means nothing else, and it looks like it; Esc
  // presses the other. At most one of each in a window is in reach.
  bool Default = false;
  bool Cancel = false;
  std::function<void()> OnClick;
  // Press and release by any mouse button or by the keyboard. OnRelease follows each OnPress
  // exactly once: losing the focus, the window or the mouse grab counts as release.
  std::function<void()> OnPress;
  std::function<void()> OnRelease;
};

struct CheckBox : Control {
  CheckBox() : Control(ControlKind::CheckBox) {}
  bool Ticked = false;
  // After a user has changed Ticked.
  std::function<void()> OnClick;
};

// Of the option buttons in one container (and page) at most one is selected; a World clears the
// others when a user selects one.
struct OptionButton : Control {
  OptionButton() : Control(ControlKind::OptionButton) {}
  bool Selected = false;
  std::function<void()> OnClick;
};

struct ListItem {
  std::string Text;
  int ItemData = 0;
  // Shown as the entry's own tool tip, and as the list's while the entry is chosen.
  std::string ToolTip;
  // Drawn grey: there is nothing behind it. It can be chosen all the same.
  bool Absent = false;
  bool operator==(const ListItem&) const = default;
};

struct ComboBox : Control {
  ComboBox() : Control(ControlKind::ComboBox) {}
  std::vector<ListItem> Items;
  // Chosen entry; -1: none.
  int ListIndex = -1;
  // With Editable the text can be typed and need not be in the list; otherwise it is the entry's.
  bool Editable = false;
  std::string Text;
  // After a user has chosen an entry.
  std::function<void()> OnClick;

  // Chooses entry `index` of Items and takes its text. Calls no handler.
  void Choose(int index) {
    ListIndex = index;
    Text = Items.at(static_cast<std::size_t>(index)).Text;
  }
  // ItemData of the chosen entry; 0 when none is chosen.
  [[nodiscard]] int ChosenData() const {
    return ListIndex < 0 ? 0 : Items.at(static_cast<std::size_t>(ListIndex)).ItemData;
  }
};

struct Frame : Control {
  Frame() : Control(ControlKind::Frame) {}
  // Without a border the frame only groups.
  bool Border = true;
};

struct Tabs : Control {
  Tabs() : Control(ControlKind::Tabs) {}
  std::vector<std::string> Pages;
  int CurrentPage = 0;
};

// A user scale: X runs from Left to Left + Width, Y from Top to Top + Height (Height is negative
// where the top is the larger value).
struct PictureScale {
  float Left = 0;
  float Top = 0;
  float Width = 1;
  float Height = 1;
  bool operator==(const PictureScale&) const = default;
};

struct PictureLine {
  float X1 = 0;
  float Y1 = 0;
  float X2 = 0;
  float Y2 = 0;
  Colour Color = 0;
  // Pen width in pixels, and whether the pen is dotted. The thinnest is shown half as wide again.
  int WidthPixels = 1;
  bool Dotted = false;
  // The user scale in force when the line was drawn, so that it can be painted at any size.
  PictureScale Scale;
  bool operator==(const PictureLine&) const = default;
};

// A text on a picture: the name of a trace, at the right at the height of the trace's end and clear
// of all other texts; or a label of an axis, at the right edge on the height Y or at the lower edge
// at X, under the lines.
struct PictureText {
  enum class Place { TraceEnd, RightEdge, LowerEdge };
  Place At = Place::TraceEnd;
  float X = 0;
  float Y = 0;
  std::string Text;
  Colour Color = 0;
  PictureScale Scale;
  bool operator==(const PictureText&) const = default;
};

struct PictureBox : Control {
  PictureBox() : Control(ControlKind::PictureBox) {}
  PictureScale Scale;
  int DrawWidth = 1;
  bool DrawDotted = false;
  // Lines and texts drawn since the last Cls, in drawing order. Change them through Cls, Line and
  // Write only.
  std::vector<PictureLine> Lines;
  std::vector<PictureText> Texts;
  // Lines over the picture that are not part of it (the rubber band), in the picture's present
  // scale; empty: none is shown.
  std::vector<PictureLine> Overlay;
  // Raised by Cls and Line: tells a World that Lines changed.
  std::uint64_t Revision = 0;

  void Cls() {
    Lines.clear();
    Texts.clear();
    ++Revision;
  }
  void Write(PictureText::Place at, float x, float y, std::string text, Colour colour) {
    Texts.push_back({at, x, y, std::move(text), colour, Scale});
    ++Revision;
  }
  void Line(float x1, float y1, float x2, float y2, Colour colour) {
    Lines.push_back({x1, y1, x2, y2, colour, DrawWidth, DrawDotted, Scale});
    ++Revision;
  }

  // Positions are in the picture's present scale; outside it while a button is held.
  std::function<void(int button, float x, float y)> OnMouseDown;
  std::function<void(int button, float x, float y)> OnMouseMove;
  std::function<void(int button, float x, float y)> OnMouseUp;
  // The user copies the picture: what it shows as text for a spreadsheet; empty: there is nothing
  // to copy. Only answers.
  std::function<std::string()> OnCopy;
};

// A round signal lamp in its BackColor. One that is not visible is out: its dim socket stays.
struct Lamp : Control {
  Lamp() : Control(ControlKind::Lamp) {}
  // Carries a mark, for eyes that do not tell its colour from another's.
  bool Marked = false;
  // What it says now, for screen readers: "error".
  std::string State;
};

struct ProgressBar : Control {
  ProgressBar() : Control(ControlKind::ProgressBar) {}
  int Min = 0;
  int Max = 100;
  int Value = 0;
};

struct StatusBar : Control {
  StatusBar() : Control(ControlKind::StatusBar) {}
  // Panel n of the system is Panels[n - 1].
  std::vector<std::string> Panels;
};

struct GridColumn {
  std::string Heading;
  // 0: not shown.
  int WidthTwips = 0;
  bool operator==(const GridColumn&) const = default;
};

// A read-only table of texts. Copying takes the rows that are selected, or all where none is, with
// the headings and with tabs between the columns that are shown.
struct Grid : Control {
  Grid() : Control(ControlKind::Grid) {}
  std::vector<GridColumn> Columns;
  std::vector<std::vector<std::string>> Rows;
  // Rows that head those below them; they show their first text over the whole width.
  std::vector<int> HeadingRows;
  int CurrentRow = -1;
  // Any number of rows can be selected at once; CurrentRow says nothing then.
  bool ManySelected = false;
};

// A picture that belongs to the program, by name ("about").
struct Image : Control {
  Image() : Control(ControlKind::Image) {}
  std::string Picture;
};

}  // namespace gainsmith
