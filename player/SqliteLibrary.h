#pragma once

// The library of a newest nano: the SQLite files of its folder, with what the player counted since the last
// synchronisation.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "player/Findings.h"
#include "player/PlayCounts.h"
#include "player/SqliteRecords.h"
#include "player/SqliteTables.h"

namespace player {

// The five files; a path is empty where there is no such file.
struct SqliteFiles {
  std::filesystem::path library;
  std::filesystem::path locations;
  std::filesystem::path dynamic;
  std::filesystem::path extras;
  std::filesystem::path genius;
  std::filesystem::path root;  // of the player that holds them; empty when they lie on none
};

// Those beside a Library.itdb, without regard to case.
SqliteFiles sqliteFilesBeside(const std::filesystem::path &library);

// Rows that were read of a table.
struct SqliteTableCount {
  std::string file;  // its name in the folder
  std::string table;
  uint64_t rows = 0;
};

class SqliteLibrary {
 public:
  // Reads all that is shown, and closes the files again. Throws PlayerError, naming the file, when
  // Library.itdb cannot be read or has no songs' table, and when a symbolic link leads from the player to one
  // of the five elsewhere; what else is wrong with the others is said by warnings().
  explicit SqliteLibrary(const SqliteFiles &files);

  const std::vector<SqliteSong> &songs() const { return songs_; }
  // The lists that people see: the library's own first, those of the player's categories left out.
  const std::vector<SqliteList> &lists() const { return lists_; }
  uint64_t categories() const { return categories_; }
  // As the file states it: "1.105"; may be empty.
  const std::string &version() const { return version_; }

  // What the player counted of a song; nullptr when it left no counts that fit the database.
  const PlayCount *counted(size_t song) const { return merge_ ? &merge_->count(song) : nullptr; }
  bool hasCounts() const { return merge_.has_value(); }

  // A line for what is left out, and why.
  const std::vector<std::string> &warnings() const { return warnings_; }
  // All that is wrong with the files, these lines included.
  const Findings &findings() const { return findings_; }
  // The tables that were read, in that order; and the bytes of all five files.
  const std::vector<SqliteTableCount> &tables() const { return tables_; }
  uint64_t bytes() const { return bytes_; }

 private:
  void report(const SqliteFile &file, const std::string &table, TableState state);
  void warn(FindingKind kind, const std::string &line);
  void warnOfAbsentFiles(const SqliteFiles &files);
  void readVersion(SqliteFile &file);
  void joinCounts(const SqliteFiles &files);

  std::vector<SqliteSong> songs_;
  std::vector<SqliteList> lists_;
  uint64_t categories_ = 0;
  std::string version_;
  std::optional<PlayCountMerge> merge_;
  std::vector<std::string> warnings_;
  Findings findings_;
  std::vector<SqliteTableCount> tables_;
  uint64_t bytes_ = 0;
};

}  // namespace player
