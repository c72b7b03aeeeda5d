// What all control views have in common: place, visibility, colours, names.
#include "desktop/control_view.h"

#include <utility>

#include "desktop/look.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

// The style draws outlines somewhat darker than the palette's window colour, which on a dark window
// nobody sees.
constexpr QRgb DarkOutlineBase = 0xff88919c;

bool HasOutline(ControlKind kind) {
  return kind == ControlKind::TextBox || kind == ControlKind::ComboBox ||
         kind == ControlKind::CheckBox || kind == ControlKind::OptionButton ||
         kind == ControlKind::ProgressBar;
}

}  // namespace

bool WithinReach(const Control& control) {
  for (const Control* c = &control; c != nullptr; c = c->Container) {
    if (!c->Enabled || !c->Visible) return false;
  }
  return true;
}

ControlView::ControlView(WindowView& window, Control& record, QWidget* widget)
    : QObject(widget), window_(window), record_(record), widget_(widget) {
  widget_->setObjectName(ToQt(window.Record().Name + "." + record.Name));
}

void ControlView::Forget() {
  caption_.reset();
  enabled_.reset();
  backColor_.reset();
  foreColor_.reset();
}

void ControlView::Reflect() {
  const bool visibleChanged = Changed(visible_, record_.Visible);
  if (visibleChanged && !record_.Visible) ReflectVisible();
  // Brought up to date when it shows.
  if (!record_.Visible && widget_->isHidden()) return;
  ReflectPlace();
  if (Changed(toolTip_, record_.ToolTip)) widget_->setToolTip(ShownText(record_.ToolTip));
  const std::string& spoken =
      record_.AccessibleName.empty() ? record_.Caption : record_.AccessibleName;
  if (Changed(accessibleName_, spoken)) {
    QString name = ShownText(spoken);
    // The mark of an access key is seen and not spoken.
    if (record_.Kind == ControlKind::Button) name.remove('&');
    FocusWidget()->setAccessibleName(name);
  }
  if (Changed(caption_, record_.Caption)) ReflectCaption();
  const bool backChanged = Changed(backColor_, record_.BackColor);
  const bool foreChanged = Changed(foreColor_, record_.ForeColor);
  if (backChanged || foreChanged) ReflectColours();
  ReflectOwn();
  if (Changed(enabled_, record_.Enabled)) {
    if (!record_.Enabled) window_.HoldFocusOf(*widget_);
    widget_->setEnabled(record_.Enabled);
  }
  if (visibleChanged && record_.Visible) ReflectVisible();
}

void ControlView::ReflectVisible() {
  if (!record_.Visible) window_.HoldFocusOf(*widget_);
  widget_->setVisible(record_.Visible);
}

void ControlView::ReflectPlace() {
  // Edges are rounded, not lengths, so that neighbours stay neighbours.
  const int left = window_.Pixels(record_.LeftTwips);
  const int top = window_.Pixels(record_.TopTwips);
  const QRect place(left, top, window_.Pixels(record_.LeftTwips + record_.WidthTwips) - left,
                    window_.Pixels(record_.TopTwips + record_.HeightTwips) - top);
  if (Changed(place_, place)) window_.PlaceWidget(*this, place);
}

QColor ControlView::Background() const {
  if (const auto own = FixedColour(record_.BackColor)) return *own;
  return window_.BackgroundUnder(record_);
}

void ControlView::ReflectColours() {
  const auto back = FixedColour(record_.BackColor);
  const auto fore = FixedColour(record_.ForeColor);
  const QColor background = Background();
  QPalette palette;
  if (!back && PresentScheme() == Scheme::Dark && HasOutline(record_.Kind)) {
    palette.setColor(QPalette::Window, QColor(DarkOutlineBase));
  }
  if (back) {
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button}) {
      palette.setColor(role, *back);
    }
  }
  if (fore || back) {
    const QColor text = fore ? Readable(*fore, background) : TextOn(background);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::ButtonText, text);
  }
  widget_->setPalette(palette);
  widget_->setAutoFillBackground(back.has_value());
}

bool ControlView::MayChange() const {
  const ViewHost& host = window_.Host();
  return !host.Reflecting && !window_.Detached() && TakesInput(host.TheWorld, window_.Record()) &&
         WithinReach(record_);
}

bool ControlView::Post(std::function<void()> run, Asks asks) {
  const QPointer<ControlView> self(this);
  UserAction action;
  if (asks == Asks::Control) {
    action.Allowed = [&record = record_] { return WithinReach(record); };
  }
  action.Run = [self, run = std::move(run)] {
    if (self) --self->posted_;
    run();
  };
  action.Dropped = [self] {
    if (self) --self->posted_;
  };
  if (!window_.Post(std::move(action))) return false;
  ++posted_;
  return true;
}

ControlView* MakeControlView(WindowView& window, Control& record, QWidget* parent) {
  switch (record.Kind) {
    case ControlKind::Label:
      return MakeLabelView(window, static_cast<Label&>(record), parent);
    case ControlKind::TextBox:
      return MakeTextBoxView(window, static_cast<TextBox&>(record), parent);
    case ControlKind::Button:
      return MakeButtonView(window, static_cast<Button&>(record), parent);
    case ControlKind::CheckBox:
      return MakeCheckBoxView(window, static_cast<CheckBox&>(record), parent);
    case ControlKind::OptionButton:
      return MakeOptionButtonView(window, static_cast<OptionButton&>(record), parent);
    case ControlKind::ComboBox:
      return MakeComboBoxView(window, static_cast<ComboBox&>(record), parent);
    case ControlKind::Frame:
      return MakeFrameView(window, static_cast<Frame&>(record), parent);
    case ControlKind::Tabs:
      return MakeTabsView(window, static_cast<Tabs&>(record), parent);
    case ControlKind::PictureBox:
      return MakePictureBoxView(window, static_cast<PictureBox&>(record), parent);
    case ControlKind::Lamp:
      return MakeLampView(window, static_cast<Lamp&>(record), parent);
    case ControlKind::ProgressBar:
      return MakeProgressBarView(window, static_cast<ProgressBar&>(record), parent);
    case ControlKind::StatusBar:
      return MakeStatusBarView(window, static_cast<StatusBar&>(record), parent);
    case ControlKind::Grid:
      return MakeGridView(window, static_cast<Grid&>(record), parent);
    case ControlKind::Image:
      return MakeImageView(window, static_cast<Image&>(record), parent);
  }
  return nullptr;
}

}  // namespace gainsmith
