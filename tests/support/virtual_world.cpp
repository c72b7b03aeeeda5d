// VirtualWorld: see the header.
#include "support/virtual_world.h"

#include <algorithm>
#include <utility>

namespace gainsmith::test {
namespace {

// What the test has laid out next.
template <typename T>
T Next(std::deque<T>& script, const T& otherwise) {
  if (script.empty()) return otherwise;
  const T first = std::move(script.front());
  script.pop_front();
  return first;
}

class MemoryRows : public RowStore {
 public:
  explicit MemoryRows(std::vector<StoredRow>& rows) : rows_(rows) {}
  std::vector<StoredRow> Rows() override { return rows_; }
  void Append(const std::vector<StoredRow>& rows) override {
    rows_.insert(rows_.end(), rows.begin(), rows.end());
  }
  void DeleteLast(int count) override {
    rows_.resize(rows_.size() - std::min(rows_.size(), static_cast<std::size_t>(count)));
  }

 private:
  std::vector<StoredRow>& rows_;
};

}  // namespace

void VirtualWorld::At(std::int64_t delayMs, std::function<void()> action) {
  const std::int64_t at = nowMs_ + delayMs;
  const auto later = std::find_if(script_.begin(), script_.end(),
                                  [&](const Action& other) { return other.AtMs > at; });
  script_.insert(later, {at, std::move(action)});
}

void VirtualWorld::RunFor(std::int64_t ms) {
  const std::int64_t end = nowMs_ + ms;
  while (nowMs_ <= end && !Ended()) PumpEvents(end);
}

bool VirtualWorld::RunUntil(const std::function<bool()>& done, std::int64_t limitMs) {
  const std::int64_t end = nowMs_ + limitMs;
  while (!done()) {
    if (nowMs_ > end || Ended()) return false;
    PumpEvents(end);
  }
  return true;
}

Texts VirtualWorld::TakeFrames() {
  Texts texts = Log.Texts();
  Log.Clear();
  return texts;
}

Texts VirtualWorld::TakeMessages() {
  Texts texts;
  for (const Message& message : Messages) texts.push_back(message.Text);
  Messages.clear();
  return texts;
}

bool VirtualWorld::OpenPort(int portNumber, const std::string&) {
  const auto device = Devices.find(portNumber);
  if (device == Devices.end() || PortsInUse.contains(portNumber) || Ended()) return false;
  device_ = device->second;
  input_.clear();
  return true;
}

void VirtualWorld::Receive() {
  if (device_ == nullptr) return;
  const std::vector<std::uint8_t> arrived = device_->Transmit(nowMs_ * 1000);
  input_.insert(input_.end(), arrived.begin(), arrived.end());
}

int VirtualWorld::BytesAvailable() {
  Receive();
  return device_ == nullptr ? 0 : static_cast<int>(input_.size());
}

void VirtualWorld::ClearInput() {
  Receive();
  input_.clear();
}

std::vector<std::uint8_t> VirtualWorld::ReadAll() {
  Receive();
  return std::exchange(input_, {});
}

void VirtualWorld::WriteByte(std::uint8_t byte) {
  if (device_ == nullptr) return;
  Log.Write(byte, nowMs_);
  device_->Receive(byte, nowMs_ * 1000);
}

std::string VirtualWorld::DescribePort(int portNumber) {
  return Devices.contains(portNumber) ? "simulated drive" : "";
}

std::optional<Colour> VirtualWorld::AskColour(Colour) {
  return Next(ChosenColours, std::optional<Colour>());
}

Timer* VirtualWorld::NextTimer() {
  Timer* next = nullptr;
  for (Window* window : LoadedWindows()) {
    for (Timer* timer : window->Timers) {
      if (!timer->Enabled()) continue;
      TimerState& state = timers_[timer];
      if (state.Starts != timer->Starts()) {
        state.Starts = timer->Starts();
        state.DueMs = nowMs_ + timer->IntervalMs;
      }
      if (state.Ticking) continue;
      if (next == nullptr || state.DueMs < timers_[next].DueMs) next = timer;
    }
  }
  return next;
}

void VirtualWorld::Tick(Timer& timer) {
  timers_[&timer].Ticking = true;
  timer.OnTimer();
  TimerState& state = timers_[&timer];
  state.Ticking = false;
  state.Starts = timer.Starts();
  state.DueMs = nowMs_ + timer.IntervalMs;
}

void VirtualWorld::PumpEvents(std::int64_t deadlineMs) {
  if (Ended()) return;
  if (messagesShown_ > 0) {
    nowMs_ = std::max(nowMs_, deadlineMs + 1);
    return;
  }
  DeepestWait = std::max(DeepestWait, ++pumping_);
  Timer* timer = NextTimer();
  const bool scripted = !script_.empty() && script_.front().AtMs <= deadlineMs &&
                        (timer == nullptr || script_.front().AtMs <= timers_[timer].DueMs);
  if (scripted) {
    const Action action = std::move(script_.front());
    script_.pop_front();
    nowMs_ = std::max(nowMs_, action.AtMs);
    action.Do();
  } else if (timer != nullptr && timers_[timer].DueMs <= deadlineMs) {
    nowMs_ = std::max(nowMs_, timers_[timer].DueMs);
    Tick(*timer);
  } else {
    nowMs_ = std::max(nowMs_, deadlineMs + 1);
  }
  --pumping_;
}

void VirtualWorld::SetScreenPointer(MousePointer pointer) {
  ScreenPointer = pointer;
  ScreenPointers.push_back(pointer);
}

MessageAnswer VirtualWorld::ShowMessage(const Message& message) {
  if (Ended()) return message.Default;
  Messages.push_back(message);
  ++messagesShown_;
  if (OnMessage) OnMessage(message);
  --messagesShown_;
  return Next(Answers, message.Default);
}

ChosenFile VirtualWorld::AskFile(const std::string& filter) {
  FileDialogs.push_back(filter);
  return Next(ChosenFiles, ChosenFile());
}

std::optional<std::string> VirtualWorld::ReadFile(const std::string& path) {
  const auto file = Files.find(path);
  if (file == Files.end() || Unreadable.contains(path)) return std::nullopt;
  return LimitedToMost(file->second);
}

bool VirtualWorld::WriteFile(const std::string& path, const std::string& bytes) {
  if (Unwritable.contains(path) || Ended()) return false;
  Files[path] = bytes;
  return true;
}

std::unique_ptr<RowStore> VirtualWorld::OpenRows(const std::string& path, const std::string&) {
  return std::make_unique<MemoryRows>(StoredRows[path]);
}

}  // namespace gainsmith::test
