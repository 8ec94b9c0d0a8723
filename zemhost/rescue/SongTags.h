#pragma once

// The tags of a copy, filled from what the library says of its song.

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/carbon/Descriptor.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

enum class TagMode {
  Missing,  // only where the file says nothing itself
  Replace   // in any case, where the library says something
};

// What a library says that tags can hold. Texts are UTF-8, empty when there is none; 0: not known.
struct SongTags {
  std::string title, artist, albumArtist, album, genre, composer, comment;
  uint32_t track = 0, trackTotal = 0, disc = 0, discs = 0, year = 0;
  bool compilation = false;
  uint32_t rating = 0;  // 0 to 100, 20 a star
  uint32_t plays = 0;
  std::string dateAdded;  // "2004-08-09T10:11:12"
  std::string cover;      // the bytes of a picture file, PNG or JPEG
};

// Those of a song, its largest cover among them. A cover that cannot be read is left out.
SongTags songTags(const MusicLibrary &library, int32_t song);

enum class TagOutcome {
  Written,
  Unchanged,  // the file says all of it itself
  Refused,    // a file that the library for tags cannot open, or not write
  Broken      // the library for tags failed in the middle: the content of the copy is not to be trusted
};

// Writes tags into an open copy of a file with this extension (".mp3"), which is read and written from its
// beginning; nothing but the tags changes.
// The work is done in a process of its own (Apart.h), since the file may be made to mislead: what it breaks
// is the copy alone. Throws HostError when no process can be made.
TagOutcome writeTags(const carbon::Descriptor &copy, std::string_view extension, const SongTags &tags,
                     TagMode mode);

}  // namespace zemhost
