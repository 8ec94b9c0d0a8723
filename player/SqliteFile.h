#pragma once

// A SQLite file of a player, read as what a stranger wrote: nothing in it is run, no work is done that its
// size does not explain, and nothing is written, to it or beside it.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace player {

// One value of a row, which must be the row at hand. A value of another type than is asked for is none.
class SqliteValue {
 public:
  SqliteValue(sqlite3_stmt *row, int column) : row_(row), column_(column) {}

  // A number, without its fraction.
  std::optional<int64_t> integer() const;
  // The same within 0 to 2^32 - 1, and such a one that is not 0.
  std::optional<uint32_t> number() const;
  std::optional<uint32_t> numberUnlessZero() const;
  // Whether a number is not 0.
  std::optional<bool> flag() const;
  // UTF-8, empty for none. What is no character has become U+FFFD, and adds to `lost`, if there is one.
  std::string text(size_t *lost = nullptr) const;
  std::string bytes() const;

 private:
  sqlite3_stmt *row_;
  int column_;
};

using SqliteRow = std::vector<SqliteValue>;

enum class TableState {
  Read,
  Missing,  // there is no such table
  Damaged   // reading stopped before its end; the rows that were handed on are good
};

class SqliteFile {
 public:
  // Opens the file; a journal beside it is not looked at. Throws PlayerError, naming it, when it is not a
  // regular file, cannot be read, or is no SQLite file.
  explicit SqliteFile(const std::filesystem::path &file);
  SqliteFile(const SqliteFile &) = delete;
  SqliteFile &operator=(const SqliteFile &) = delete;
  ~SqliteFile();

  // Hands on each row of a table, in the order of the file, with a value for each of these columns; those
  // that the table lacks have none. Names are plain words.
  TableState each(const std::string &table, const std::vector<std::string> &columns,
                  const std::function<void(const SqliteRow &)> &take);

  const std::string &name() const { return name_; }
  uint64_t size() const { return size_; }
  // Rows that were handed on of the table that was read last.
  uint64_t rowsOfTable() const { return rowsOfTable_; }
  // Steps of SQLite's machine until now, in thousands, for showing how the work grows.
  uint64_t thousandsOfSteps() const { return thousandsOfSteps_; }

 private:
  static int countSteps(void *file);
  void protect() const;
  bool isWithinLimits(sqlite3_stmt *row);
  std::optional<std::set<std::string>> columnsOf(const std::string &table);

  sqlite3 *handle_ = nullptr;
  std::string name_;
  uint64_t size_ = 0;
  uint64_t rows_ = 0;  // of all tables
  uint64_t rowsOfTable_ = 0;
  uint64_t bytes_ = 0;  // of texts and the like in these
  uint64_t thousandsOfSteps_ = 0;
};

// UTF-8 with U+FFFD for each byte that belongs to no character; each adds 1 to `lost`, if there is one.
std::string validUtf8(std::string_view bytes, size_t *lost = nullptr);

}  // namespace player
