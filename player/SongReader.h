#pragma once

// The songs of a database, each read from its place in the file when it is asked for.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/Chapters.h"
#include "player/FileWindow.h"
#include "player/RecordObjects.h"
#include "player/SongFacts.h"

namespace player {

struct SongText {
  uint32_t type = 0;  // 1 title, 2 path, 3 album, ...
  std::string text;   // UTF-8; what is no character has become U+FFFD
};

class SongReader {
 public:
  // `file` must stay open. `songs` holds where the songs begin, as a walk over the file found them. Throws
  // std::system_error when the file cannot be read, as the others do.
  SongReader(int file, bool bigEndian, std::vector<uint64_t> songs);

  size_t count() const { return songs_.size(); }

  // What the song's header says; all that it lacks is unknown.
  SongFacts facts(size_t index) const;

  // The texts of the song that are stored in UTF-16, in the order of the file, to where its objects end or
  // break off. Those of more than a mebibyte are left out.
  std::vector<SongText> texts(size_t index) const;

  // The song's path from the player's root, colon-separated, with all its characters; the last one where
  // there are several. No value without one in UTF-16, and for a desktop library, which keeps none in that
  // form.
  std::optional<std::string> path(size_t index) const;

  // The chapters of the song; none for most.
  std::vector<Chapter> chapters(size_t index) const;

 private:
  std::vector<StoredObject> objects(size_t index) const;

  mutable FileWindow file_;  // songs are mostly read forwards
  bool bigEndian_;
  std::vector<uint64_t> songs_;
};

}  // namespace player
