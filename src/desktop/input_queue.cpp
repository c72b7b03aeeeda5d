// InputQueue: one queued event for each action, so that nested event loops go on with the rest.
#include "desktop/input_queue.h"

#include <QAbstractEventDispatcher>
#include <algorithm>
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
  if (holds_ == 0) KickAll();
}

void InputQueue::KickAll() {
  for (std::size_t i = 0; i < actions_.size(); ++i) Kick();
}

void InputQueue::Kick() {
  QMetaObject::invokeMethod(
      &runner_, [this] { RunNext(); }, Qt::QueuedConnection);
}

void InputQueue::RunNext() {
  const bool wait = holds_ > 0 || running_ >= MostNested;
  const auto next = std::find_if(actions_.begin(), actions_.end(),
                                 [&](const UserAction& action) { return !wait || action.Urgent; });
  if (next == actions_.end()) return;
  const UserAction action = std::move(*next);
  actions_.erase(next);
  ++running_;
  if (!action.Allowed || action.Allowed()) {
    action.Run();
  } else if (action.Dropped) {
    action.Dropped();
  }
  --running_;
  // There is room for one again, and the events of those that waited have been used up.
  if (running_ == MostNested - 1) KickAll();
  // The handler may have taken longer than a wait around it, or ended the program: whoever sleeps
  // next looks at the clock again first.
  QAbstractEventDispatcher::instance()->wakeUp();
}

}  // namespace gainsmith
