#pragma once

// How a table of a SQLite file becomes fields of records: for each column that matters, its name and what its
// value is taken for.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "player/SqliteFile.h"

namespace player {

template <typename Record>
struct SqliteColumn {
  const char *name;
  void (*take)(Record &, const SqliteValue &);
};

// Is told of each table that was looked for, when it has been read.
using TableReport = std::function<void(const SqliteFile &file, const std::string &table, TableState state)>;

// Reads a table whose column `key` says to which record a row belongs: `find` gives the record of a key, or
// nullptr for a row to pass over. A row without a key is passed over.
template <typename Record, typename Find>
TableState readTable(SqliteFile &file, const std::string &table, const char *key,
                     std::span<const SqliteColumn<Record>> columns, const Find &find) {
  std::vector<std::string> names = {key};
  for (const SqliteColumn<Record> &column : columns) names.emplace_back(column.name);
  return file.each(table, names, [&](const SqliteRow &row) {
    const std::optional<int64_t> id = row.front().integer();
    Record *const record = id ? find(*id) : nullptr;
    if (record == nullptr) return;
    for (size_t i = 0; i < columns.size(); ++i) columns[i].take(*record, row[i + 1]);
  });
}

// A date of these files, which count from 2001; none for 0 and for what no date can be.
std::optional<uint32_t> sqliteDate(const SqliteValue &value);

// "A1B2C3D4E5F60718": a persistent ID as exports write it.
std::string hexId(int64_t pid);

}  // namespace player
