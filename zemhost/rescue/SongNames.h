#pragma once

// What a pattern calls the songs of a library.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zemhost/export/Columns.h"
#include "zemhost/library/MusicLibrary.h"
#include "zemhost/rescue/AlbumLayout.h"
#include "zemhost/rescue/NamePattern.h"

namespace zemhost {

class SongNames {
 public:
  // Both must outlive this. Every song is looked at where the pattern asks which songs are one album, so that
  // a song's name does not depend on which others are copied.
  SongNames(const MusicLibrary &library, const NamePattern &pattern);

  // The values of a song for the pattern.
  Row values(int32_t song) const;

 private:
  const NamePattern &pattern_;
  std::unique_ptr<const AlbumLayout> layout_;   // where the pattern asks for it
  std::unique_ptr<const SongColumns> columns_;  // of the pattern's other fields, if it has any
};

}  // namespace zemhost
