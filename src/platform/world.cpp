// World: the life of windows, the same in every world.
#include "platform/world.h"

#include <algorithm>
#include <utility>

namespace gainsmith {

void World::Load(Window& window) {
  window.Loaded = true;
  ++window.Loadings;
  loaded_.push_back(&window);
  window.Loading = true;
  window.Form_Load();
  window.Loading = false;
}

void World::Reveal(Window& window) {
  if (!window.Loaded || window.Loading || ended_) return;
  window.Visible = true;
  WindowShown(window);
}

void World::Show(Window& window) {
  if (ended_) return;
  if (!window.Loaded) Load(window);
  Reveal(window);
}

void World::ShowModal(Window& window, std::function<void()> afterClosing) {
  if (ended_) return;
  if (window.Loaded) {
    Reveal(window);
    if (afterClosing) afterClosing();
    return;
  }
  window.Modal = true;
  closings_.push_back({&window, std::move(afterClosing)});
  Load(window);
  Reveal(window);
}

void World::Hide(Window& window) {
  if (!window.Visible) return;
  window.Visible = false;
  WindowHidden(window);
}

bool World::Unload(Window& window) {
  if (!window.Loaded) return true;
  if (window.Unloading) return false;
  window.Unloading = true;
  const bool agreed = window.Form_Unload();
  window.Unloading = false;
  if (!agreed) return false;

  for (Timer* timer : window.Timers) timer->Stop();
  window.Loaded = false;
  window.Visible = false;
  window.Modal = false;
  std::erase(loaded_, &window);
  WindowHidden(window);

  const auto closing = std::find_if(closings_.begin(), closings_.end(),
                                    [&](const Closing& c) { return c.Closed == &window; });
  if (closing != closings_.end()) {
    const std::function<void()> then = std::move(closing->Then);
    closings_.erase(closing);
    if (then) then();
  }
  return true;
}

std::vector<std::string> World::DescribePorts(int lastPort) {
  std::vector<std::string> descriptions;
  for (int port = 1; port <= lastPort; ++port) descriptions.push_back(DescribePort(port));
  return descriptions;
}

MessageAnswer World::ShowMessage(const Message& message) {
  if (ended_) return message.Default;
  OnMessageShown(message);
  return AnswerMessage(message);
}

Window* World::ModalWindow() const {
  const auto modal =
      std::find_if(loaded_.rbegin(), loaded_.rend(), [](const Window* w) { return w->Modal; });
  return modal == loaded_.rend() ? nullptr : *modal;
}

std::string World::LimitedToMost(std::string bytes) {
  if (bytes.size() <= MostFileBytes) return bytes;
  // A line that is cut would be read as another number than it holds.
  const std::size_t lastEnd = bytes.find_last_of("\r\n", MostFileBytes - 1);
  bytes.resize(lastEnd == std::string::npos ? 0 : lastEnd + 1);
  return bytes;
}

void World::EndProgram() {
  if (ended_) return;
  if (IsPortOpen()) ClosePort();
  ended_ = true;
  ProgramEnded();
}

}  // namespace gainsmith
