#include "player/SqliteFile.h"

#include <cerrno>
#include <cmath>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "player/Error.h"

namespace player {

namespace {

constexpr uint64_t kLargestFile = INT32_MAX;
constexpr int kStepsAtOnce = 1000;
// A row takes some bytes of its own, and a step for each column that is read.
constexpr uint64_t kStepsPerByte = 8;
constexpr uint64_t kStepsOfAnyFile = 1'000'000;
// Rows may share bytes only in a file made to do so.
constexpr uint64_t kTextPerByte = 4;
constexpr uint64_t kTextOfAnyFile = 1U << 20;
// What SQLite may take for the schema and for pages.
constexpr int64_t kLargestHeap = 64 << 20;

struct LibraryLimit {
  int id;
  int value;
};
constexpr LibraryLimit kLimits[] = {
    {SQLITE_LIMIT_LENGTH, 1 << 20},    {SQLITE_LIMIT_SQL_LENGTH, 32 << 10},
    {SQLITE_LIMIT_COLUMN, 250},        {SQLITE_LIMIT_EXPR_DEPTH, 20},
    {SQLITE_LIMIT_COMPOUND_SELECT, 2}, {SQLITE_LIMIT_VDBE_OP, 10'000},
    {SQLITE_LIMIT_FUNCTION_ARG, 8},    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_TRIGGER_DEPTH, 1},   {SQLITE_LIMIT_VARIABLE_NUMBER, 8},
    {SQLITE_LIMIT_WORKER_THREADS, 0},  {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 64}};

struct Setting {
  int id;
  int value;
};
constexpr Setting kLibrarySettings[] = {{SQLITE_DBCONFIG_DEFENSIVE, 1},
                                        {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                                        {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
                                        {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                                        {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
                                        {SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0}};

// A path in which nothing has a meaning of its own. Immutable: no lock, no journal, no file beside it.
std::string uriOf(const std::filesystem::path &file) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string uri = "file:";
  for (const char c : std::filesystem::absolute(file).string()) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                         (byte >= 'a' && byte <= 'z') || byte == '/' || byte == '.' || byte == '_';
    if (isPlain) {
      uri += c;
    } else {
      uri.append(1, '%').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    }
  }
  return uri + "?mode=ro&immutable=1";
}

std::string lowerCase(std::string text) {
  for (char &c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// A prepared statement; none when there is an error in it, as the file's schema can make.
class Statement {
 public:
  Statement(sqlite3 *handle, const std::string &sql) {
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK) statement_ = nullptr;
  }
  Statement(const Statement &) = delete;
  Statement &operator=(const Statement &) = delete;
  ~Statement() { sqlite3_finalize(statement_); }

  sqlite3_stmt *get() const { return statement_; }

 private:
  sqlite3_stmt *statement_ = nullptr;
};

// The length of the character at the beginning of bytes that are not empty; 0 when there is none.
size_t characterLength(std::string_view bytes) {
  const auto at = [&](size_t i) { return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U; };
  const auto follows = [&](size_t i, unsigned low, unsigned high) { return at(i) >= low && at(i) <= high; };
  const unsigned first = at(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1, 0x80, 0xBF) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const unsigned low = first == 0xE0 ? 0xA0 : 0x80;
    const unsigned high = first == 0xED ? 0x9F : 0xBF;
    return follows(1, low, high) && follows(2, 0x80, 0xBF) ? 3 : 0;
  }
  if (first < 0xF0 || first > 0xF4) return 0;
  const unsigned low = first == 0xF0 ? 0x90 : 0x80;
  const unsigned high = first == 0xF4 ? 0x8F : 0xBF;
  return follows(1, low, high) && follows(2, 0x80, 0xBF) && follows(3, 0x80, 0xBF) ? 4 : 0;
}

}  // namespace

std::string validUtf8(std::string_view bytes, size_t *lost) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const size_t length = characterLength(bytes);
    if (length == 0) {
      text += "\uFFFD";
      if (lost != nullptr) ++*lost;
    } else {
      text += bytes.substr(0, length);
    }
    bytes.remove_prefix(length == 0 ? 1 : length);
  }
  return text;
}

std::optional<int64_t> SqliteValue::integer() const {
  const int type = sqlite3_column_type(row_, column_);
  if (type == SQLITE_INTEGER) return sqlite3_column_int64(row_, column_);
  if (type != SQLITE_FLOAT) return std::nullopt;
  constexpr double kEnd = 9223372036854775808.0;  // 2^63
  const double real = sqlite3_column_double(row_, column_);
  return real >= -kEnd && real < kEnd ? std::optional(static_cast<int64_t>(real)) : std::nullopt;
}

std::optional<uint32_t> SqliteValue::number() const {
  const auto value = integer();
  return value && *value >= 0 && *value <= UINT32_MAX ? std::optional(static_cast<uint32_t>(*value))
                                                      : std::nullopt;
}

std::optional<uint32_t> SqliteValue::numberUnlessZero() const {
  const auto value = number();
  return value && *value != 0 ? value : std::nullopt;
}

std::optional<bool> SqliteValue::flag() const {
  const auto value = integer();
  return value ? std::optional(*value != 0) : std::nullopt;
}

std::string SqliteValue::text(size_t *lost) const {
  return sqlite3_column_type(row_, column_) == SQLITE_TEXT ? validUtf8(bytes(), lost) : std::string();
}

std::string SqliteValue::bytes() const {
  const int type = sqlite3_column_type(row_, column_);
  if (type != SQLITE_TEXT && type != SQLITE_BLOB) return {};
  // Asked in this order, a text of another encoding is converted before its bytes are counted.
  const void *const first =
      type == SQLITE_TEXT ? sqlite3_column_text(row_, column_) : sqlite3_column_blob(row_, column_);
  const int size = sqlite3_column_bytes(row_, column_);
  return first == nullptr ? std::string()
                          : std::string(static_cast<const char *>(first), static_cast<size_t>(size));
}

SqliteFile::SqliteFile(const std::filesystem::path &file) : name_(file.string()) {
  struct stat status {};
  if (stat(file.c_str(), &status) != 0) throw PlayerError(name_, errno);
  if (!S_ISREG(status.st_mode)) throw PlayerError(name_ + ": not a regular file");
  if (access(file.c_str(), R_OK) != 0) throw PlayerError(name_, errno);
  size_ = static_cast<uint64_t>(status.st_size);
  if (size_ == 0) throw PlayerError(name_ + ": the file is empty");
  if (size_ > kLargestFile)
    throw PlayerError(name_ + ": the file is too large: 2 GB and more cannot be read");
  constexpr int kFlags =
      SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;
  const int opened = sqlite3_open_v2(uriOf(file).c_str(), &handle_, kFlags, nullptr);
  int result = opened;
  if (opened == SQLITE_OK) {
    protect();
    sqlite3_hard_heap_limit64(kLargestHeap);
    sqlite3_progress_handler(handle_, kStepsAtOnce, countSteps, this);
    // Reads the header and the schema.
    const Statement tables(handle_, "SELECT name FROM main.sqlite_schema LIMIT 1");
    result = tables.get() == nullptr ? sqlite3_errcode(handle_) : sqlite3_step(tables.get());
    if (result == SQLITE_ROW) return;
    if (result == SQLITE_DONE) result = SQLITE_EMPTY;
  }
  const int system = opened == SQLITE_OK ? 0 : sqlite3_system_errno(handle_);
  sqlite3_close(handle_);
  sqlite3_hard_heap_limit64(0);
  if (system != 0) throw PlayerError(name_, system);
  if (result == SQLITE_NOTADB) throw PlayerError(name_ + ": the file is no SQLite file");
  throw PlayerError(name_ + ": the file is damaged: " +
                    (result == SQLITE_EMPTY ? "it holds no tables" : "its tables cannot be read"));
}

SqliteFile::~SqliteFile() {
  sqlite3_close(handle_);
  sqlite3_hard_heap_limit64(0);
}

void SqliteFile::protect() const {
  for (const Setting &setting : kLibrarySettings)
    sqlite3_db_config(handle_, setting.id, setting.value, nullptr);
  for (const LibraryLimit &limit : kLimits) sqlite3_limit(handle_, limit.id, limit.value);
  sqlite3_drop_modules(handle_, nullptr);  // a table of these would run code over the file's bytes
  sqlite3_exec(handle_, "PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY; PRAGMA mmap_size = 0",
               nullptr, nullptr, nullptr);
}

int SqliteFile::countSteps(void *file) {
  auto &my = *static_cast<SqliteFile *>(file);
  return ++my.thousandsOfSteps_ > (kStepsOfAnyFile + my.size_ * kStepsPerByte) / kStepsAtOnce ? 1 : 0;
}

// Counts the row at hand.
bool SqliteFile::isWithinLimits(sqlite3_stmt *row) {
  ++rows_;
  for (int column = 0; column < sqlite3_column_count(row); ++column) {
    const int type = sqlite3_column_type(row, column);
    if (type == SQLITE_TEXT || type == SQLITE_BLOB)
      bytes_ += static_cast<uint64_t>(sqlite3_column_bytes(row, column));
  }
  return rows_ <= size_ && bytes_ <= kTextOfAnyFile + size_ * kTextPerByte;
}

// Those whose values stand in the file, in lower case; computed ones are not listed.
std::optional<std::set<std::string>> SqliteFile::columnsOf(const std::string &table) {
  const Statement statement(handle_, "PRAGMA main.table_info(\"" + table + "\")");
  if (statement.get() == nullptr) return std::nullopt;
  std::set<std::string> columns;
  int result = SQLITE_DONE;
  while ((result = sqlite3_step(statement.get())) == SQLITE_ROW)
    columns.insert(lowerCase(SqliteValue(statement.get(), 1).text()));
  return result == SQLITE_DONE ? std::optional(std::move(columns)) : std::nullopt;
}

TableState SqliteFile::each(const std::string &table, const std::vector<std::string> &columns,
                            const std::function<void(const SqliteRow &)> &take) {
  rowsOfTable_ = 0;
  const auto there = columnsOf(table);
  if (!there) return TableState::Damaged;
  if (there->empty()) return TableState::Missing;
  std::string sql;
  for (const std::string &column : columns) {
    sql += sql.empty() ? "SELECT " : ", ";
    sql += there->contains(column) ? '"' + column + '"' : "NULL";
  }
  // Without an index, which may say otherwise than the table, and compute what it is sorted by.
  const Statement statement(handle_, sql + " FROM main.\"" + table + "\" NOT INDEXED");
  if (statement.get() == nullptr) return TableState::Damaged;
  SqliteRow row;
  for (size_t column = 0; column < columns.size(); ++column)
    row.emplace_back(statement.get(), static_cast<int>(column));
  int result = SQLITE_DONE;
  while ((result = sqlite3_step(statement.get())) == SQLITE_ROW) {
    if (!isWithinLimits(statement.get())) return TableState::Damaged;
    ++rowsOfTable_;
    take(row);
  }
  return result == SQLITE_DONE ? TableState::Read : TableState::Damaged;
}

}  // namespace player
