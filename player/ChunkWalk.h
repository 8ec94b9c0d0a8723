#pragma once

// A walk over the chunks of a database file that owes nothing to the plug-in's loader: it follows the lengths
// by which chunks nest, and finds out which bytes no chunk explains.

#include <cstdint>
#include <string>
#include <vector>

#include "player/Findings.h"

namespace player {

// How many chunks of a tag there are, and the bytes of their headers and, for objects, bodies.
struct ChunkCount {
  std::string tag;
  std::string meaning;  // "track"; "other" for what the format note does not name
  uint64_t chunks = 0;
  uint64_t bytes = 0;
};

struct FileAccount {
  bool bigEndian = false;
  std::string version;  // as the file states it: "4.6", "0x19"; may be empty
  uint64_t size = 0;
  std::vector<ChunkCount> chunks;  // in the order of their first appearance
  uint64_t dataSets = 0;
  uint64_t declaredDataSets = 0;
  uint64_t tracks = 0;
  uint64_t declaredTracks = 0;     // in the headers of all track lists
  uint64_t playlists = 0;          // in data sets of type 2, the only ones whose playlists the class reads
  uint64_t declaredPlaylists = 0;  // in the headers of their lists
  uint64_t entries = 0;            // of these playlists
  uint64_t declaredEntries = 0;
  std::vector<uint32_t> entriesOf;       // of each of them
  std::vector<uint64_t> tracksAt;        // where the tracks begin
  std::vector<uint64_t> playlistsAt;     // where the playlists that the class reads begin
  std::vector<uint64_t> groupedListsAt;  // and those of the set in which podcasts stand in groups
  uint64_t rawBytes = 0;                 // in data sets whose type says nothing about what they hold
  uint64_t unexplainedBytes = 0;
  Findings findings;
};

// Walks the open file of a database, plain or inflated, through a small window; reads headers and skips
// bodies. Throws std::system_error when the file cannot be read.
FileAccount walkChunks(int file);

}  // namespace player
