#pragma once

// The result of a check, for people and for programs.

#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "player/ChunkWalk.h"
#include "player/DatabaseLocation.h"
#include "player/SqliteLibrary.h"
#include "zemhost/check/LibraryCheck.h"
#include "zemhost/check/ShuffleCheck.h"
#include "zemhost/library/Reconciliation.h"

namespace zemhost {

struct CheckReport {
  player::DatabaseLocation location;
  LibraryForm form = LibraryForm::Player;
  bool compressed = false;
  player::FileAccount file;                      // none of SQLite files but for version and size
  std::vector<player::SqliteTableCount> tables;  // of SQLite files alone
  Reconciliation reconciliation;                 // likewise only what is found and read
  LibraryAccount library;
  std::optional<ShuffleAccount> shuffle;
  std::shared_ptr<const SalvageReport> salvage;  // of a damaged database
  player::Findings findings;                     // of all the above
};

// What stands behind a list that was cut short: where the rest is to be found.
constexpr const char *kMoreInJson = "--json lists them";

// The findings in the words of the report, a line each: of each kind the first 20, and behind them, for each
// kind with more, how many more there are and where (`whereMore`). The kinds of `leftOut` are passed over.
std::vector<std::string> findingLines(const player::Findings &findings, const std::string &whereMore,
                                      const std::set<player::FindingKind> &leftOut = {});
// The remarks, likewise.
std::vector<std::string> remarkLines(const LibraryAccount &library, const std::string &whereMore);

// Tables of what was counted, then the findings, the first few of each kind.
void writeText(const CheckReport &report, std::ostream &out);

// One JSON object with the same and every finding that was kept.
void writeJson(const CheckReport &report, std::ostream &out);

}  // namespace zemhost
