#pragma once

// How songs are shown, wherever they are listed.

#include <cstdint>
#include <string>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Table.h"

namespace zemhost {

class SongTable {
 public:
  explicit SongTable(EncodedOutput &out);

  // One row, and its share in the totals. `number` is what stands in the first column.
  void addSong(int32_t number, const Song &song);
  // A row for a playlist entry whose song is not in the library.
  void addMissingSong(int32_t number, int32_t trackID);

  // Writes the table, to the terminal's width when standard output is one, and a line that sums it up.
  // Nothing can be written to the output after it.
  void finish();

 private:
  EncodedOutput &out_;
  Table table_;
  Totals totals_;
  uint64_t missing_ = 0;
};

}  // namespace zemhost
