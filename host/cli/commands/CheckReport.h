#pragma once

// The result of a check, for people and for programs.

#include <ostream>
#include <string>

#include "host/cli/library/ChunkWalk.h"
#include "host/cli/library/DatabaseLocation.h"
#include "host/cli/library/LibraryCheck.h"
#include "host/cli/library/Reconciliation.h"

namespace zemhost {

struct CheckReport {
  DatabaseLocation location;
  bool compressed = false;
  FileAccount file;
  Reconciliation reconciliation;
  LibraryAccount library;
  Findings findings;  // of all the above
};

// Tables of what was counted, then the findings, the first few of each kind.
void writeText(const CheckReport &report, std::ostream &out);

// One JSON object with the same and every finding that was kept.
void writeJson(const CheckReport &report, std::ostream &out);

}  // namespace zemhost
