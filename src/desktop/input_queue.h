// InputQueue: user input on its way from the widgets to the handlers of the windows.
//
// Handlers wait, nest and close windows, so none is called from inside a widget's own event: the
// widget leaves an action here, and the event loop runs it from a clean stack.
//
// A handler that waits lets the next action run inside its wait, and that one the next again: an
// impatient user could nest exchanges until the stack is full. Beyond a depth that no sensible use
// reaches, actions wait for one of those under way to end.
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
  // Runs at once where the others wait: what ends something (a held button) must not be late.
  bool Urgent = false;
};

class InputQueue {
 public:
  // Actions under way at once beyond which further ones wait.
  static constexpr int MostNested = 12;

  void Post(UserAction action);
  // Actions wait between Hold and the Release that goes with it, but for urgent ones.
  void Hold() { ++holds_; }
  [[nodiscard]] bool Held() const { return holds_ > 0; }
  void Release();
  void Clear() { actions_.clear(); }

 private:
  void Kick();
  void KickAll();
  void RunNext();

  std::deque<UserAction> actions_;
  int holds_ = 0;
  // Actions whose handlers have begun and not ended.
  int running_ = 0;
  QObject runner_;
};

}  // namespace gainsmith
