#include "samples/SqliteWriter.h"

#include <sqlite3.h>
#include <stdexcept>

namespace samples {

namespace {

int Bind(sqlite3_stmt *row, int place, const SqliteValue &value) {
  switch (value.kind) {
    case SqliteValue::Kind::Whole:
      return sqlite3_bind_int64(row, place, value.whole);
    case SqliteValue::Kind::Real:
      return sqlite3_bind_double(row, place, value.real);
    case SqliteValue::Kind::Text:
      return sqlite3_bind_text16(row, place, value.text.data(),
                                 static_cast<int>(value.text.size() * sizeof(char16_t)), SQLITE_TRANSIENT);
    case SqliteValue::Kind::Bytes:
      return sqlite3_bind_blob(row, place, value.bytes.data(), static_cast<int>(value.bytes.size()),
                               SQLITE_TRANSIENT);
    case SqliteValue::Kind::Null:
      break;
  }
  return sqlite3_bind_null(row, place);
}

}  // namespace

SqliteWriter::SqliteWriter(const std::filesystem::path &file) : name_(file.string()) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  if (sqlite3_open_v2(name_.c_str(), &handle_, kFlags, nullptr) != SQLITE_OK) Fail();
  Run("PRAGMA page_size = 4096; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA user_version = "
      "26;"
      "BEGIN");
}

SqliteWriter::~SqliteWriter() { sqlite3_close(handle_); }

void SqliteWriter::Fail() const { throw std::runtime_error(name_ + ": " + sqlite3_errmsg(handle_)); }

void SqliteWriter::Run(const std::string &sql) {
  if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) Fail();
}

void SqliteWriter::Table(const std::string &name, const std::string &columns,
                         const std::vector<std::vector<SqliteValue>> &rows) {
  Run("CREATE TABLE " + name + " (" + columns + ")");
  for (const std::vector<SqliteValue> &row : rows) {
    std::string sql = "INSERT INTO " + name + " VALUES (?";
    for (size_t i = 1; i < row.size(); ++i) sql += ",?";
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(handle_, (sql + ")").c_str(), -1, &statement, nullptr) != SQLITE_OK) Fail();
    bool isDone = true;
    for (size_t i = 0; i < row.size(); ++i)
      isDone = Bind(statement, static_cast<int>(i + 1), row[i]) == SQLITE_OK && isDone;
    isDone = sqlite3_step(statement) == SQLITE_DONE && isDone;
    sqlite3_finalize(statement);
    if (!isDone) Fail();
  }
}

void SqliteWriter::Table(const std::string &name, const std::vector<std::vector<SqliteCell>> &rows) {
  std::string columns;
  for (const SqliteCell &cell : rows.at(0)) columns.append(columns.empty() ? "" : ", ").append(cell.column);
  std::vector<std::vector<SqliteValue>> values;
  for (const std::vector<SqliteCell> &row : rows) {
    values.emplace_back();
    for (const SqliteCell &cell : row) values.back().push_back(cell.value);
  }
  Table(name, columns, values);
}

void SqliteWriter::Finish() {
  Run("COMMIT");
  if (sqlite3_close(handle_) != SQLITE_OK) Fail();
  handle_ = nullptr;
}

}  // namespace samples
