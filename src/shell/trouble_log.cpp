// What went wrong lately.
#include "shell/trouble_log.h"

#include <algorithm>
#include <utility>

namespace gainsmith {

void TroubleLog::Add(const std::string& time, std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  ++revision_;
  if (!entries_.empty() && entries_.front().Text == text) {
    entries_.front().Time = time;
    ++entries_.front().Count;
    return;
  }
  entries_.push_front({time, std::move(text), 1});
  if (entries_.size() > Most) entries_.pop_back();
}

std::string TroubleLog::AsText() const {
  std::string text;
  for (const Trouble& trouble : entries_) {
    text += trouble.Time + "\t" + trouble.Text + "\t" + std::to_string(trouble.Count) + "\n";
  }
  return text;
}

}  // namespace gainsmith
