#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <vector>

#include "db/ByteOrder.h"
#include "db/ByteString.h"
#include "db/ChunkFormat.h"
#include "db/FileWindow.h"
#include "db/SongRecords.h"
#include "db/SongTable.h"
#include "db/TextArena.h"

// The in-memory database of one iPod: songs and playlists in file order, and the queries over them. Indexes
// are 0-based and signed; one that names nothing gives a neutral value. Texts that queries return are copies.
//
// The texts of the records share the blocks of an arena. A record that is copied, moved or swapped out of the
// database keeps its texts, whatever becomes of the database.
class CiTunesDB {
 public:
  CiTunesDB() = default;
  CiTunesDB(const CiTunesDB &) = delete;
  CiTunesDB &operator=(const CiTunesDB &) = delete;

  int32_t error = 0;
  int32_t useSJIS = 0;   // whether host code wants Shift_JIS
  int32_t libType = 0;   // 1 little-endian, 0 big-endian
  int32_t listType = 0;  // of the data set being walked; 2 holds playlists
  int32_t infoType = 0;  // of the record being filled: 1 or 5 track, 2 or 6 playlist, 3 or 7 playlist entry
  int32_t odcount = 0;   // bookkeeping of the walk
  CSongList *tarSong = nullptr;
  SongTable songs;
  CPlayList *tarPlay = nullptr;
  std::vector<CPlayList> plays;
  int32_t defaultIndex = 0;
  ByteString vln;  // the volume's name

  int32_t LIBTYPE() const { return libType; }
  int32_t UseSJIS() const { return useSJIS; }
  const ByteString &VOLNAME() const { return vln; }

  // Reads a whole database file, either variant, from a seekable stream and appends its songs and playlists.
  // Returns 1, or 0 when the file is rejected (nothing changed) or memory ran out (what was read so far
  // stays, in a valid state). The stream stays open and the caller's. Never throws. Every byte is read once;
  // the work grows with the file's size, whatever the file says, and so does the memory, which is at most 160
  // times that size and 8 MB. It takes a forged file to come near: an ordinary one needs half its size.
  int32_t LoadiTunesDB(FILE *fp) noexcept;

  // The song's track ID; 0 for an invalid index.
  int32_t SongsID(int32_t index) const;

  // Word `num` of the song counted from its first opaque word: 0 to 3 those, 4 and 5 track number and total,
  // 6 duration, 7 file size, 8 bit rate, 9 sample rate, -1 ID, -2 error. Any other number, or an invalid
  // index, reads 0.
  int32_t SongsProp(int32_t index, int32_t num) const;

  // Writes the word that SongsProp reads; an invalid index or number writes nothing.
  void SetSongsProp(int32_t index, int32_t num, uint32_t value);

  // How many other text objects the song has; 0 for an invalid index.
  int32_t CountSongUnknown(int32_t index) const;

  // The text of object `num` of a song: a path of a little-endian file comes reduced to one byte for each
  // character, the others as stored. Empty for an invalid index and for a number without a named field.
  ByteString SongsObject(int32_t index, int32_t num) const;

  // Code, number and text of the same object; errSongInfo for an invalid index, zeros for an unknown number.
  songInfo SongsObjectInfo(int32_t index, int32_t num) const;

  // The cell behind object `num`, unreduced, without a copy: errSongInfo for an invalid index, and an empty
  // cell for an unknown number. Valid until the database changes.
  const songInfo &SongsCell(int32_t index, int32_t num) const;

  // The text that SongsObjectInfo gives for that cell, without a copy: it stands in the cell or in `scratch`.
  std::string_view CellText(const songInfo &cell, int32_t num, ScratchText &scratch) const;

  // Replaces code and text of object `num`: a named field other than the path, or the first other object of
  // that number. Its idx stays. An invalid index or a number that names nothing changes nothing.
  void SetSongsObjectInfo(int32_t index, int32_t num, ByteString text, uint32_t encode);

  // The first other object whose idx is `num`; errSongInfo for an invalid index or a negative number, and
  // {-1, 0, ""} when the song has none.
  songInfo SongsUnknownObjectInfo(int32_t index, int32_t num) const { return SongsUnknownCell(index, num); }

  // The same without a copy. Valid until the database changes.
  const songInfo &SongsUnknownCell(int32_t index, int32_t num) const;

  // Whether songs a and b agree in object `num`: 3 album (with the artist), 4 artist, 5 genre, 6 file type,
  // 12 composer. mode 0 compares idx, 1 the texts byte for byte, 2 the codes. Anything else is false.
  bool CompareSongsObjects(int32_t num, int32_t a, int32_t b, int32_t mode) const;

  // Numbers the artist, album, genre, composer and file-type cells whose idx is still negative, so that equal
  // texts share a number. The counters cross over; host code reads the numbers exactly so.
  void SetSongsObjectIndex();

  // The playlist's type, and its second type; 0 for an invalid index.
  int32_t PlayListType(int32_t p) const;
  int32_t PlayListTypeII(int32_t p) const;

  // The playlist's name; errSongInfo for an invalid index.
  songInfo PlayListNameInfo(int32_t p) const { return PlayListNameCell(p); }

  // The same without a copy. Valid until the database changes.
  const songInfo &PlayListNameCell(int32_t p) const;

  // True when position i of playlist p names no entry.
  bool PLR(int32_t p, int32_t i) const;

  // The entry at position i of playlist p, or null.
  const refidx *Entry(int32_t p, int32_t i) const {
    if (!HasPlayList(p) || i < 0) return nullptr;
    const std::vector<refidx> &entries = plays[static_cast<size_t>(p)].refnum;
    return static_cast<size_t>(i) < entries.size() ? &entries[static_cast<size_t>(i)] : nullptr;
  }
  refidx *Entry(int32_t p, int32_t i) {
    return const_cast<refidx *>(static_cast<const CiTunesDB *>(this)->Entry(p, i));
  }

  // The lowest library index whose song carries the track ID; 0 when none does.
  int32_t FindRefIdx(int32_t t) const { return std::max(songs.FindID(t), 0); }

 private:
  bool HasPlayList(int32_t p) const { return p >= 0 && static_cast<size_t>(p) < plays.size(); }
  void Walk(FileWindow &file, uint32_t at);
  void ReadTrack(FileWindow &file, uint32_t at);
  void ReadPlayList(FileWindow &file, uint32_t at, const fsbbStruct &fsbb);
  void ReadEntry(FileWindow &file, uint32_t at);
  void ReadDataObject(FileWindow &file, uint32_t at, const fsbbStruct &fsbb);

  TextArena texts_;
  uint64_t copied_ = 0;  // bytes of the file being walked that were taken beyond their own object
};
