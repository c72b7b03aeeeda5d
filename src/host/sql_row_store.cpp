// Rows in an SQLite file through Qt SQL.
#include "host/sql_row_store.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <optional>
#include <utility>

#include "platform/memory_rows.h"

namespace gainsmith {
namespace {

class SqlRowStore final : public RowStore {
 public:
  SqlRowStore(const std::string& path, const std::string& table) {
    static int connections = 0;
    connection_ = QStringLiteral("rows%1").arg(++connections);
    database_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
    database_.setDatabaseName(QString::fromStdString(path));
    table_ = u'"' + QString::fromStdString(table).replace(u'"', QStringLiteral("\"\"")) + u'"';
    if (!OpenTable()) GoOnInMemory({});
  }
  ~SqlRowStore() override { Disconnect(); }

  std::vector<StoredRow> Rows() override {
    if (memory_) return memory_->Rows();
    std::vector<StoredRow> rows;
    QSqlQuery query(database_);
    query.exec(
        QStringLiteral(R"(SELECT "Parameter", "Value", "Setting Range" FROM %1 ORDER BY rowid)")
            .arg(table_));
    while (query.next()) {
      rows.push_back({query.value(0).toString().toStdString(), query.value(1).toFloat(),
                      query.value(2).toString().toStdString()});
    }
    return rows;
  }

  void Append(const std::vector<StoredRow>& rows) override {
    if (!memory_) {
      std::vector<StoredRow> before = Rows();
      if (InTransaction([&] { return Insert(rows); })) return;
      GoOnInMemory(std::move(before));
    }
    memory_->Append(rows);
  }

  void DeleteLast(int count) override {
    if (!memory_) {
      std::vector<StoredRow> before = Rows();
      const auto remove = [&] {
        return QSqlQuery(database_).exec(
            QStringLiteral("DELETE FROM %1 WHERE rowid IN "
                           "(SELECT rowid FROM %1 ORDER BY rowid DESC LIMIT %2)")
                .arg(table_)
                .arg(std::max(count, 0)));
      };
      if (InTransaction(remove)) return;
      GoOnInMemory(std::move(before));
    }
    memory_->DeleteLast(count);
  }

 private:
  bool OpenTable() {
    if (!database_.open()) return false;
    QSqlQuery query(database_);
    // The rows are a copy of the parameter table: speed matters, a power cut does not.
    query.exec(QStringLiteral("PRAGMA synchronous = OFF"));
    const bool made = query.exec(
        QStringLiteral(
            R"(CREATE TABLE IF NOT EXISTS %1 ("Parameter" TEXT, "Value" REAL, "Setting Range" TEXT))")
            .arg(table_));
    // Nothing is inserted: proves that the table can be written and has the three fields.
    return made && InTransaction([&] {
             return query.exec(
                 QStringLiteral(
                     R"(UPDATE %1 SET "Parameter" = "Parameter", "Value" = "Value", "Setting Range" = "Setting Range" WHERE rowid = -1)")
                     .arg(table_));
           });
  }

  template <typename Work>
  bool InTransaction(const Work& work) {
    QSqlQuery query(database_);
    if (!query.exec(QStringLiteral("BEGIN IMMEDIATE"))) return false;
    if (work() && query.exec(QStringLiteral("COMMIT"))) return true;
    query.exec(QStringLiteral("ROLLBACK"));
    return false;
  }

  bool Insert(const std::vector<StoredRow>& rows) {
    QSqlQuery query(database_);
    if (!query.prepare(QStringLiteral("INSERT INTO %1 VALUES (?, ?, ?)").arg(table_))) return false;
    return std::all_of(rows.begin(), rows.end(), [&](const StoredRow& row) {
      query.bindValue(0, QString::fromStdString(row.Parameter));
      query.bindValue(1, static_cast<double>(row.Value));
      query.bindValue(2, QString::fromStdString(row.SettingRange));
      return query.exec();
    });
  }

  void GoOnInMemory(std::vector<StoredRow> rows) {
    memory_.emplace(std::move(rows));
    Disconnect();
  }

  void Disconnect() {
    if (connection_.isEmpty()) return;
    database_.close();
    database_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(connection_);
    connection_.clear();
  }

  QString connection_;
  QString table_;
  QSqlDatabase database_;
  // Holds the rows once the file can't.
  std::optional<MemoryRows> memory_;
};

}  // namespace

std::unique_ptr<RowStore> OpenRowStore(const std::string& path, const std::string& table) {
  return std::make_unique<SqlRowStore>(path, table);
}

}  // namespace gainsmith
