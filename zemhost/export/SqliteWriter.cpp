#include <cerrno>
#include <sqlite3.h>
#include <string>
#include <system_error>
#include <utility>

#include "host/Error.h"
#include "zemhost/export/ExportWriter.h"
#include "zemhost/files/PendingFile.h"
#include "zemhost/output/JsonText.h"

namespace zemhost {

namespace {

// An open SQLite database. Every failure throws HostError with the name that messages are to give.
class Database {
 public:
  Database(const std::filesystem::path &file, std::string name) : name_(std::move(name)) {
    if (sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
      const std::string reason = reasonNow();
      sqlite3_close(handle_);
      throw HostError(name_ + ": " + reason);
    }
  }
  Database(const Database &) = delete;
  Database &operator=(const Database &) = delete;
  ~Database() { sqlite3_close_v2(handle_); }

  void run(const std::string &sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }

  // Closes it, which writes what is left.
  void close() {
    if (sqlite3_close(handle_) != SQLITE_OK) fail();
    handle_ = nullptr;
  }

  sqlite3 *handle() const { return handle_; }
  [[noreturn]] void fail() const { throw HostError(name_ + ": " + reasonNow()); }

 private:
  // What the system said, where a call to it failed; SQLite's own words are about the "disk image".
  std::string reasonNow() const {
    if (handle_ == nullptr) return "out of memory";
    const int code = sqlite3_errcode(handle_) & 0xFF;
    const int system = sqlite3_system_errno(handle_);
    if (code == SQLITE_FULL && system == 0) return std::generic_category().message(ENOSPC);
    if ((code == SQLITE_FULL || code == SQLITE_IOERR || code == SQLITE_CANTOPEN) && system != 0)
      return std::generic_category().message(system);
    return sqlite3_errmsg(handle_);
  }

  sqlite3 *handle_ = nullptr;
  std::string name_;
};

// A prepared statement that inserts one row.
class Insert {
 public:
  Insert(Database &database, const std::string &sql) : database_(database) {
    if (sqlite3_prepare_v2(database.handle(), sql.c_str(), -1, &statement_, nullptr) != SQLITE_OK)
      database.fail();
  }
  Insert(const Insert &) = delete;
  Insert &operator=(const Insert &) = delete;
  ~Insert() { sqlite3_finalize(statement_); }

  void bind(int place, const Json &value) {
    int result = SQLITE_OK;
    if (value.is_null()) {
      result = sqlite3_bind_null(statement_, place);
    } else if (value.is_boolean()) {
      result = sqlite3_bind_int(statement_, place, value.get<bool>() ? 1 : 0);
    } else if (value.is_number_float()) {
      result = sqlite3_bind_double(statement_, place, value.get<double>());
    } else if (value.is_number()) {
      result = sqlite3_bind_int64(statement_, place, value.get<int64_t>());
    } else {
      const std::string text = value.is_string() ? value.get<std::string>() : jsonText(value);
      result =
          sqlite3_bind_text64(statement_, place, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    if (result != SQLITE_OK) database_.fail();
  }

  void run() {
    if (sqlite3_step(statement_) != SQLITE_DONE) database_.fail();
    sqlite3_reset(statement_);
  }

 private:
  Database &database_;
  sqlite3_stmt *statement_ = nullptr;
};

const char *typeName(ColumnType type) {
  if (type == ColumnType::Real) return "REAL";
  return type == ColumnType::Integer || type == ColumnType::Boolean ? "INTEGER" : "TEXT";
}

// "name INTEGER" for each column, with what its table says of the key columns.
std::string definitions(const std::vector<ExportColumn> &columns) {
  std::string list;
  for (const ExportColumn &column : columns) {
    if (!list.empty()) list += ", ";
    list.append(column.name).append(" ").append(typeName(column.type));
  }
  return list;
}

std::string insertInto(const std::string &table, size_t columns) {
  std::string sql = "INSERT INTO " + table + " VALUES (?";
  for (size_t i = 1; i < columns; ++i) sql += ",?";
  return sql + ")";
}

class SqliteWriter final : public ExportWriter {
 public:
  SqliteWriter(const std::filesystem::path &target, const SongColumnList &columns)
      : file_(target), database_(file_.temporary(), file_.name()) {
    // The file is not anyone's yet: until it is renamed a crash loses only what nobody has seen.
    database_.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA foreign_keys = ON; BEGIN");
    database_.run("CREATE TABLE songs (" + definitions(columns) + ", PRIMARY KEY (song_index))");
    database_.run("CREATE TABLE playlists (" + definitions(PlaylistColumns::columns()) +
                  ", PRIMARY KEY (playlist_number))");
    database_.run(
        "CREATE TABLE entries (playlist_number INTEGER NOT NULL REFERENCES playlists (playlist_number), " +
        definitions(PlaylistColumns::entryColumns()) +
        ", PRIMARY KEY (playlist_number, position), FOREIGN KEY (song_index) REFERENCES songs (song_index))");
    songs_ = std::make_unique<Insert>(database_, insertInto("songs", columns.size()));
    playlists_ =
        std::make_unique<Insert>(database_, insertInto("playlists", PlaylistColumns::columns().size()));
    entries_ = std::make_unique<Insert>(database_,
                                        insertInto("entries", PlaylistColumns::entryColumns().size() + 1));
    for (const ExportColumn &column : columns) {
      for (const char *const searched : {"track_id", "title", "artist", "album"}) {
        if (column.name == searched) {
          const std::string name(searched);
          indexes_.append("CREATE INDEX songs_").append(name).append(" ON songs (").append(name).append(");");
        }
      }
    }
    indexes_ += "CREATE INDEX entries_song_index ON entries (song_index)";
  }

  void song(Row row) override { insert(*songs_, row, 1); }

  void playlist(const Row &row) override {
    insert(*playlists_, row, 1);
    playlist_ = row.front();
  }

  void entry(const Row &row) override {
    entries_->bind(1, playlist_);
    insert(*entries_, row, 2);
  }

  void finish() override {
    songs_.reset();
    playlists_.reset();
    entries_.reset();
    database_.run(indexes_);
    database_.run("COMMIT");
    database_.close();
    file_.commit();
  }

 private:
  static void insert(Insert &statement, const Row &row, int place) {
    for (const Json &value : row) statement.bind(place++, value);
    statement.run();
  }

  PendingFile file_;
  Database database_;
  std::unique_ptr<Insert> songs_;
  std::unique_ptr<Insert> playlists_;
  std::unique_ptr<Insert> entries_;
  std::string indexes_;
  Json playlist_;  // the number of the playlist at hand
};

}  // namespace

std::unique_ptr<ExportWriter> makeSqliteWriter(const std::filesystem::path &target,
                                               const SongColumnList &columns) {
  return std::make_unique<SqliteWriter>(target, columns);
}

}  // namespace zemhost
