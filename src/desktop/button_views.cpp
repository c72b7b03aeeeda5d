// Views of buttons, check boxes and option buttons.
#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <memory>

#include "desktop/control_view.h"
#include "desktop/key_repeats.h"
#include "desktop/look.h"
#include "desktop/record_values.h"
#include "desktop/window_view.h"

namespace gainsmith {
namespace {

constexpr int SwatchMarginPixels = 3;

bool Presses(const QKeyEvent& event) {
  const int key = event.key();
  return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

// A button that tells when it is held down and, exactly once for each time, when no longer.
class HoldButton final : public QPushButton {
 public:
  explicit HoldButton(QWidget* parent) : QPushButton(parent) {
    // The other half of a repeat comes with the first, or a moment later.
    constexpr int OtherHalfMs = 20;
    otherHalf_.setSingleShot(true);
    otherHalf_.setInterval(OtherHalfMs);
    otherHalf_.callOnTimeout(this, [this] { TakeRelease(); });
  }
  std::function<void()> OnHold;
  std::function<void()> OnLetGo;
  QColor Swatch;
  // Only shows its swatch.
  bool Flat = false;
  // What the ring of the keyboard is drawn in, where the style's own would not be seen.
  QColor Ring;

  void LetGo() {
    if (heldBy_ == 0) return;
    heldBy_ = 0;
    OnLetGo();
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override {
    TakeRelease();
    Hold(event->button());
    QPushButton::mousePressEvent(event);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (heldBy_ == static_cast<int>(event->button())) LetGo();
    QPushButton::mouseReleaseEvent(event);
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (Presses(*event) && repeats_.IsRepeat(*event)) {
      release_.reset();
      return;
    }
    TakeRelease();
    if (Presses(*event)) repeats_.Press(*event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    if (event->key() == Qt::Key_Space) Hold(Qt::Key_Space);
    QPushButton::keyPressEvent(event);
  }
  void keyReleaseEvent(QKeyEvent* event) override {
    const bool ends = Presses(*event) && !event->isAutoRepeat();
    if (ends && repeats_.Release(*event) && event->key() == Qt::Key_Space) {
      release_.reset(event->clone());
      otherHalf_.start();
      return;
    }
    if (ends && heldBy_ == Qt::Key_Space) LetGo();
    QPushButton::keyReleaseEvent(event);
  }
  void focusOutEvent(QFocusEvent* event) override {
    TakeRelease();
    LetGo();
    QPushButton::focusOutEvent(event);
  }
  void hideEvent(QHideEvent* event) override {
    LetGo();
    QPushButton::hideEvent(event);
  }
  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::EnabledChange && !isEnabled()) LetGo();
    QPushButton::changeEvent(event);
  }
  bool event(QEvent* event) override {
    switch (event->type()) {
      case QEvent::UngrabMouse:
      case QEvent::WindowDeactivate:
      case QEvent::WindowBlocked:
        LetGo();
        break;
      default:
        break;
    }
    return QPushButton::event(event);
  }
  void paintEvent(QPaintEvent* event) override {
    if (!Flat) QPushButton::paintEvent(event);
    QPainter painter(this);
    if (Ring.isValid() && hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
      PaintRing(painter);
    }
    if (!Swatch.isValid()) return;
    painter.setOpacity(isEnabled() ? 1.0 : 0.4);
    painter.fillRect(rect().adjusted(SwatchMarginPixels, SwatchMarginPixels, -SwatchMarginPixels,
                                     -SwatchMarginPixels),
                     Swatch);
  }

 private:
  void PaintRing(QPainter& painter) {
    constexpr qreal InsetPixels = 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Ring, 2));
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(InsetPixels, InsetPixels, -InsetPixels, -InsetPixels), 2, 2);
    painter.setRenderHint(QPainter::Antialiasing, false);
  }
  void Hold(int by) {
    if (heldBy_ != 0) return;
    heldBy_ = by;
    OnHold();
  }
  // The space bar's release was none of a repeat.
  void TakeRelease() {
    const std::unique_ptr<QKeyEvent> release = std::move(release_);
    if (release == nullptr) return;
    if (heldBy_ == Qt::Key_Space) LetGo();
    QPushButton::keyReleaseEvent(release.get());
  }

  KeyRepeats repeats_;
  // A release of the space bar that may be half of a repeat.
  std::unique_ptr<QKeyEvent> release_;
  QTimer otherHalf_;
  // The mouse button or key that holds it; 0: none.
  int heldBy_ = 0;
};

class ButtonView final : public ControlView {
 public:
  ButtonView(WindowView& window, Button& record, HoldButton* button)
      : ControlView(window, record, button), record_(record), button_(button) {
    if (record.Swatch && !record.OnClick) ShowOnly();
    button_->OnHold = [this] { OnHold(); };
    button_->OnLetGo = [this] { OnLetGo(); };
    connect(button_, &QPushButton::clicked, this, [this] {
      Post([&record = record_] {
        if (record.OnClick) record.OnClick();
      });
    });
  }

  void LetGo() override { button_->LetGo(); }

 protected:
  void ReflectCaption() override { button_->setText(ShownText(record_.Caption)); }
  void ReflectColours() override {
    if (!record_.Swatch) {
      ControlView::ReflectColours();
      button_->setAutoFillBackground(false);
      const auto back = FixedColour(record_.BackColor);
      button_->Ring = back ? TextOn(*back) : QColor();
      return;
    }
    button_->Ring = QApplication::palette().color(QPalette::Highlight);
    button_->Swatch = FixedColour(record_.BackColor).value_or(QColor(Qt::gray));
    button_->update();
  }
  void ReflectOwn() override {
    if (Changed(default_, record_.Default)) button_->setDefault(record_.Default);
  }

 private:
  void ShowOnly() {
    button_->Flat = true;
    button_->setFocusPolicy(Qt::NoFocus);
    button_->setAttribute(Qt::WA_TransparentForMouseEvents);
  }

  // A press and its release are both heard or neither, and in this order: the release does not wait
  // where the press did, and nothing would end what a press heard after it began.
  struct Press {
    bool Heard = false;
    bool Over = false;
  };
  void OnHold() {
    press_ = std::make_shared<Press>();
    Post([&record = record_, press = press_] {
      if (press->Over) return;
      press->Heard = true;
      if (record.OnPress) record.OnPress();
    });
  }
  void OnLetGo() {
    Owner().PostUrgent([&record = record_, press = press_] {
      press->Over = true;
      if (press->Heard && record.OnRelease) record.OnRelease();
    });
  }

  Button& record_;
  HoldButton* button_;
  std::optional<bool> default_;
  std::shared_ptr<Press> press_;
};

class CheckBoxView final : public ControlView {
 public:
  CheckBoxView(WindowView& window, CheckBox& record, QCheckBox* box)
      : ControlView(window, record, box), record_(record), box_(box) {
    connect(box_, &QCheckBox::toggled, this, [this](bool ticked) {
      Post([&record = record_, ticked] {
        record.Ticked = ticked;
        if (record.OnClick) record.OnClick();
      });
    });
  }

 protected:
  void ReflectCaption() override { box_->setText(ShownText(record_.Caption)); }
  void ReflectOwn() override {
    if (!HasPosted()) box_->setChecked(record_.Ticked);
  }

 private:
  CheckBox& record_;
  QCheckBox* box_;
};

void SelectAlone(const Window& window, OptionButton& chosen) {
  for (Control* control : window.Controls) {
    const bool sameGroup = control->Kind == ControlKind::OptionButton &&
                           control->Container == chosen.Container && control->Page == chosen.Page;
    if (sameGroup) static_cast<OptionButton*>(control)->Selected = control == &chosen;
  }
}

class OptionButtonView final : public ControlView {
 public:
  OptionButtonView(WindowView& window, OptionButton& record, QRadioButton* button)
      : ControlView(window, record, button), record_(record), button_(button) {
    connect(button_, &QRadioButton::toggled, this, [this](bool on) { OnToggled(on); });
  }

 protected:
  void ReflectCaption() override { button_->setText(ShownText(record_.Caption)); }
  void ReflectOwn() override {
    if (HasPosted() || button_->isChecked() == record_.Selected) return;
    // An exclusive group refuses to have none of its buttons on.
    button_->setAutoExclusive(false);
    button_->setChecked(record_.Selected);
    button_->setAutoExclusive(true);
  }

 private:
  void OnToggled(bool on) {
    if (!on) {
      // By the one that was selected instead, which tells the records. Until then this one waits.
      Post([] {}, Asks::Window);
      return;
    }
    Post([&record = record_, &window = Owner().Record()] {
      if (record.Selected) return;
      SelectAlone(window, record);
      if (record.OnClick) record.OnClick();
    });
  }

  OptionButton& record_;
  QRadioButton* button_;
};

}  // namespace

ControlView* MakeButtonView(WindowView& window, Button& record, QWidget* parent) {
  return new ButtonView(window, record, new HoldButton(parent));
}

ControlView* MakeCheckBoxView(WindowView& window, CheckBox& record, QWidget* parent) {
  return new CheckBoxView(window, record, new QCheckBox(parent));
}

ControlView* MakeOptionButtonView(WindowView& window, OptionButton& record, QWidget* parent) {
  return new OptionButtonView(window, record, new QRadioButton(parent));
}

}  // namespace gainsmith
