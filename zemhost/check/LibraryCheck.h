#pragma once

// What is wrong with a library as the class reports it, and with the files that its songs name.

#include <cstdint>
#include <string>
#include <vector>

#include "player/Findings.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// What is wrong with the file of a song: it is empty, shorter than stated, or cannot be read.
struct DamagedSong {
  int32_t song = 0;   // library index
  std::string fault;  // "its file is empty": without the song and its file
};

struct LibraryAccount {
  uint64_t lossyTexts = 0;
  uint64_t entriesWithoutSong = 0;
  std::string filesLeftOut;  // why no files were looked at; empty when they were
  bool filesRead = false;    // to their ends
  uint64_t filesThere = 0;   // of the songs
  uint64_t filesMissing = 0;
  uint64_t filesUnnamed = 0;         // in the music folder
  uint64_t filesLong = 0;            // of the songs: those that are longer than the database states
  std::vector<std::string> remarks;  // of these the first, which is no fault of theirs
  // All such songs, however many findings are kept; the library's indices, ascending.
  std::vector<int32_t> missing;
  std::vector<DamagedSong> damaged;
};

// Looks at every song, its texts and its file, at every playlist entry, and at every file of the music
// folder. Of a song's file the first byte is read, and with `readFiles` every file to its end. The files are
// left out for a library that is on no player. Adds what is wrong to `findings`, and so what cannot be read.
LibraryAccount checkLibrary(const MusicLibrary &library, bool readFiles, player::Findings &findings);

}  // namespace zemhost
