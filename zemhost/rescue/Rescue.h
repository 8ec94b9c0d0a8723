#pragma once

// Copies the music off a player under its real names.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/ListFormat.h"
#include "zemhost/rescue/NamePattern.h"
#include "zemhost/rescue/SongTags.h"

namespace zemhost {

struct RescueRequest {
  std::filesystem::path destination;
  NamePattern pattern;
  std::vector<int32_t> playlists;  // only their songs; empty: all songs, and all playlists but the master one
  bool dryRun = false;             // show what would be done, and write nothing
  bool covers = false;             // write covers beside the music
  bool verify = false;             // read every copy back
  bool skipDamaged = false;        // leave out songs of which a part cannot be read
  std::optional<TagMode> tags{};   // write what the library says into the copies
  const ListFormat *lists = nullptr;    // of the playlists beside the music; none: these are not written
  std::vector<std::string> problems{};  // what is wrong before it begins
  std::vector<std::string> remarks{};   // likewise
  size_t unnamed = 0;  // songs of the library that are files which no song of the database names
};

struct RescueResult {
  uint64_t copied = 0;
  uint64_t copiedBytes = 0;
  uint64_t alreadyThere = 0;
  uint64_t playlists = 0;               // written
  uint64_t covers = 0;                  // likewise
  uint64_t tagged = 0;                  // copies that got tags
  uint64_t evaded = 0;                  // songs with a number, since another file has their name
  uint64_t verified = 0;                // copies that were read back and are as they should be
  std::vector<std::string> shortFiles;  // songs whose file is empty or shorter than the database states
  std::vector<std::string> damaged;     // songs of which a part could not be read, and which part
  std::vector<std::string> remarks;     // what is called or kept otherwise than one would expect
  std::vector<std::string> problems;    // what could not be copied or written, and why

  // Whether all that the player should have is there, as the database states it.
  bool isComplete() const { return shortFiles.empty() && damaged.empty() && problems.empty(); }
};

// Does it, showing its progress on standard output, and leaves a report of itself and the sums of the copies
// beside them. Files that are complete already are left alone, others are never replaced. Throws HostError
// when nothing can be done or no more can be: the destination lies in the player or cannot be written, the
// disk is full, the player is gone. What was copied until then is complete under its name, and the same
// request continues from there.
RescueResult rescue(const MusicLibrary &library, const RescueRequest &request);

}  // namespace zemhost
