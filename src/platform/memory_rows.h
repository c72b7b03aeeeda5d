// MemoryRows: a row store in memory.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/row_store.h"

namespace gainsmith {

class MemoryRows final : public RowStore {
 public:
  // The rows end with the store.
  explicit MemoryRows(std::vector<StoredRow> rows = {}) : own_(std::move(rows)), rows_(own_) {}
  // The rows are `list`, as it is and as it becomes; it outlives the store, and the next store on
  // the same list finds what this one left.
  explicit MemoryRows(std::vector<StoredRow>* list) : rows_(*list) {}

  std::vector<StoredRow> Rows() override { return rows_; }
  void Append(const std::vector<StoredRow>& rows) override {
    rows_.insert(rows_.end(), rows.begin(), rows.end());
  }
  // A negative count deletes nothing.
  void DeleteLast(int count) override {
    const auto gone = static_cast<std::size_t>(std::max(count, 0));
    rows_.resize(rows_.size() - std::min(rows_.size(), gone));
  }

 private:
  std::vector<StoredRow> own_;
  std::vector<StoredRow>& rows_;
};

}  // namespace gainsmith
