// SQLite files of strangers: what is read of them, and what they cannot make the reader do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "player/Error.h"
#include "player/SqliteFile.h"
#include "tests/support/SqliteFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace player {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class SqliteFileTest : public testing::Test {
 protected:
  fs::path fileWith(const std::string &sql) const {
    support::runSql(folder_.path() / "a ?#%.itdb", sql);
    return folder_.path() / "a ?#%.itdb";
  }

  // The numbers of a column.
  std::vector<std::optional<int64_t>> numbers(const fs::path &path, const std::string &column,
                                              TableState expected = TableState::Read) const {
    SqliteFile file(path);
    std::vector<std::optional<int64_t>> values;
    const TableState state =
        file.each("item", {column}, [&](const SqliteRow &row) { values.push_back(row[0].integer()); });
    EXPECT_EQ(state, expected);
    return values;
  }

  std::string refusal(const fs::path &path) const {
    try {
      const SqliteFile file(path);
    } catch (const PlayerError &error) {
      return error.what();
    }
    return {};
  }

  support::TemporaryFolder folder_;
};

TEST_F(SqliteFileTest, ColumnThatTheTableLacksHasNoValue) {
  const fs::path path =
      fileWith("CREATE TABLE item (PID INTEGER, title TEXT); INSERT INTO item VALUES (7, 'x')");
  EXPECT_THAT(numbers(path, "pid"), ElementsAre(7));
  EXPECT_THAT(numbers(path, "year"), ElementsAre(std::nullopt));
}

TEST_F(SqliteFileTest, ValueOfAnotherTypeIsNone) {
  const fs::path path = fileWith(
      "CREATE TABLE item (v); INSERT INTO item VALUES (1), (NULL), ('2'), (x'33'), (4.9), (1e300), (-1)");
  EXPECT_THAT(numbers(path, "v"),
              ElementsAre(1, std::nullopt, std::nullopt, std::nullopt, 4, std::nullopt, -1));
  SqliteFile file(path);
  std::string texts;
  std::vector<std::optional<uint32_t>> words;
  file.each("item", {"v"}, [&](const SqliteRow &row) {
    texts += row[0].text() + "|";
    words.push_back(row[0].number());
  });
  EXPECT_EQ(texts, "||2|||||");
  EXPECT_EQ(words.back(), std::nullopt);
}

TEST_F(SqliteFileTest, TextThatIsNoUtf8IsMadeSo) {
  size_t lost = 0;
  EXPECT_EQ(validUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x99\x82", &lost), "aä€🙂");
  EXPECT_EQ(lost, 0U);
  EXPECT_EQ(validUtf8("\xC3|\xED\xA0\x80|\xC0\x80|\xF5", &lost),
            "\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD|\uFFFD");
  EXPECT_EQ(lost, 7U);
}

TEST_F(SqliteFileTest, NothingOfAViewAComputedColumnOrAVirtualTableIsRun) {
  const fs::path view = fileWith(
      "CREATE TABLE song (pid); INSERT INTO song VALUES (1);"
      "CREATE VIEW item AS SELECT pid FROM song");
  numbers(view, "pid", TableState::Damaged);
  const fs::path computed = folder_.path() / "computed";
  support::runSql(computed, "CREATE TABLE item (pid, year AS (pid + 1)); INSERT INTO item VALUES (1)");
  EXPECT_THAT(numbers(computed, "year"), ElementsAre(std::nullopt));
  const fs::path virtualTable = folder_.path() / "virtual";
  support::runSql(virtualTable,
                  "CREATE VIRTUAL TABLE item USING rtree(pid, low, high);"
                  "INSERT INTO item VALUES (1, 2, 3)");
  numbers(virtualTable, "pid", TableState::Damaged);
}

TEST_F(SqliteFileTest, RowsComeFromTheTableAndFromNoIndex) {
  const fs::path path = fileWith(
      "CREATE TABLE item (pid INTEGER, t TEXT); CREATE INDEX i ON item (pid);"
      "INSERT INTO item VALUES (3, 'a'), (1, 'b'), (2, 'c')");
  EXPECT_THAT(numbers(path, "pid"), ElementsAre(3, 1, 2));
}

TEST_F(SqliteFileTest, JournalAndLogBesideTheFileAreNeitherReadNorWritten) {
  const fs::path path = folder_.path() / "Library.itdb";
  support::runSql(path, "PRAGMA journal_mode = WAL; CREATE TABLE item (pid); INSERT INTO item VALUES (5)");
  folder_.write("Library.itdb-wal", "not a log");
  folder_.write("Library.itdb-journal", "not a journal");
  fs::permissions(path, fs::perms::owner_read);
  const auto before = support::filesBelow(folder_.path());
  EXPECT_THAT(numbers(path, "pid"), ElementsAre(5));
  EXPECT_EQ(support::filesBelow(folder_.path()), before);
}

TEST_F(SqliteFileTest, FileThatCannotBeReadIsNamedWithTheReason) {
  EXPECT_THAT(refusal(folder_.path() / "none"), HasSubstr("/none: No such file or directory"));
  EXPECT_THAT(refusal(folder_.path()), HasSubstr(": not a regular file"));
  EXPECT_THAT(refusal(folder_.write("empty")), HasSubstr("/empty: the file is empty"));
  EXPECT_THAT(refusal(folder_.write("other", std::string(5000, 'x'))),
              HasSubstr("/other: the file is no SQLite file"));
  const fs::path path = fileWith("CREATE TABLE item (pid)");
  EXPECT_EQ(refusal(path), "");
  fs::resize_file(path, 200);
  EXPECT_THAT(refusal(path), HasSubstr("the file is "));
  const fs::path bare = folder_.path() / "bare";
  support::runSql(bare, "PRAGMA user_version = 3");
  EXPECT_THAT(refusal(bare), HasSubstr("/bare: the file is damaged: it holds no tables"));
}

TEST_F(SqliteFileTest, RowsBeforeADamagedPageAreRead) {
  const fs::path path = fileWith(
      "CREATE TABLE item (pid, t); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
      "2000)"
      "INSERT INTO item SELECT i, hex(zeroblob(40)) FROM n");
  std::string bytes = support::contentOf(path);
  ASSERT_GT(bytes.size(), 20U * 4096);
  std::fill(bytes.begin() + ptrdiff_t{20} * 4096, bytes.begin() + ptrdiff_t{21} * 4096, '\xFF');
  const auto read = numbers(folder_.write("damaged", bytes), "pid", TableState::Damaged);
  ASSERT_GT(read.size(), 100U);
  EXPECT_LT(read.size(), 2000U);
  for (size_t i = 0; i < read.size(); ++i) EXPECT_EQ(read[i], static_cast<int64_t>(i + 1));
}

// An inner page all of whose children are one page, which is again such a page: rows without end, almost.
TEST_F(SqliteFileTest, PagesThatAreReachedManyTimesEndTheReading) {
  const fs::path path = fileWith(
      "CREATE TABLE item (pid, t); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "
      "20000)"
      "INSERT INTO item SELECT i, hex(zeroblob(40)) FROM n");
  std::string bytes = support::contentOf(path);
  constexpr size_t kPage = 4096;
  const auto byteAt = [&](size_t at) { return static_cast<size_t>(static_cast<unsigned char>(bytes[at])); };
  const size_t root = kPage;  // the second page
  ASSERT_EQ(byteAt(root), 5U) << "an inner page of a table";
  const size_t cells = byteAt(root + 3) << 8 | byteAt(root + 4);
  const auto pointTo = [&](size_t page, size_t at) {
    for (size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<char>(page >> (24 - 8 * i) & 0xFF);
  };
  constexpr size_t kInner = 10;  // pages by number
  constexpr size_t kLeaf = 11;
  bytes.replace((kInner - 1) * kPage, kPage, bytes, root, kPage);
  for (const auto &[page, child] : {std::pair(size_t{2}, kInner), std::pair(kInner, kLeaf)}) {
    const size_t start = (page - 1) * kPage;
    pointTo(child, start + 8);
    for (size_t cell = 0; cell < cells; ++cell)
      pointTo(child, start + (byteAt(start + 12 + 2 * cell) << 8 | byteAt(start + 13 + 2 * cell)));
  }
  const fs::path hostile = folder_.write("hostile", bytes);
  const auto rowsOf = [&](const std::vector<std::string> &columns) {
    SqliteFile file(hostile);
    EXPECT_EQ(file.each("item", columns, [](const SqliteRow &) {}), TableState::Damaged);
    EXPECT_LE(file.thousandsOfSteps(), 1001 + bytes.size() * 8 / 1000);
    return file.rowsOfTable();
  };
  EXPECT_LT(rowsOf({"pid", "t"}), bytes.size() / 10) << "ended by their texts";
  EXPECT_LE(rowsOf({"pid"}), bytes.size()) << "ended by their number";
  EXPECT_LT(rowsOf(std::vector<std::string>(40, "pid")), bytes.size() / 2) << "ended by the work";
}

TEST_F(SqliteFileTest, WorkGrowsAsTheRows) {
  uint64_t steps[2] = {};
  for (int i = 0; i < 2; ++i) {
    const fs::path path = folder_.path() / std::to_string(i);
    support::runSql(path,
                    "CREATE TABLE item (pid, t); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL "
                    "SELECT i + 1 FROM n WHERE i < " +
                        std::to_string(20000 << i) + ") INSERT INTO item SELECT i, 'text' FROM n");
    SqliteFile file(path);
    file.each("item", {"pid", "t"}, [](const SqliteRow &) {});
    steps[i] = file.thousandsOfSteps();
  }
  EXPECT_GT(steps[0], 50U);
  EXPECT_LE(steps[1], steps[0] * 2 + 2);
}

}  // namespace
}  // namespace player
