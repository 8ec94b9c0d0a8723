#pragma once

// The songs of the SQLite files, table by table.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "player/Findings.h"
#include "player/SqliteFile.h"
#include "player/SqliteRecords.h"
#include "player/SqliteSongColumns.h"

namespace player {

class SqliteSongs {
 public:
  SqliteSongs(TableReport report, Findings &findings) : report_(std::move(report)), findings_(findings) {}

  // Takes the songs of Library.itdb, and puts them in their order.
  void readLibrary(SqliteFile &file);
  // Adds what the others say of them.
  void readLocations(SqliteFile &file);
  void readDynamic(SqliteFile &file);
  void readExtras(SqliteFile &file);

  // The position of the song with this ID; none when there is none.
  std::optional<size_t> find(int64_t pid) const;
  std::vector<SqliteSong> &songs() { return songs_; }

 private:
  using Names = std::map<int64_t, std::string>;

  bool mayRepeat(const std::string &name);
  Names namesOf(SqliteFile &file, const char *table, const char *key, const char *name, bool &isThere);
  void join(SqliteFile &file, std::vector<SqliteItem> items);
  void putInOrder(std::vector<SqliteItem> &items);
  SqliteSong *ofTable(const std::string &table, int64_t pid);

  TableReport report_;
  Findings &findings_;
  std::vector<SqliteSong> songs_;
  std::map<int64_t, size_t> places_;
  Names kinds_;                 // of files, in the language of the computer
  uint64_t bytesToRepeat_ = 0;  // of names that many songs share, as many as are left
};

}  // namespace player
