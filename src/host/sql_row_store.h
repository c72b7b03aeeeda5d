// The grid's row store: a table of an SQLite file, or of memory where the file can't be used.
#pragma once

#include <memory>
#include <string>

#include "platform/row_store.h"

namespace gainsmith {

// The rows of `table` in the SQLite file `path`, both made when missing. A file that is not an
// SQLite file, that can't be written or that holds another kind of table is left untouched, and
// the rows are kept in memory; so they are from the first write that fails.
std::unique_ptr<RowStore> OpenRowStore(const std::string& path, const std::string& table);

}  // namespace gainsmith
