// InputQueue: user input on its way from the widgets to the handlers of the windows.
//
// Handlers wait, nest and close windows, so none is called from inside a widget's own event: the
// widget leaves an action here, and the event loop runs it from a clean stack.
#pragma once

#include <QObject>
#include <deque>
#include <functional>

namespace gainsmith {

struct UserAction {
  // Whether the action may still run when its turn has come; empty: it always may.
  std::function<bool()> Allowed;
  std::function<void()> Run;
  // Called instead of Run when the action was not allowed.
  std::function<void()> Dropped;
  // An action that comes right behind one with the same key replaces it (mouse moves); null: never.
  const void* MergeKey = nullptr;
};

class InputQueue {
 public:
  void Post(UserAction action);
  // Actions wait between Hold and the Release that goes with it.
  void Hold() { ++holds_; }
  void Release();
  void Clear() { actions_.clear(); }

 private:
  void Kick();
  void RunNext();

  std::deque<UserAction> actions_;
  int holds_ = 0;
  QObject runner_;
};

}  // namespace gainsmith
