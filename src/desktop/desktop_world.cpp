// DesktopWorld: time, windows and input. Ports, files and dialogs are only passed on.
#include "desktop/desktop_world.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QLineEdit>
#include <QScreen>
#include <QThread>
#include <algorithm>
#include <utility>

#include "desktop/dialogs.h"
#include "desktop/documents.h"
#include "desktop/record_values.h"
#include "host/files.h"
#include "host/port_names.h"
#include "host/qt_text.h"
#include "platform/memory_rows.h"

namespace gainsmith {
namespace {

// Brings the page that a control lies on to the front.
void TurnPageTo(const Control& control) {
  for (const Control* inside = &control; inside->Container != nullptr; inside = inside->Container) {
    if (inside->Container->Kind != ControlKind::Tabs) continue;
    static_cast<Tabs*>(inside->Container)->CurrentPage = inside->Page;
  }
}

// Progress loops ask for a repaint with every step; the eye needs no more than this.
constexpr int RepaintEveryMs = 15;

bool IsUserInput(QEvent::Type type) {
  switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

}  // namespace

// While one stands, timers and user actions wait, but for the releases of held buttons, whose
// handlers may bring up another dialog; and the pointer is the ordinary one.
class DesktopWorld::DialogScope {
 public:
  explicit DialogScope(DesktopWorld& world) : world_(world), parent_(QApplication::activeWindow()) {
    world_.BeforeSleep();
    world_.timers_.Hold();
    world_.queue_.Hold();
    ++world_.host_.Dialogs;
    world_.ShowScreenPointer();
  }
  DialogScope(const DialogScope&) = delete;
  DialogScope& operator=(const DialogScope&) = delete;
  ~DialogScope() {
    --world_.host_.Dialogs;
    world_.ShowScreenPointer();
    world_.DeleteClosed();
    // Not every window system does.
    if (parent_) parent_->activateWindow();
    world_.queue_.Release();
    world_.timers_.Release();
  }
  [[nodiscard]] QWidget* Parent() const { return parent_; }

 private:
  DesktopWorld& world_;
  QPointer<QWidget> parent_;
};

DesktopWorld::DesktopWorld(std::string programDirectory, RowStoreOpener openRows)
    : programDirectory_(std::move(programDirectory)),
      openRows_(openRows),
      timers_(*this),
      host_{*this, queue_} {
  QApplication::setQuitOnLastWindowClosed(false);
  qApp->installEventFilter(this);
  connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
          [this] { BeforeSleep(); });
  // Ends a sleep, and with it brings what has grown older to the screen.
  connect(&everySecond_, &QTimer::timeout, this, [] {});
  everySecond_.start(1000);
}

DesktopWorld::~DesktopWorld() {
  qApp->removeEventFilter(this);
  for (const auto& view : views_) {
    if (view) view->Detach();
  }
  queue_.Clear();
  for (const auto& topLevel : topLevels_) delete topLevel;
  if (shownPointer_ != MousePointer::Default) QApplication::restoreOverrideCursor();
}

bool DesktopWorld::OpenPort(int portNumber, const std::string& settings) {
  return line_.Open(PortDevice(ToQt(programDirectory_), portNumber), settings);
}

std::string DesktopWorld::DescribePort(int portNumber) {
  return FromQt(PortDescription(ToQt(programDirectory_), portNumber));
}

std::vector<std::string> DesktopWorld::DescribePorts(int lastPort) {
  std::vector<std::string> descriptions;
  for (const QString& text : PortDescriptions(ToQt(programDirectory_), lastPort)) {
    descriptions.push_back(FromQt(text));
  }
  return descriptions;
}

void DesktopWorld::PumpEvents(std::int64_t deadlineMs) {
  if (Ended()) return;
  BeforeSleep();
  pump_.Run(deadlineMs);
}

int DesktopWorld::PresentYear() { return QDate::currentDate().year(); }

std::string DesktopWorld::TimeOfDay() {
  return FromQt(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")));
}

void DesktopWorld::BeforeSleep() {
  if (host_.Reflecting || Ended()) return;
  host_.Reflecting = true;
  for (Window* window : LoadedWindows()) {
    WindowView* view = ViewOf(*window);
    if (view == nullptr || !window->Visible) continue;
    view->TakeArea();
    window->Refresh();
    view->Reflect();
  }
  host_.Reflecting = false;
  FocusPending();
  timers_.Rescan();
}

WindowView* DesktopWorld::ViewOf(const Window& window) const {
  const auto view = std::find_if(views_.begin(), views_.end(), [&](const auto& v) {
    return v && !v->Detached() && &v->Record() == &window;
  });
  return view == views_.end() ? nullptr : view->data();
}

const WindowView* DesktopWorld::ViewOfWidget(const QWidget* widget) const {
  for (; widget != nullptr; widget = widget->parentWidget()) {
    const auto view = std::find_if(views_.begin(), views_.end(),
                                   [&](const auto& v) { return v && &v->TopLevel() == widget; });
    if (view != views_.end()) return view->data();
    // The list of a combo box is part of its window, a message box is not.
    if (widget->isWindow() && widget->windowType() != Qt::Popup) return nullptr;
  }
  return nullptr;
}

QWidget* DesktopWorld::MainWidget() const {
  for (const auto& view : views_) {
    if (view && !view->Detached() && dynamic_cast<FrameWindow*>(&view->Record()) != nullptr) {
      return &view->TopLevel();
    }
  }
  return nullptr;
}

void DesktopWorld::WindowShown(Window& window) {
  WindowView* view = ViewOf(window);
  if (view == nullptr) {
    std::erase_if(views_, [](const auto& v) { return v.isNull(); });
    std::erase_if(topLevels_, [](const auto& t) { return t.isNull(); });
    view = WindowView::Make(host_, window);
    views_.emplace_back(view);
    topLevels_.emplace_back(&view->TopLevel());
  }
  BeforeSleep();
  view->Show(MainWidget());
}

void DesktopWorld::WindowHidden(Window& window) {
  WindowView* view = ViewOf(window);
  if (view != nullptr) {
    if (window.Loaded) {
      view->TopLevel().hide();
    } else {
      view->Detach();
    }
    if (Window* modal = ModalWindow(); modal != nullptr && ViewOf(*modal) != nullptr) {
      ViewOf(*modal)->TopLevel().activateWindow();
    } else if (QWidget* main = MainWidget()) {
      main->activateWindow();
    }
  }
  if (!window.Loaded && dynamic_cast<FrameWindow*>(&window) != nullptr) EndProgram();
}

void DesktopWorld::ProgramEnded() {
  for (const auto& view : views_) {
    if (view) view->Detach();
  }
  queue_.Clear();
  QAbstractEventDispatcher::instance()->wakeUp();
  // Without a loop to end it would end the next one, a dialog's say.
  if (thread()->loopLevel() > 0) QCoreApplication::exit(0);
}

void DesktopWorld::SetFocus(Control& control) {
  pendingFocus_ = &control;
  TurnPageTo(control);
  BeforeSleep();
}

// A control may be given the keyboard before its window is on the screen, or enabled.
void DesktopWorld::FocusPending() {
  if (pendingFocus_ == nullptr) return;
  for (const auto& view : views_) {
    if (!view || view->Detached()) continue;
    ControlView* control = view->ViewOf(*pendingFocus_);
    if (control == nullptr) continue;
    pendingFocus_ = nullptr;
    QWidget* widget = control->FocusWidget();
    widget->setFocus(Qt::OtherFocusReason);
    if (auto* edit = dynamic_cast<QLineEdit*>(widget)) edit->selectAll();
    return;
  }
}

void DesktopWorld::SetScreenPointer(MousePointer pointer) {
  if (Ended()) return;
  screenPointer_ = pointer;
  ShowScreenPointer();
}

void DesktopWorld::ShowScreenPointer() {
  const MousePointer pointer = host_.Dialogs > 0 ? MousePointer::Default : screenPointer_;
  if (pointer == shownPointer_) return;
  if (shownPointer_ != MousePointer::Default) QApplication::restoreOverrideCursor();
  shownPointer_ = pointer;
  if (pointer != MousePointer::Default) QApplication::setOverrideCursor(CursorOf(pointer));
}

// Windows that were closed behind dialogs.
void DesktopWorld::DeleteClosed() {
  if (host_.Dialogs > 0) return;
  for (const auto& view : views_) {
    if (view && view->Detached()) view->Delete();
  }
}

int DesktopWorld::ScreenWidthTwips() {
  return TwipsFromPixels(QApplication::primaryScreen()->size().width());
}

int DesktopWorld::ScreenHeightTwips() {
  return TwipsFromPixels(QApplication::primaryScreen()->size().height());
}

void DesktopWorld::Repaint(Window& window) {
  if (Ended()) return;
  if (sinceRepaint_.isValid() && sinceRepaint_.elapsed() < RepaintEveryMs) return;
  BeforeSleep();
  if (WindowView* view = ViewOf(window)) view->TopLevel().repaint();
  sinceRepaint_.start();
}

MessageAnswer DesktopWorld::AnswerMessage(const Message& message) {
  const DialogScope scope(*this);
  return RunMessageBox(scope.Parent(), message);
}

ChosenFile DesktopWorld::AskOpenFile(const std::string& filter) {
  if (Ended()) return {};
  const DialogScope scope(*this);
  return RunFileDialog(scope.Parent(), FilePurpose::Open, filter);
}

ChosenFile DesktopWorld::AskSaveFile(const std::string& filter) {
  if (Ended()) return {};
  const DialogScope scope(*this);
  return RunFileDialog(scope.Parent(), FilePurpose::Save, filter);
}

std::optional<Colour> DesktopWorld::AskColour(Colour present) {
  if (Ended()) return std::nullopt;
  const DialogScope scope(*this);
  return RunColourDialog(scope.Parent(), present);
}

std::optional<std::string> DesktopWorld::ReadFile(const std::string& path) {
  std::optional<std::string> bytes = ReadStartOfFile(path, MostFileBytes + 1);
  if (bytes) bytes = LimitedToMost(std::move(*bytes));
  return bytes;
}

bool DesktopWorld::WriteFile(const std::string& path, const std::string& bytes) {
  return !Ended() && WriteWholeFile(path, bytes);
}

bool DesktopWorld::FileExists(const std::string& path) { return IsFile(path); }

void DesktopWorld::CopyText(const std::string& text) {
  if (!Ended()) QApplication::clipboard()->setText(ToQt(text));
}

void DesktopWorld::OpenDocument(const std::string& address) {
  if (!Ended()) OpenWithDesktop(address);
}

std::unique_ptr<RowStore> DesktopWorld::OpenRows(const std::string& path,
                                                 const std::string& table) {
  if (openRows_ == nullptr) return std::make_unique<MemoryRows>();
  return openRows_(path, table);
}

// A held Enter commits and presses once, where Qt took its repeats for new presses, too.
bool DesktopWorld::RepeatsEnter(const QKeyEvent& event) {
  if (event.isAutoRepeat() || (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter)) {
    return false;
  }
  if (event.type() == QEvent::KeyRelease) {
    enterRepeats_.Release(event);
    return false;
  }
  if (enterRepeats_.IsRepeat(event)) return true;
  enterRepeats_.Press(event);
  return false;
}

bool DesktopWorld::eventFilter(QObject* receiver, QEvent* event) {
  const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (key && receiver->isWidgetType() && RepeatsEnter(*static_cast<QKeyEvent*>(event))) return true;
  if (!IsUserInput(event->type()) || ModalWindow() == nullptr) return false;
  const auto* widget = dynamic_cast<const QWidget*>(receiver);
  const WindowView* view = widget == nullptr ? nullptr : ViewOfWidget(widget);
  const bool held = view != nullptr && !view->Detached() && !TakesInput(*this, view->Record());
  if (held && event->type() == QEvent::Close) event->ignore();
  return held;
}

}  // namespace gainsmith
