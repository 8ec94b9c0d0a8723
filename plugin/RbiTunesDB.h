#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "db/CiTunesDB.h"
#include "sdk/PluginMain.h"

// The scripting class ZemiTunesDB: its class record, its property and method tables, and the functions the
// host calls.
//
// Host-facing functions take the host object first. They answer a neutral value (0, False, the null string,
// nil) when nothing is loaded or an index is out of range, and never touch the Error property unless they say
// so. Returned strings and folder items carry one reference, the caller's. The functions here may throw
// std::bad_alloc; what the tables register answers the neutral value instead.

constexpr REALboolean ToBoolean(bool value) { return value ? REALboolean::True : REALboolean::False; }

// The data block that the host keeps, zero-filled at first, in every object of the class.
struct RbiTunesDBData {
  int16_t err;         // the Error property
  CiTunesDB *db;       // owned; null only when it could not be created
  REALfolderItem dbf;  // the item of the first accepted Load, not owned; non-null blocks every later Load
  uint32_t ecd;        // the ResultEncode property
};

constexpr size_t kPropertyCount = 6;
constexpr size_t kMethodCount = 130;

extern REALclassDefinition RbiTunesDBClass;
extern REALclassDefinition *RbiTunesDBClassPointer;
extern REALproperty RbiTunesDBProperties[kPropertyCount];
extern REALmethodDefinition RbiTunesDBMethods[kMethodCount];

// The ZerobasePlayerlist property, 0 or 1, shared by all objects.
extern int32_t gListSet;

// The internal playlist index of a host playlist number.
inline int32_t PlayNum(int32_t playlist) {
  return static_cast<int32_t>(static_cast<uint32_t>(playlist) + static_cast<uint32_t>(gListSet));
}

// The data block of an object; null for a null object.
inline RbiTunesDBData *InstanceData(REALobject instance) {
  if (instance == nullptr) return nullptr;
  return static_cast<RbiTunesDBData *>(REALGetClassData(instance, RbiTunesDBClassPointer));
}

// The object's database; null when there is none.
inline CiTunesDB *Database(REALobject instance) {
  const RbiTunesDBData *data = InstanceData(instance);
  return data == nullptr ? nullptr : data->db;
}

// The same, but null also before Load, for methods that tell an empty database from one not loaded yet.
inline CiTunesDB *LoadedDatabase(REALobject instance) {
  CiTunesDB *db = Database(instance);
  if (db == nullptr || InstanceData(instance)->dbf != nullptr) return db;
  return db->songs.empty() && db->plays.empty() && db->VOLNAME().empty() ? nullptr : db;
}

// Property accessors.
int32_t Get_Error(REALobject instance, intptr_t parameter);
int32_t Get_LibType(REALobject instance, intptr_t parameter);
REALboolean Get_UseSJIS(REALobject instance, intptr_t parameter);
void Set_UseSJIS(REALobject instance, intptr_t parameter, REALboolean value);
int32_t Get_ResultEncode(REALobject instance, intptr_t parameter);
void Set_ResultEncode(REALobject instance, intptr_t parameter, int32_t value);
REALstring Get_VolumeName(REALobject instance, intptr_t parameter);
REALboolean Get_ZeroBasePlayerlist(REALobject instance, intptr_t parameter);
void Set_ZeroBasePlayerlist(REALobject instance, intptr_t parameter, REALboolean value);

// Life of an object. Load reads the item's file once in the object's life and sets Error: -50 for no item, no
// specification or no file, 1 for a rejected file, 0 on success. The constructor sets -108 when memory runs
// out.
void ZemRbiTunesDB_ZemRbiTunesDB(REALobject instance);
void ZemRbiTunesDB_Destructor(REALobject instance);
REALboolean ZemRbiTunesDB_LoadiTunesDB(REALobject instance, REALfolderItem item);
int32_t ZemRbiTunesDB_CountSongs(REALobject instance);
int32_t ZemRbiTunesDB_CountPlayLists(REALobject instance);
int32_t ZemRbiTunesDB_CountPlayListSongs(REALobject instance, int32_t playlist);

// The selectors of the integer dispatchers. L takes a library index, P a playlist and a position, R a track
// ID.
enum IntegerSelector : int32_t {
  kID = 0,                  // L
  kTrackNumber = 1,         // L
  kTrackTotal = 2,          // L
  kPlayListEntryIndex = 3,  // P: the entry's own library index
  kPlayListEntryRef = 4,    // P: the track ID it refers to
  kPlayListTrackNumber = 5,
  kPlayListTrackTotal = 6,
  kReferIndex = 7,  // R: the library index, 0 for an unknown ID
  kReferTrackNumber = 8,
  kReferTrackTotal = 9,
  kUnknownCount = 10,  // L
  kProp = 11,          // L; the word's number comes as the playlist
  kDuration = 12,
  kPlayListDuration,
  kReferDuration,
  kFileSize = 15,
  kPlayListFileSize,
  kReferFileSize,
  kYear = 18,
  kPlayListYear,
  kReferYear,
  kDateAdded = 21,
  kPlayListDateAdded,
  kReferDateAdded,
  kBitrate = 24,
  kPlayListBitrate,
  kReferBitrate,
  kSamplerate = 27,
  kPlayListSamplerate,
  kReferSamplerate,
  kMediaType = 30,
  kPlayListMediaType,
  kReferMediaType,
  kMovieFileFlag = 33,
  kPlayListMovieFileFlag,
  kReferMovieFileFlag = 35,
};

// The word of a song that holds the date it was added.
constexpr int32_t kDateAddedProp = 3;

// Stores a value at a library index, through a cascade that host code depends on: prop, track number, track
// total, file size, year, media type; each selector stores its own field and all that follow it.
void ZemRbiTunesDB_SetIntegerData(REALobject instance, int32_t selector, int32_t index, int32_t num,
                                  int32_t value);

// Where the string dispatchers take a text from: a playlist's name, or a song's named or other object, the
// song picked by library index, by playlist and position (song 0 for an invalid pair) or by track ID (song 0
// for an unknown one).
enum TextSource : int32_t {
  kFromPlayListName = 0,
  kFromSong = 1,
  kFromPlayList = 2,
  kFromTrackID = 3,
  kUnknownFromSong = 4,
  kUnknownFromPlayList = 5,
  kUnknownFromTrackID = 6,
};

// A new host string of the text *d with encoding code `encode`, in the encoding that ResultEncode and UseSJIS
// ask for. `param` is the text's object number; a path always leaves as ASCII. Null for a null or empty text.
REALstring GetEncodingStringData(const std::string_view *d, uint32_t encode, int32_t param,
                                 const RbiTunesDBData *iTunes);

// A new host string of a text of unknown form: 8-bit when it is single-byte characters stored as UTF-16 or
// all printable ASCII, otherwise UTF-16. Null when the host cannot build it.
REALstring CutOffZeroInString(const std::string_view *d);

// The text, or the encoding code alone, of object `param` of a source; null or 0 for an unknown source.
REALstring ZemRbiTunesDB_GetEncodingStringData(REALobject instance, int32_t dataType, int32_t param,
                                               int32_t playlist, int32_t index);
int32_t ZemRbiTunesDB_GetEncodingStringNumber(REALobject instance, int32_t dataType, int32_t param,
                                              int32_t playlist, int32_t index);

// Replaces a song's text by the host string's bytes and code as they are. Only the source kFromSong is known.
void ZemRbiTunesDB_SetEncodingStringData(REALobject instance, int32_t dataType, int32_t param,
                                         int32_t playlist, int32_t index, REALstring data);

// A new folder item for a full colon-separated path, whether or not the file exists; nil for nil, for a path
// longer than 255 bytes and for one the file manager cannot describe.
REALfolderItem ZemRbiTunesDB_GetFolderItemFromPath(REALstring path);

// The host's own path of an item; the null string for nil.
REALstring ZemRbiTunesDB_GetPathFromFolderItem(REALfolderItem item);

// Whether two songs share a text. With a negative playlist the indexes are library indexes, otherwise
// positions, and an invalid one stands for song 0.
REALboolean ZemRbiTunesDB_CompareSongObject(REALobject instance, int32_t object, int32_t playlist,
                                            int32_t indexA, int32_t indexB);

// Methods with something of their own to do; those that only hand on are in Forwarders.h.
int32_t ZemRbiTunesDB_GetPlayListType(REALobject instance, int32_t playlist, int32_t reqType);
REALstring ZemRbiTunesDB_GetPathWithVolume(REALobject instance, REALstring path);
REALboolean ZemRbiTunesDB_GetCompilation(REALobject instance, int32_t index);
REALboolean ZemRbiTunesDB_GetMovieFileFlag(REALobject instance, int32_t index);
void ZemRbiTunesDB_SetCompilation(REALobject instance, int32_t index, REALboolean compilation);
REALboolean ZemRbiTunesDB_GetPlaySong(REALobject instance, int32_t playlist, int32_t index);
void ZemRbiTunesDB_SetPlaySong(REALobject instance, int32_t playlist, int32_t index, REALboolean play);
int32_t ZemRbiTunesDB_GetFlags(REALobject instance, int32_t playlist, int32_t index);
void ZemRbiTunesDB_SetFlags(REALobject instance, int32_t playlist, int32_t index, int32_t flags);
