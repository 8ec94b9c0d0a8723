#pragma once

// How songs are shown, wherever they are listed.

#include <cstdint>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/EncodedOutput.h"
#include "zemhost/output/Table.h"

namespace zemhost {

class SongTable {
 public:
  // `names` are those of the columns to show, in order, as exports call them; none: a choice that fits the
  // width at hand. Throws HostError for a name that there is not, with all that there are.
  SongTable(EncodedOutput &out, const std::vector<std::string> &names);

  // One row, and its share in the totals. `number` is what stands in the first column.
  void addSong(int32_t number, const Song &song);
  // A row for a playlist entry whose song is not in the library.
  void addMissingSong(int32_t number, const std::string &id);

  // A row that names the entries after it.
  void addHeading(const std::string &text);

  // Writes the table, to the terminal's width when standard output is one, and a line that sums it up.
  void write();

 private:
  using Cell = std::string (*)(const Song &song);

  EncodedOutput &out_;
  std::vector<Cell> cells_;  // beside the columns of the table, but for the first
  Table table_;
  Totals totals_;
  uint64_t missing_ = 0;
};

}  // namespace zemhost
