// Writes SQLite files, table by table.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct sqlite3;

namespace samples {

// What stands in a row: NULL, a whole number, a number, a text, bytes.
class SqliteValue {
 public:
  enum class Kind { Null, Whole, Real, Text, Bytes };

  SqliteValue() = default;
  SqliteValue(int number) : kind(Kind::Whole), whole(number) {}
  SqliteValue(int64_t number) : kind(Kind::Whole), whole(number) {}
  SqliteValue(double number) : kind(Kind::Real), real(number) {}
  SqliteValue(std::u16string stored) : kind(Kind::Text), text(std::move(stored)) {}
  SqliteValue(std::string stored) : kind(Kind::Bytes), bytes(std::move(stored)) {}

  Kind kind = Kind::Null;
  int64_t whole = 0;
  double real = 0;
  std::u16string text;
  std::string bytes;
};

// A column's definition, "year INTEGER", and what a row has there.
struct SqliteCell {
  std::string_view column;
  SqliteValue value;
};

class SqliteWriter {
 public:
  // Creates the file. Everything throws std::runtime_error, naming it, on failure.
  explicit SqliteWriter(const std::filesystem::path &file);
  SqliteWriter(const SqliteWriter &) = delete;
  SqliteWriter &operator=(const SqliteWriter &) = delete;
  ~SqliteWriter();

  // Makes a table with these columns, and fills it.
  void Table(const std::string &name, const std::string &columns,
             const std::vector<std::vector<SqliteValue>> &rows);
  // The same of rows that name their columns, which must be the same in all; there must be one at least.
  void Table(const std::string &name, const std::vector<std::vector<SqliteCell>> &rows);

  void Finish();

 private:
  void Run(const std::string &sql);
  [[noreturn]] void Fail() const;

  std::string name_;
  sqlite3 *handle_ = nullptr;
};

}  // namespace samples
