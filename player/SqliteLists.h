#pragma once

// The playlists of the SQLite files.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "player/Findings.h"
#include "player/SqliteFile.h"
#include "player/SqliteRecords.h"
#include "player/SqliteTables.h"

namespace player {

// The position of the song with an ID; none when there is none.
using SongFinder = std::function<std::optional<size_t>(int64_t pid)>;

// The lists of Library.itdb: that of all songs first, then by the order of their names, with their entries.
// What does not fit becomes a finding: an entry of a list that is not there, two lists of one ID, a list of
// all songs that is not there or holds other than the `songs` songs in their order.
std::vector<SqliteList> readSqliteLists(SqliteFile &file, const SongFinder &find, size_t songs,
                                        const TableReport &report, Findings &findings);

}  // namespace player
