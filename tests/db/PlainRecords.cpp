#include "tests/db/PlainRecords.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace db_test {
namespace {

model::Cell PlainCell(const songInfo &cell) { return {cell.idx, cell.enc, std::string(cell.obj.View())}; }

}  // namespace

model::Song Plain(const CSongList &song) {
  model::Song plain;
  plain.error = song.error;
  plain.id = song.id;
  std::copy(std::begin(song.res), std::end(song.res), plain.res);
  plain.number = song.track.num;
  plain.total = song.track.total;
  plain.duration = song.duration;
  plain.filesize = song.filesize;
  plain.bitrate = song.bitrate;
  plain.samplerate = song.samplerate;
  plain.moviefileflag = song.moviefileflag;
  plain.mediaType = song.mediaType;
  plain.year = song.year;
  plain.trackInfo = PlainCell(song.trackInfo);
  plain.title = PlainCell(song.title);
  plain.path = PlainCell(song.path);
  plain.album = PlainCell(song.album);
  plain.artist = PlainCell(song.artist);
  plain.genre = PlainCell(song.genre);
  plain.filetype = PlainCell(song.filetype);
  plain.comment = PlainCell(song.comment);
  plain.composer = PlainCell(song.composer);
  for (const songInfo &other : song.unknown) plain.unknown.push_back(PlainCell(other));
  return plain;
}

model::Database Plain(const CiTunesDB &database) {
  model::Database plain;
  plain.libType = database.libType;
  plain.useSJIS = database.useSJIS ? 1 : 0;
  plain.volumeName = database.vln.View();
  plain.listType = database.listType;
  plain.infoType = database.infoType;
  plain.odcount = database.odcount;
  if (database.tarSong != nullptr) plain.tarSong = database.tarSong - &database.songs[0];
  if (database.tarPlay != nullptr) plain.tarPlay = database.tarPlay - &database.plays[0];
  for (const CSongList &song : database.songs) plain.songs.push_back(Plain(song));
  for (const CPlayList &list : database.plays) {
    model::Playlist playlist{list.error, list.listType, list.listTypeII, PlainCell(list.name), {}};
    for (const refidx &entry : list.refnum) {
      playlist.entries.push_back({entry.ref, entry.idx, entry.ply, entry.flg});
    }
    plain.plays.push_back(std::move(playlist));
  }
  return plain;
}

namespace {

void DescribeCell(std::ostream &out, const model::Cell &cell) {
  out << " {" << cell.idx << ' ' << cell.enc << ' ' << testing::PrintToString(cell.text) << '}';
}

void DescribeSong(std::ostream &out, const model::Song &song) {
  out << "song " << song.id << std::hex;
  for (const int32_t word : song.res) out << ' ' << word;
  for (const uint32_t word : {song.number, song.total, song.duration, song.filesize, song.bitrate,
                              song.samplerate, uint32_t{song.moviefileflag}, song.mediaType, song.year}) {
    out << ' ' << word;
  }
  out << std::dec;
  for (const model::Cell *cell : {&song.trackInfo, &song.title, &song.path, &song.album, &song.artist,
                                  &song.genre, &song.filetype, &song.composer}) {
    DescribeCell(out, *cell);
  }
  for (const model::Cell &cell : song.unknown) DescribeCell(out, cell);
  out << '\n';
}

}  // namespace

std::string Describe(const model::Database &database) {
  std::ostringstream out;
  out << "variant " << database.libType << ", list type " << database.listType << ", record type "
      << database.infoType << ", objects to come " << database.odcount << ", song " << database.tarSong
      << ", playlist " << database.tarPlay << '\n';
  for (const model::Song &song : database.songs) DescribeSong(out, song);
  for (const model::Playlist &list : database.plays) {
    out << "playlist " << list.listType << ' ' << list.listTypeII;
    DescribeCell(out, list.name);
    for (const model::Entry &entry : list.entries) {
      out << " (" << entry.ref << ' ' << entry.idx << ' ' << entry.ply << ' ' << entry.flg << ')';
    }
    out << '\n';
  }
  return out.str();
}

}  // namespace db_test
