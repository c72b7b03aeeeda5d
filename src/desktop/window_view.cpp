// WindowView: building, placing and reflecting a window.
#include "desktop/window_view.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QScreen>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "desktop/frame_bars.h"
#include "desktop/record_values.h"
#include "host/qt_text.h"

namespace gainsmith {
namespace {

constexpr QSize SmallestMainWindow(640, 400);

// What the window manager puts around windows; an ample guess while none on the screen tells.
QMargins FrameMargins() {
  constexpr QMargins Guess(4, 32, 4, 4);
  QMargins widest;
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->isVisible()) widest = widest | window->frameMargins();
  }
  return widest.isNull() ? Guess : widest;
}

// Where a window's contents may lie.
QRect FreeScreen() {
  return QApplication::primaryScreen()->availableGeometry().marginsRemoved(FrameMargins());
}

}  // namespace

bool TakesInput(const World& world, const Window& window) {
  const Window* modal = world.ModalWindow();
  return !world.Ended() && window.Visible && (modal == nullptr || modal == &window);
}

WindowView* WindowView::Make(ViewHost& host, Window& record) {
  if (auto* frame = dynamic_cast<FrameWindow*>(&record)) {
    auto* top = new QMainWindow;
    auto* client = new QWidget;
    top->setCentralWidget(client);
    top->setMinimumSize(SmallestMainWindow);
    if (!frame->MaximizeBox) top->setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    auto* view = new WindowView(host, record, top, client);
    // To the screen while it is empty: what is in it is made while the window manager works, and is
    // there before anything is painted. The start of the program waits for both.
    view->ReflectWindow();
    view->Show(nullptr);
    view->BuildShownControls();
    // Not on a link of the strip, which Enter would open.
    client->setFocusPolicy(Qt::ClickFocus);
    client->setFocus();
    view->reflectBars_ = MakeFrameBars(*view, *frame, *top);
    return view;
  }
  auto* top = new QWidget(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                       Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
  auto* view = new WindowView(host, record, top, top);
  view->BuildShownControls();
  return view;
}

WindowView::WindowView(ViewHost& host, Window& record, QWidget* topLevel, QWidget* client)
    : QObject(topLevel), host_(host), record_(record), topLevel_(topLevel), client_(client) {
  topLevel_->setObjectName(ToQt(record.Name));
  topLevel_->installEventFilter(this);
  if (client == topLevel) ChooseScale();
  std::copy_if(record.Controls.begin(), record.Controls.end(), std::back_inserter(unbuilt_),
               [](const Control* control) { return !control->Parked; });
}

void WindowView::ChooseScale() {
  const QSizeF room = FreeScreen().size();
  const double widthPixels = PixelsFromTwips(record_.ClientWidthTwips);
  const double heightPixels = PixelsFromTwips(record_.ClientHeightTwips);
  scale_ = std::min({1.0, room.width() / widthPixels, room.height() / heightPixels});
  if (scale_ == 1) return;
  QFont font = QApplication::font();
  // Down, so that no text outgrows its place.
  font.setPixelSize(static_cast<int>(font.pixelSize() * scale_));
  topLevel_->setFont(font);
}

int WindowView::Pixels(int twips) const {
  return PixelsFromTwips(static_cast<int>(std::lround(twips * scale_)));
}

int WindowView::Scaled(int pixels) const { return static_cast<int>(std::lround(pixels * scale_)); }

QRect WindowView::PlaceOfRecord() const {
  return {PixelsFromTwips(record_.LeftTwips), PixelsFromTwips(record_.TopTwips),
          Pixels(record_.ClientWidthTwips), Pixels(record_.ClientHeightTwips)};
}

bool WindowView::BuildIfShown(Control& control) {
  if (!control.Visible) return false;
  QWidget* parent = client_;
  if (control.Container != nullptr) {
    ControlView* container = ViewOf(*control.Container);
    if (container == nullptr) return false;
    parent = container->PageParent(control.Page);
  }
  controls_.push_back(MakeControlView(*this, control, parent));
  return true;
}

void WindowView::BuildShownControls() {
  const std::size_t before = controls_.size();
  for (Control* control : std::exchange(unbuilt_, {})) {
    if (!BuildIfShown(*control)) unbuilt_.push_back(control);
  }
  if (controls_.size() == before) return;
  if (before > 0) {
    const auto place = [this](const ControlView* view) {
      return std::find(record_.Controls.begin(), record_.Controls.end(), &view->Record());
    };
    std::sort(controls_.begin(), controls_.end(),
              [&](const ControlView* a, const ControlView* b) { return place(a) < place(b); });
    for (ControlView* view : controls_) view->Widget().raise();
  }
  LinkTabOrder();
}

void WindowView::LinkTabOrder() {
  QWidget* before = nullptr;
  for (ControlView* view : controls_) {
    QWidget* widget = view->FocusWidget();
    if (widget->focusPolicy() == Qt::NoFocus) continue;
    if (before != nullptr) QWidget::setTabOrder(before, widget);
    before = widget;
  }
}

ControlView* WindowView::ViewOf(const Control& record) const {
  const auto view = std::find_if(controls_.begin(), controls_.end(),
                                 [&](const ControlView* v) { return &v->Record() == &record; });
  return view == controls_.end() ? nullptr : *view;
}

void WindowView::PlaceWidget(ControlView& view, const QRect& place) const {
  QPoint origin(0, 0);
  if (const Control* container = view.Record().Container) {
    if (const ControlView* owner = ViewOf(*container)) origin = owner->PageOrigin();
  }
  view.Widget().setGeometry(place.translated(-origin));
}

QColor WindowView::BackgroundUnder(const Control& record) const {
  for (const Control* below = record.Container; below != nullptr; below = below->Container) {
    if (const auto colour = FixedColour(below->BackColor)) return *colour;
  }
  return QApplication::palette().color(QPalette::Window);
}

void WindowView::Reflect() {
  if (detached_) return;
  const qint64 paletteKey = QApplication::palette().cacheKey();
  if (paletteKey != std::exchange(paletteKey_, paletteKey)) {
    ReflectColours();
    ForgetAll();
  }
  ReflectWindow();
  BuildShownControls();
  for (ControlView* view : controls_) view->Reflect();
  ReturnFocus();
  if (reflectBars_) reflectBars_();
  if (!TakesInput(host_.TheWorld, record_)) {
    for (ControlView* view : controls_) view->LetGo();
  }
}

// Otherwise the window system would pass it on to the next field, and what the user goes on typing
// with it.
void WindowView::HoldFocusOf(const QWidget& leaving) {
  QWidget* focus = topLevel_->focusWidget();
  if (focus == nullptr || (focus != &leaving && !leaving.isAncestorOf(focus))) return;
  focusHome_ = focus;
  topLevel_->setFocus(Qt::OtherFocusReason);
}

void WindowView::ReturnFocus() {
  if (!focusHome_) return;
  if (topLevel_->focusWidget() != topLevel_) {
    focusHome_.clear();
  } else if (focusHome_->isEnabled() && focusHome_->isVisibleTo(topLevel_)) {
    std::exchange(focusHome_, nullptr)->setFocus(Qt::OtherFocusReason);
  }
}

void WindowView::ForgetAll() {
  for (ControlView* view : controls_) view->Forget();
}

void WindowView::ReflectWindow() {
  if (caption_ != record_.Caption) {
    caption_ = record_.Caption;
    topLevel_->setWindowTitle(ShownText(record_.Caption));
  }
  if (pointer_ != record_.Pointer) {
    pointer_ = record_.Pointer;
    if (record_.Pointer == MousePointer::Default) {
      topLevel_->unsetCursor();
    } else {
      topLevel_->setCursor(CursorOf(record_.Pointer));
    }
  }
  if (const QRect place = PlaceOfRecord(); place_ != place) {
    place_ = place;
    MoveToPlace();
  }
}

// All windows stand on the ground of the scheme, so that they look alike in light and dark; a
// record's own BackColor is for its controls.
void WindowView::ReflectColours() {
  client_->setPalette(QPalette());
  client_->setAutoFillBackground(true);
}

// At the record's place, moved as far as it takes to be on the screen as a whole.
void WindowView::MoveToPlace() {
  const QRect screen = QApplication::primaryScreen()->availableGeometry();
  if (client_ != topLevel_) {
    topLevel_->resize(place_->size().expandedTo(SmallestMainWindow).boundedTo(screen.size()));
    topLevel_->move(screen.topLeft());
    return;
  }
  topLevel_->setFixedSize(place_->size());
  const QMargins frame = FrameMargins();
  QRect room = screen.marginsRemoved(frame);
  if (host_.StripTop) {
    QRect above = room;
    above.setBottom(*host_.StripTop - 1 - frame.bottom());
    if (above.height() >= place_->height()) room = above;
  }
  const auto within = [](int wanted, int first, int last) {
    return std::max(first, std::min(wanted, last));
  };
  const int left =
      within(place_->left() + frame.left(), room.left(), room.right() + 1 - place_->width());
  const int top =
      within(place_->top() + frame.top(), room.top(), room.bottom() + 1 - place_->height());
  // A window is moved by its frame.
  topLevel_->move(left - frame.left(), top - frame.top());
}

void WindowView::Show(QWidget* owner) {
  if (!topLevel_->isVisible()) {
    topLevel_->setWindowModality(record_.Modal ? Qt::ApplicationModal : Qt::NonModal);
    topLevel_->winId();
    if (owner != nullptr && owner != topLevel_ && owner->windowHandle() != nullptr) {
      topLevel_->windowHandle()->setTransientParent(owner->windowHandle());
    }
  }
  const auto* frame = dynamic_cast<const FrameWindow*>(&record_);
  if (frame != nullptr && frame->Maximized) {
    topLevel_->showMaximized();
  } else {
    topLevel_->show();
  }
  topLevel_->raise();
  topLevel_->activateWindow();
}

void WindowView::TakeArea() {
  auto* frame = dynamic_cast<FrameWindow*>(&record_);
  if (frame == nullptr || !topLevel_->isVisible()) return;
  frame->AreaWidthTwips = TwipsFromPixels(client_->width());
  frame->AreaHeightTwips = TwipsFromPixels(client_->height());
  const int stripTop = client_->height() - PixelsFromTwips(frame->StripTwips);
  host_.StripTop = client_->mapToGlobal(QPoint(0, stripTop)).y();
}

void WindowView::Detach() {
  if (detached_) return;
  host_.Reflecting = true;
  topLevel_->hide();
  host_.Reflecting = false;
  detached_ = true;
  if (host_.Dialogs == 0) Delete();
}

bool WindowView::Post(UserAction action) {
  if (detached_ || host_.Reflecting) return false;
  const QPointer<WindowView> self(this);
  action.Allowed = [self, asked = std::move(action.Allowed)] {
    return self && !self->detached_ && TakesInput(self->host_.TheWorld, self->record_) &&
           (!asked || asked());
  };
  action.Dropped = [self, dropped = std::move(action.Dropped)] {
    if (self && !self->detached_ && dropped) dropped();
  };
  host_.Queue.Post(std::move(action));
  return true;
}

void WindowView::PostUrgent(std::function<void()> run) {
  UserAction action;
  action.Urgent = true;
  action.Allowed = [&world = host_.TheWorld] { return !world.Ended(); };
  action.Run = std::move(run);
  host_.Queue.Post(std::move(action));
}

bool WindowView::Copy() const {
  return std::any_of(controls_.begin(), controls_.end(),
                     [](ControlView* view) { return view->Widget().isVisible() && view->Copy(); });
}

// Keys come here that the control with the keyboard has no use for.
bool WindowView::PressByKey(int key) const {
  const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
  if (!enter && key != Qt::Key_Escape) return false;
  for (ControlView* view : controls_) {
    if (view->Record().Kind != ControlKind::Button || !WithinReach(view->Record())) continue;
    const auto& button = static_cast<const Button&>(view->Record());
    if (!(enter ? button.Default : button.Cancel)) continue;
    static_cast<QAbstractButton&>(view->Widget()).click();
    return true;
  }
  return false;
}

bool WindowView::eventFilter(QObject* watched, QEvent* event) {
  if (watched != topLevel_ || detached_) return false;
  if (event->type() == QEvent::KeyPress) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (key.matches(QKeySequence::Copy)) return Copy();
    return !key.isAutoRepeat() && PressByKey(key.key());
  }
  if (event->type() != QEvent::Close) return false;
  event->ignore();
  UserAction action;
  action.Run = [&world = host_.TheWorld, &record = record_] { world.Unload(record); };
  Post(std::move(action));
  return true;
}

}  // namespace gainsmith
