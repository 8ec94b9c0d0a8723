#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "db/ByteString.h"
#include "db/ChunkFormat.h"
#include "db/TextArena.h"
#include "db/TrackID.h"

// One text cell: `idx` is the type number of the data object that filled it (little-endian files), -1 where
// none did, -100 for the track/total text, or a group number; `enc` is the encoding code of `obj`'s raw
// bytes.
struct songInfo {
  int32_t idx = 0;
  uint32_t enc = 0;
  ByteString obj;
};

// The answer of queries given an index that names nothing: idx 0, enc 0, no text.
extern const songInfo errSongInfo;

// The code -100 as its unsigned bit pattern: plain ASCII.
constexpr uint32_t kTrackInfoEncode = static_cast<uint32_t>(-100);

struct trackParam {
  uint32_t num = 0;
  uint32_t total = 0;
};

// One playlist entry: the track ID it refers to, the library index that ID had when the entry was read (0 for
// an unknown ID), the play word (0: plays) and a free flags word.
struct refidx {
  int32_t ref = 0;
  int32_t idx = 0;
  int32_t ply = 0;
  int32_t flg = 0;
};

// The numbers by which a song's text objects are asked for; those of little-endian data objects.
enum ObjectNumber : int32_t {
  kObjectTrackInfo = -100,
  kObjectTitle = 1,
  kObjectPath = 2,
  kObjectAlbum = 3,
  kObjectArtist = 4,
  kObjectGenre = 5,
  kObjectFileType = 6,
  kObjectComposer = 12,
  kObjectPlayListName = 15,
};

class CSongList;

// The field of the object number; null for a number without one, those of other objects among them.
const songInfo *NamedCell(const CSongList &song, int32_t num);
songInfo *NamedCell(CSongList &song, int32_t num);

// One track. Texts are the file's bytes: UTF-16 high byte first, ASCII, or a raw body, as `enc` says.
class CSongList {
 public:
  int32_t error = 0;
  TrackID id;
  int32_t res[4] = {};
  trackParam track;
  uint32_t duration = 0;    // milliseconds
  uint32_t filesize = 0;    // bytes
  uint32_t bitrate = 0;     // most significant byte first, whatever the variant
  uint32_t samplerate = 0;  // likewise
  uint8_t moviefileflag = 0;
  uint32_t mediaType = 0;
  uint32_t year = 0;
  songInfo trackInfo = {-100, kTrackInfoEncode, {}};
  songInfo title = {-1, 0, {}};
  songInfo path = {-1, 0, {}};
  songInfo album = {-1, 0, {}};
  songInfo artist = {-1, 0, {}};
  songInfo genre = {-1, 0, {}};
  songInfo filetype;
  songInfo comment;
  songInfo composer = {-1, 0, {}};
  std::vector<songInfo> unknown;

  int32_t ID() const { return id; }
  int32_t PROP(int32_t i) const { return res[i]; }
  uint32_t NUM_OF_TRACK() const { return track.num; }
  uint32_t TOTAL_TRACK() const { return track.total; }
  uint32_t DURATION() const { return duration; }
  uint32_t FILESIZE() const { return filesize; }
  uint32_t YEAR() const { return year; }
  uint32_t BITRATE() const { return bitrate; }
  uint32_t SAMPLERATE() const { return samplerate; }
  uint8_t MOVIE_FILE_FLAG() const { return moviefileflag; }
  uint32_t MEDIA_TYPE() const { return mediaType; }

  const ByteString &TRACKTOTAL() const { return trackInfo.obj; }
  const ByteString &TITLE() const { return title.obj; }
  const ByteString &PATH() const { return path.obj; }
  const ByteString &ALBUM() const { return album.obj; }
  const ByteString &ARTIST() const { return artist.obj; }
  const ByteString &GENRE() const { return genre.obj; }
  const ByteString &COMPOSER() const { return composer.obj; }
  const ByteString &FILETYPE() const { return filetype.obj; }

  const songInfo &TRACK_INFO() const { return trackInfo; }
  const songInfo &TITLE_INFO() const { return title; }
  const songInfo &PATH_INFO() const { return path; }
  const songInfo &ALBUM_INFO() const { return album; }
  const songInfo &ARTIST_INFO() const { return artist; }
  const songInfo &GENRE_INFO() const { return genre; }
  const songInfo &COMPOSER_INFO() const { return composer; }
  const songInfo &FILETYPE_INFO() const { return filetype; }

  int32_t CountUnkown() const { return static_cast<int32_t>(unknown.size()); }
  const ByteString &UNKOWN(size_t i) const { return unknown[i].obj; }
  const songInfo &UNKNOWN_INFO(size_t i) const { return unknown[i]; }

  // Files one data object of a track into the song. `fsbb` is the object's header in values, `objPtr` points
  // at offset 0x28 of the object, `_encode` is the word at 0x18 most significant byte first, `libType` the
  // variant. Returns 1 when something was stored, 0 otherwise. May swap the object's bytes in place (one byte
  // past an odd text included); the caller has checked that the text or raw body is all there. With an arena
  // the text is kept there.
  int32_t SetObj(const fsbbStruct *fsbb, uint8_t *objPtr, uint32_t _encode, int32_t libType,
                 TextArena *arena = nullptr);

  // Stores the pair and appends its display text ("05/12", "5", "-") to trackInfo.
  void SetTrack(trackParam _track);

 private:
  int32_t SetLocation(const fsbbStruct *fsbb, const uint8_t *start, const uint8_t *objectEnd, uint32_t encode,
                      TextArena *arena);
};

// One playlist.
class CPlayList {
 public:
  // Takes listType from the `count` word of the playlist's chunk.
  explicit CPlayList(const fsbbStruct *fsbb) : listType(static_cast<int32_t>(fsbb->count)) {}

  int32_t error = 0;
  int32_t listType;
  int32_t listTypeII = 0;
  songInfo name = {-1, 0, {}};
  std::vector<refidx> refnum;

  const ByteString &GetTitle() const { return name.obj; }
  const songInfo &GetTitleInfo() const { return name; }
  int32_t GetType() const { return listType; }
  int32_t GetTypeII() const { return listTypeII; }
  void SetTypeII(uint8_t type) { listTypeII = type; }
  void SetRefNum(const refidx &entry) { refnum.push_back(entry); }
  int32_t CountSongs() const { return static_cast<int32_t>(refnum.size()); }
  int32_t PlaySong(size_t i) const { return refnum[i].ply; }  // 0: plays
  int32_t RefNum(size_t i) const { return refnum[i].ref; }
  int32_t Index(size_t i) const { return refnum[i].idx; }
  int32_t Flags(size_t i) const { return refnum[i].flg; }
  const std::vector<refidx> &REFIDX() const { return refnum; }

  // Stores the playlist's name from a data object; arguments and result as CSongList::SetObj.
  int32_t SetTitle(const fsbbStruct *fsbb, uint8_t *objPtr, uint32_t _encode, int32_t libType,
                   TextArena *arena = nullptr);
};
