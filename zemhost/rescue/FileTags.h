#pragma once

// What a music file says of itself.

#include "platform/carbon/Descriptor.h"
#include "zemhost/library/Song.h"

namespace zemhost {

// Fills title, artist, album, genre, composer, track, year and duration, and the album's artist and the disc,
// from the tags of an open file. What it does not say stays as it is, and so does all of a file that is of no
// known kind, or one that the library for tags fails on, which works in a process of its own. The numbers of
// damaged tags may be any.
struct FileTags {
  std::string albumArtist;
};
FileTags readTags(const carbon::Descriptor &file, Song &song);

}  // namespace zemhost
