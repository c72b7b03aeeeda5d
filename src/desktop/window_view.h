// WindowView: a window record's widgets, built from the record alone.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/control_view.h"
#include "desktop/input_queue.h"
#include "platform/world.h"

namespace gainsmith {

// What views need of the world they are in.
struct ViewHost {
  World& TheWorld;
  InputQueue& Queue;
  // Records are being brought onto widgets: what widgets report meanwhile is not the user's doing.
  bool Reflecting = false;
  // Top edge of the main window's strip on the screen, in pixels.
  std::optional<int> StripTop = {};
  // Dialogs on the screen. They are children of a window that may be closed behind them, so no
  // window is deleted meanwhile.
  int Dialogs = 0;
};

// Whether the user may act on the window: it is shown and no other window holds the input.
bool TakesInput(const World& world, const Window& window);

// Belongs to its top-level widget and is deleted with it. Touches the record no more once Detach
// was called.
class WindowView : public QObject {
 public:
  // Makes the top-level widget and what is to be seen in it. A main window is on the screen then,
  // but not painted; any other is not shown yet.
  static WindowView* Make(ViewHost& host, Window& record);

  [[nodiscard]] Window& Record() const { return record_; }
  [[nodiscard]] QWidget& TopLevel() const { return *topLevel_; }
  [[nodiscard]] ViewHost& Host() const { return host_; }

  void Show(QWidget* owner);
  // Tells a frame window's record how large its area is.
  void TakeArea();
  void Reflect();
  // Takes the window from the screen for good and lets its widgets be deleted once the handlers
  // that are under way have returned, if no dialog is open; Delete does so when the last is closed.
  void Detach();
  void Delete() { topLevel_->deleteLater(); }
  [[nodiscard]] bool Detached() const { return detached_; }

  // Null for a control that is parked or has never been visible.
  [[nodiscard]] ControlView* ViewOf(const Control& record) const;
  // Posts an action on this window. When its turn has come it is dropped if the window takes no
  // input, besides what it asks itself; if the window is gone, it is dropped without a word. False,
  // and nothing is posted, while records are being brought onto widgets.
  bool Post(UserAction action);
  // Posts what must run at once and whatever became of the window, unless the program has ended.
  void PostUrgent(std::function<void()> run);

  // For control views.

  // Widget pixels for a place or length in twips, and for pixels of a window at its full size: a
  // window larger than the free screen is drawn smaller as a whole. Its font is, too.
  [[nodiscard]] int Pixels(int twips) const;
  [[nodiscard]] int Scaled(int pixels) const;
  void PlaceWidget(ControlView& view, const QRect& place) const;
  [[nodiscard]] QColor BackgroundUnder(const Control& record) const;
  // The widget is about to be disabled or hidden: the keyboard, where it or something in it has it,
  // goes to no other control meanwhile, and comes back to it unless it was given elsewhere.
  void HoldFocusOf(const QWidget& leaving);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  WindowView(ViewHost& host, Window& record, QWidget* topLevel, QWidget* client);
  // Makes the views of the controls that have become visible.
  void BuildShownControls();
  // False: the control, or what it lies in, has yet to become visible.
  bool BuildIfShown(Control& control);
  void LinkTabOrder();
  void ReflectWindow();
  // Reflects every control anew next time.
  void ForgetAll();
  void ReflectColours();
  // How much smaller than its record says the window is drawn, and its font for that.
  void ChooseScale();
  [[nodiscard]] QRect PlaceOfRecord() const;
  void MoveToPlace();
  void ReturnFocus();
  // The key presses the window's default or cancel button. False: it means nothing to the window.
  [[nodiscard]] bool PressByKey(int key) const;
  // Of the controls on show the first that has something to copy.
  [[nodiscard]] bool Copy() const;

  ViewHost& host_;
  Window& record_;
  QWidget* topLevel_;
  // Where the controls lie: the top level itself, or the area below the bars of a frame window.
  QWidget* client_;
  // In the order of the record's controls, which is that of the keyboard and of what lies over
  // what.
  std::vector<ControlView*> controls_;
  // Those that have not been visible so far: no widget is made for what may never be seen.
  std::vector<Control*> unbuilt_;
  // Brings the menus and tool buttons of a frame window up to date.
  std::function<void()> reflectBars_;
  // 1 or less.
  double scale_ = 1;
  bool detached_ = false;
  std::optional<std::string> caption_;
  std::optional<MousePointer> pointer_;
  std::optional<QRect> place_;
  qint64 paletteKey_ = 0;
  // Had the keyboard when it was taken out of reach.
  QPointer<QWidget> focusHome_;
};

}  // namespace gainsmith
