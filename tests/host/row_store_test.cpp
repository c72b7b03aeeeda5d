// The grid's row store on a real file.
#include <QSqlDatabase>
#include <QSqlQuery>

#include "host/files.h"
#include "host/sql_row_store.h"
#include "scratch.h"

namespace gainsmith::test {
namespace {

constexpr const char* Table = "QMX4400";
constexpr const char* Spoil =
    "CREATE TRIGGER no BEFORE INSERT ON QMX4400 BEGIN SELECT RAISE(ABORT, 'full'); END";

struct RowStoreTest : Scratch {
  // What another program does with a store file, and the first value of its answer.
  static QString RunElsewhere(const std::string& file, const char* statement) {
    QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", statement);
    database.setDatabaseName(QString::fromStdString(file));
    EXPECT_TRUE(database.open());
    QSqlQuery query(database);
    EXPECT_TRUE(query.exec(statement));
    return query.next() ? query.value(0).toString() : QString();
  }
  std::string path = Path("QMX4400en.mdb");
};

std::vector<StoredRow> SomeRows() {
  return {{"Kp", 0.1F, "0-1"}, {"It's \"quoted\"", -3.4e38F, ""}, {"速", 1e-38F, "；"}};
}

TEST_F(RowStoreTest, RowsSurviveInAFileThatOthersCanRead) {
  {
    const auto store = OpenRowStore(path, Table);
    store->Append(SomeRows());
    store->Append({{"Last", 1, "x"}});
    store->DeleteLast(2);
  }
  auto rows = SomeRows();
  rows.pop_back();
  {
    const auto store = OpenRowStore(path, Table);
    EXPECT_EQ(store->Rows(), rows);
    store->DeleteLast(51);
    EXPECT_TRUE(store->Rows().empty());
    store->Append(rows);
  }
  EXPECT_EQ(RunElsewhere(path, R"(SELECT count("Setting Range") FROM QMX4400)"), "2");
  EXPECT_EQ(RunElsewhere(path, R"(SELECT min("Parameter") FROM QMX4400)"), "It's \"quoted\"");
}

TEST_F(RowStoreTest, FilesThatCannotServeAreLeftAloneAndMemoryServes) {
  const std::string garbage(5000, 'x');
  ASSERT_TRUE(WriteWholeFile(Path("garbage"), garbage));
  RunElsewhere(Path("foreign"), "CREATE TABLE QMX4400 (other TEXT)");
  const auto foreign = ReadAll(Path("foreign"));
  for (const std::string name : {"garbage", "foreign", "no/such/directory", ".", "spoiled"}) {
    const auto store = OpenRowStore(Path(name), Table);
    store->Append(SomeRows());
    if (name == "spoiled") RunElsewhere(Path(name), Spoil);
    store->Append({{"More", 2, ""}});
    store->DeleteLast(2);
    EXPECT_EQ(store->Rows().size(), 2U) << name;
  }
  EXPECT_EQ(ReadAll(Path("garbage")), garbage);
  EXPECT_EQ(ReadAll(Path("foreign")), foreign);
}

}  // namespace
}  // namespace gainsmith::test
