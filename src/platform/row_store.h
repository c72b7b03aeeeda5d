// RowStore: the table behind the parameters grid.
#pragma once

#include <string>
#include <vector>

namespace gainsmith {

struct StoredRow {
  std::string Parameter;
  float Value = 0;
  std::string SettingRange;
  bool operator==(const StoredRow&) const = default;
};

// A table of rows in the order of their appending. Closed when it is destroyed.
class RowStore {
 public:
  RowStore() = default;
  RowStore(const RowStore&) = delete;
  RowStore& operator=(const RowStore&) = delete;
  virtual ~RowStore() = default;

  // All rows as they are now.
  virtual std::vector<StoredRow> Rows() = 0;
  virtual void Append(const std::vector<StoredRow>& rows) = 0;
  // Deletes the last `count` rows, or all where there are fewer.
  virtual void DeleteLast(int count) = 0;
};

}  // namespace gainsmith
