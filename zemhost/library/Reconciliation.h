#pragma once

// Whether the class answers with all that the file holds.

#include <cstdint>
#include <string>
#include <vector>

#include "host/Host.h"
#include "player/ChunkWalk.h"

namespace zemhost {

// One kind of record, counted three times.
struct RecordCount {
  std::string what;       // "songs"
  uint64_t declared = 0;  // by the headers of the lists
  uint64_t found = 0;     // by walking the file
  uint64_t answered = 0;  // by the class

  bool agrees() const { return declared == found && found == answered; }
};

struct Reconciliation {
  std::vector<RecordCount> counts;      // songs, playlists, entries
  std::vector<int32_t> differingLists;  // playlists of which the class answers another number of entries

  bool agrees() const;
  // What differs first, in plain words: "30 songs are announced, 29 found, and 28 read".
  std::string summary() const;
};

// Compares the account of a file with the object that has loaded it.
Reconciliation reconcile(const player::FileAccount &account, const Object &object);

}  // namespace zemhost
