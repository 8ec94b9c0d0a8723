#pragma once

// What a rescue says of itself at its end: rescue-report.json beside the music, one JSON object, for whoever
// wants to know what became of each song. The next run writes it anew.

#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/CopyReport.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/FileCopy.h"
#include "zemhost/rescue/Rescue.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

// What became of a planned file.
struct Copy {
  bool isThere = false;
  CopiedContent content;
};

struct FinishedRescue {
  const MusicLibrary &library;
  const RescuePlan &plan;
  const std::vector<Copy> &copies;  // beside the planned files
  const RescueResult &result;
  std::string stopped;  // why it had to stop; empty when it went to its end
};

// Adds the sums of the copies that are there, of this run and earlier ones, to those of the folder: see
// extendChecksums(). Throws as that does.
void writeChecksums(const DestinationFolder &destination, const CopyReport &report,
                    const FinishedRescue &rescue);

// Writes it. A file of the name that is none of these stays, and the report gets a number. Throws HostError,
// naming the file, or CopyFailure when it cannot be written.
void writeRescueReport(const DestinationFolder &destination, const FinishedRescue &rescue);

}  // namespace zemhost
