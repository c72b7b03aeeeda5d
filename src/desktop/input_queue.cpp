// InputQueue: one queued event for each action, so that nested event loops go on with the rest.
#include "desktop/input_queue.h"

#include <QAbstractEventDispatcher>
#include <utility>

namespace gainsmith {

void InputQueue::Post(UserAction action) {
  const bool merges = action.MergeKey != nullptr && !actions_.empty() &&
                      actions_.back().MergeKey == action.MergeKey;
  if (merges) {
    actions_.back() = std::move(action);
    return;
  }
  actions_.push_back(std::move(action));
  Kick();
}

void InputQueue::Release() {
  --holds_;
  if (holds_ > 0) return;
  for (std::size_t i = 0; i < actions_.size(); ++i) Kick();
}

void InputQueue::Kick() {
  QMetaObject::invokeMethod(
      &runner_, [this] { RunNext(); }, Qt::QueuedConnection);
}

void InputQueue::RunNext() {
  if (holds_ > 0 || actions_.empty()) return;
  const UserAction action = std::move(actions_.front());
  actions_.pop_front();
  if (!action.Allowed || action.Allowed()) {
    action.Run();
  } else if (action.Dropped) {
    action.Dropped();
  }
  // The handler may have taken longer than a wait around it, or ended the program: whoever sleeps
  // next looks at the clock again first.
  QAbstractEventDispatcher::instance()->wakeUp();
}

}  // namespace gainsmith
