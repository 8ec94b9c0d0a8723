#pragma once

// A cover beside the copied music, in each folder that holds the songs of one album.

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/Rescue.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

// Writes `cover.png` into the folders of the planned files, with the largest cover of the songs there. A
// folder with songs of several albums, or of none, gets no cover. No other file of the name is replaced: it
// stays, and a remark says so. What is written, and what could not be, goes into `result`; with `dryRun` only
// the number of folders does. Throws CopyFailure (Destination) when nothing more can be written.
void writeRescuedCovers(const MusicLibrary &library, const RescuePlan &plan,
                        const DestinationFolder &destination, bool dryRun, RescueResult &result);

}  // namespace zemhost
