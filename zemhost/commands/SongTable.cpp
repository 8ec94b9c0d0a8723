#include "zemhost/commands/SongTable.h"

#include <utility>
#include <vector>

#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

std::vector<Column> songColumns() {
  using enum Column::Align;
  return {{"#", Right, 0, 0},     {"Title", Left, 28, 0},     {"Artist", Left, 16, 1},
          {"Album", Left, 16, 2}, {"Track", Right, 0, 5},     {"Time", Right, 0, 3},
          {"Genre", Left, 10, 7}, {"Year", Right, 0, 6},      {"Size", Right, 0, 4},
          {"Added", Left, 0, 8},  {"Bit rate", Right, 0, 9},  {"Sample rate", Right, 0, 10},
          {"Kind", Left, 12, 12}, {"Composer", Left, 12, 11}, {"File", Left, 33, 13}};
}

std::string orNothing(uint32_t number) { return number == 0 ? std::string() : numberText(number); }

std::string trackText(const Song &song) {
  if (song.trackTotal == 0) return orNothing(song.track);
  return numberText(song.track) + "/" + numberText(song.trackTotal);
}

}  // namespace

SongTable::SongTable(EncodedOutput &out) : out_(out), table_(songColumns(), out.fitCells()) {}

void SongTable::addSong(int32_t number, const Song &song) {
  totals_.add(song.duration, song.size);
  table_.addRow({std::to_string(number), song.title, song.artist, song.album, trackText(song),
                 durationText(song.duration), song.genre, orNothing(song.year), sizeText(song.size),
                 dateText(song.dateAdded), bitRateText(song.bitRate), sampleRateText(song.sampleRate),
                 song.fileType, song.composer, song.path});
}

void SongTable::addMissingSong(int32_t number, int32_t trackID) {
  ++missing_;
  std::vector<std::string> cells(songColumns().size());
  cells[0] = std::to_string(number);
  cells[1] = "(no song has the ID " + std::to_string(trackID) + ")";
  table_.addRow(std::move(cells));
}

void SongTable::finish() {
  out_.write(table_);
  std::string line = countText(totals_.songs, "song", "songs");
  if (missing_ > 0) line += ", " + countText(missing_, "entry", "entries") + " without a song";
  out_.write("\n");
  out_.write(line + ", " + totalTimeText(totals_.duration) + ", " + totalSizeText(totals_.size) + "\n");
  out_.finish();
}

}  // namespace zemhost
