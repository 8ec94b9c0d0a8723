#pragma once

#include <type_traits>

#include "plugin/Integers.h"

// The methods that only hand their arguments on, each written in one line: what it is of. L takes a library
// index, P (FromPlayList) a playlist and a position, R (Refer) a track ID.

namespace forward {

// A host string or item made on the way to a result, released when the result stands.
template <typename Value>
class Held {
 public:
  explicit Held(Value value) : value_(value) {}
  Held(const Held &) = delete;
  Held &operator=(const Held &) = delete;
  ~Held() {
    if constexpr (std::is_same_v<Value, REALstring>) {
      REALUnlockString(value_);
    } else {
      REALUnlockObject(reinterpret_cast<REALobject>(value_));
    }
  }
  Value get() const { return value_; }

 private:
  Value value_;
};

// Numbers, by the selector of the family.
template <IntegerSelector kSelector>
int32_t Integer(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kSelector, index, 0);
}
template <IntegerSelector kSelector>
int32_t IntegerOfEntry(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetIntegerData(instance, kSelector, index, playlist);
}
inline int32_t Prop(REALobject instance, int32_t index, int32_t num) {
  return ZemRbiTunesDB_GetIntegerData(instance, kProp, index, num);
}
template <int32_t kNum>
int32_t PropOf(REALobject instance, int32_t index) {
  return Prop(instance, index, kNum);
}
template <IntegerSelector kSelector>
void SetInteger(REALobject instance, int32_t index, int32_t value) {
  ZemRbiTunesDB_SetIntegerData(instance, kSelector, index, 0, value);
}

// Texts and their codes, by the object's number.
template <TextSource kSource, ObjectNumber kObject>
REALstring Text(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kSource, kObject, 0, index);
}
template <ObjectNumber kObject>
REALstring TextOfEntry(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayList, kObject, playlist, index);
}
template <TextSource kSource>
REALstring Unknown(REALobject instance, int32_t index, int32_t num) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kSource, num, 0, index);
}
inline REALstring UnknownOfEntry(REALobject instance, int32_t playlist, int32_t index, int32_t num) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kUnknownFromPlayList, num, playlist, index);
}
inline REALstring PlayListName(REALobject instance, int32_t playlist) {
  return ZemRbiTunesDB_GetEncodingStringData(instance, kFromPlayListName, kObjectPlayListName, playlist, 0);
}
template <TextSource kSource, ObjectNumber kObject>
int32_t Code(REALobject instance, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kSource, kObject, 0, index);
}
template <ObjectNumber kObject>
int32_t CodeOfEntry(REALobject instance, int32_t playlist, int32_t index) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayList, kObject, playlist, index);
}
inline int32_t PlayListCode(REALobject instance, int32_t playlist) {
  return ZemRbiTunesDB_GetEncodingStringNumber(instance, kFromPlayListName, kObjectPlayListName, playlist, 0);
}
template <ObjectNumber kObject>
void SetText(REALobject instance, int32_t index, REALstring text) {
  ZemRbiTunesDB_SetEncodingStringData(instance, kFromSong, kObject, 0, index, text);
}

// Comparisons of two songs.
template <ObjectNumber kObject>
REALboolean Compare(REALobject instance, int32_t indexA, int32_t indexB) {
  return ZemRbiTunesDB_CompareSongObject(instance, kObject, -1, indexA, indexB);
}
template <ObjectNumber kObject>
REALboolean CompareInPlayList(REALobject instance, int32_t playlist, int32_t indexA, int32_t indexB) {
  return ZemRbiTunesDB_CompareSongObject(instance, kObject, playlist, indexA, indexB);
}
template <int32_t kRequest>
int32_t PlayListType(REALobject instance, int32_t playlist) {
  return ZemRbiTunesDB_GetPlayListType(instance, playlist, kRequest);
}

// A method of library indexes by entry and by track ID; a failed mapping gives index 0.
template <auto kMethod>
auto OfEntry(REALobject instance, int32_t playlist, int32_t index) {
  return kMethod(instance, ZemRbiTunesDB_GetIntegerData(instance, kPlayListEntryIndex, index, playlist));
}
template <auto kMethod>
auto OfTrackID(REALobject instance, int32_t trackID) {
  return kMethod(instance, ZemRbiTunesDB_GetIntegerData(instance, kReferIndex, trackID, 0));
}

// Paths and items, from the path that a method gives for its indexes. What is made on the way is released.
template <auto kPath, typename... Index>
REALstring AbsolutePath(REALobject instance, Index... index) {
  return ZemRbiTunesDB_GetPathWithVolume(instance, Held(kPath(instance, index...)).get());
}
template <auto kAbsolutePath, typename... Index>
REALfolderItem ItemOf(REALobject instance, Index... index) {
  return ZemRbiTunesDB_GetFolderItemFromPath(Held(kAbsolutePath(instance, index...)).get());
}
template <auto kItem, typename... Index>
REALstring PathOfItem(REALobject instance, Index... index) {
  return ZemRbiTunesDB_GetPathFromFolderItem(Held(kItem(instance, index...)).get());
}

}  // namespace forward

constexpr auto ZemRbiTunesDB_GetID = forward::Integer<kID>;
constexpr auto ZemRbiTunesDB_GetProp = forward::Prop;
constexpr auto ZemRbiTunesDB_GetIndexFromPlayList = forward::IntegerOfEntry<kPlayListEntryIndex>;
constexpr auto ZemRbiTunesDB_GetRefNumFromPlayList = forward::IntegerOfEntry<kPlayListEntryRef>;
constexpr auto ZemRbiTunesDB_GetPlayListEncode = forward::PlayListCode;
constexpr auto ZemRbiTunesDB_GetPlayListTypeI = forward::PlayListType<0>;
constexpr auto ZemRbiTunesDB_GetPlayListTypeII = forward::PlayListType<1>;
constexpr auto ZemRbiTunesDB_GetPlayListName = forward::PlayListName;
constexpr auto ZemRbiTunesDB_CompareArtist = forward::Compare<kObjectArtist>;
constexpr auto ZemRbiTunesDB_CompareAlbum = forward::Compare<kObjectAlbum>;
constexpr auto ZemRbiTunesDB_CompareGenre = forward::Compare<kObjectGenre>;
constexpr auto ZemRbiTunesDB_CompareComposer = forward::Compare<kObjectComposer>;
constexpr auto ZemRbiTunesDB_ComparePlaylistArtist = forward::CompareInPlayList<kObjectArtist>;
constexpr auto ZemRbiTunesDB_ComparePlaylistAlbum = forward::CompareInPlayList<kObjectAlbum>;
constexpr auto ZemRbiTunesDB_ComparePlaylistGenre = forward::CompareInPlayList<kObjectGenre>;
constexpr auto ZemRbiTunesDB_ComparePlaylistComposer = forward::CompareInPlayList<kObjectComposer>;
constexpr auto ZemRbiTunesDB_CountSongUnknown = forward::Integer<kUnknownCount>;
constexpr auto ZemRbiTunesDB_GetTrackTotalInfo = forward::Text<kFromSong, kObjectTrackInfo>;
constexpr auto ZemRbiTunesDB_GetTitle = forward::Text<kFromSong, kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetPath = forward::Text<kFromSong, kObjectPath>;
constexpr auto ZemRbiTunesDB_GetAlbum = forward::Text<kFromSong, kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetArtist = forward::Text<kFromSong, kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetGenre = forward::Text<kFromSong, kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetComposer = forward::Text<kFromSong, kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetFileType = forward::Text<kFromSong, kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetDataAdded = forward::PropOf<kDateAddedProp>;
constexpr auto ZemRbiTunesDB_GetUnknown = forward::Unknown<kUnknownFromSong>;
constexpr auto ZemRbiTunesDB_GetTitleEncode = forward::Code<kFromSong, kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetPathEncode = forward::Code<kFromSong, kObjectPath>;
constexpr auto ZemRbiTunesDB_GetAlbumEncode = forward::Code<kFromSong, kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetArtistEncode = forward::Code<kFromSong, kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetGenreEncode = forward::Code<kFromSong, kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetComposerEncode = forward::Code<kFromSong, kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetFileTypeEncode = forward::Code<kFromSong, kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetNumTrack = forward::Integer<kTrackNumber>;
constexpr auto ZemRbiTunesDB_GetTotalTrack = forward::Integer<kTrackTotal>;
constexpr auto ZemRbiTunesDB_GetDuration = forward::Integer<kDuration>;
constexpr auto ZemRbiTunesDB_GetFileSize = forward::Integer<kFileSize>;
constexpr auto ZemRbiTunesDB_GetYear = forward::Integer<kYear>;
constexpr auto ZemRbiTunesDB_GetBitrate = forward::Integer<kBitrate>;
constexpr auto ZemRbiTunesDB_GetSamplerate = forward::Integer<kSamplerate>;
constexpr auto ZemRbiTunesDB_GetMediaType = forward::Integer<kMediaType>;
constexpr auto ZemRbiTunesDB_GetAbsolutePath = forward::AbsolutePath<ZemRbiTunesDB_GetPath, int32_t>;
constexpr auto ZemRbiTunesDB_GetFolderItem = forward::ItemOf<ZemRbiTunesDB_GetAbsolutePath, int32_t>;
constexpr auto ZemRbiTunesDB_GetAbsolutePath2 = forward::PathOfItem<ZemRbiTunesDB_GetFolderItem, int32_t>;
constexpr auto ZemRbiTunesDB_SetTitle = forward::SetText<kObjectTitle>;
constexpr auto ZemRbiTunesDB_SetAlbum = forward::SetText<kObjectAlbum>;
constexpr auto ZemRbiTunesDB_SetArtist = forward::SetText<kObjectArtist>;
constexpr auto ZemRbiTunesDB_SetGenre = forward::SetText<kObjectGenre>;
constexpr auto ZemRbiTunesDB_SetComposer = forward::SetText<kObjectComposer>;
constexpr auto ZemRbiTunesDB_SetNumTrack = forward::SetInteger<kTrackNumber>;
constexpr auto ZemRbiTunesDB_SetTotalTrack = forward::SetInteger<kTrackTotal>;
constexpr auto ZemRbiTunesDB_SetFileSize = forward::SetInteger<kFileSize>;
constexpr auto ZemRbiTunesDB_SetYear = forward::SetInteger<kYear>;
constexpr auto ZemRbiTunesDB_SetMediaType = forward::SetInteger<kMediaType>;
constexpr auto ZemRbiTunesDB_GetTrackTotalInfoFromPlayList = forward::TextOfEntry<kObjectTrackInfo>;
constexpr auto ZemRbiTunesDB_GetTitleFromPlayList = forward::TextOfEntry<kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetPathFromPlayList = forward::TextOfEntry<kObjectPath>;
constexpr auto ZemRbiTunesDB_GetAlbumFromPlayList = forward::TextOfEntry<kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetArtistFromPlayList = forward::TextOfEntry<kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetGenreFromPlayList = forward::TextOfEntry<kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetComposerFromPlayList = forward::TextOfEntry<kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetFileTypeFromPlayList = forward::TextOfEntry<kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetCompilationFromPlayList = forward::OfEntry<ZemRbiTunesDB_GetCompilation>;
constexpr auto ZemRbiTunesDB_GetDataAddedFromPlayList = forward::OfEntry<ZemRbiTunesDB_GetDataAdded>;
constexpr auto ZemRbiTunesDB_GetUnknownFromPlayList = forward::UnknownOfEntry;
constexpr auto ZemRbiTunesDB_GetTitleEncodeFromPlayList = forward::CodeOfEntry<kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetPathEncodeFromPlayList = forward::CodeOfEntry<kObjectPath>;
constexpr auto ZemRbiTunesDB_GetAlbumEncodeFromPlayList = forward::CodeOfEntry<kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetArtistEncodeFromPlayList = forward::CodeOfEntry<kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetGenreEncodeFromPlayList = forward::CodeOfEntry<kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetComposerEncodeFromPlayList = forward::CodeOfEntry<kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetFileTypeEncodeFromPlayList = forward::CodeOfEntry<kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetNumTrackFromPlayList = forward::IntegerOfEntry<kPlayListTrackNumber>;
constexpr auto ZemRbiTunesDB_GetTotalTrackFromPlayList = forward::IntegerOfEntry<kPlayListTrackTotal>;
constexpr auto ZemRbiTunesDB_GetDurationFromPlayList = forward::IntegerOfEntry<kPlayListDuration>;
constexpr auto ZemRbiTunesDB_GetFileSizeFromPlayList = forward::IntegerOfEntry<kPlayListFileSize>;
constexpr auto ZemRbiTunesDB_GetYearFromPlayList = forward::IntegerOfEntry<kPlayListYear>;
constexpr auto ZemRbiTunesDB_GetBitrateFromPlayList = forward::IntegerOfEntry<kPlayListBitrate>;
constexpr auto ZemRbiTunesDB_GetSamplerateFromPlayList = forward::IntegerOfEntry<kPlayListSamplerate>;
constexpr auto ZemRbiTunesDB_GetMovieFileFlagFromPlayList = forward::OfEntry<ZemRbiTunesDB_GetMovieFileFlag>;
constexpr auto ZemRbiTunesDB_GetMediaTypeFromPlayList = forward::IntegerOfEntry<kPlayListMediaType>;
constexpr auto ZemRbiTunesDB_GetAbsolutePathFromPlayList =
    forward::AbsolutePath<ZemRbiTunesDB_GetPathFromPlayList, int32_t, int32_t>;
constexpr auto ZemRbiTunesDB_GetFolderItemFromPlayList =
    forward::ItemOf<ZemRbiTunesDB_GetAbsolutePathFromPlayList, int32_t, int32_t>;
constexpr auto ZemRbiTunesDB_GetAbsolutePath2FromPlayList =
    forward::PathOfItem<ZemRbiTunesDB_GetFolderItemFromPlayList, int32_t, int32_t>;
constexpr auto ZemRbiTunesDB_GetReferIndex = forward::Integer<kReferIndex>;
constexpr auto ZemRbiTunesDB_GetReferTrackTotalInfo = forward::Text<kFromTrackID, kObjectTrackInfo>;
constexpr auto ZemRbiTunesDB_GetReferTitle = forward::Text<kFromTrackID, kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetReferPath = forward::Text<kFromTrackID, kObjectPath>;
constexpr auto ZemRbiTunesDB_GetReferAlbum = forward::Text<kFromTrackID, kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetReferArtist = forward::Text<kFromTrackID, kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetReferGenre = forward::Text<kFromTrackID, kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetReferComposer = forward::Text<kFromTrackID, kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetReferFileType = forward::Text<kFromTrackID, kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetReferCompilation = forward::OfTrackID<ZemRbiTunesDB_GetCompilation>;
constexpr auto ZemRbiTunesDB_GetReferDateAdded = forward::OfTrackID<ZemRbiTunesDB_GetDataAdded>;
constexpr auto ZemRbiTunesDB_GetReferUnknown = forward::Unknown<kUnknownFromTrackID>;
constexpr auto ZemRbiTunesDB_GetReferTitleEncode = forward::Code<kFromTrackID, kObjectTitle>;
constexpr auto ZemRbiTunesDB_GetReferPathEncode = forward::Code<kFromTrackID, kObjectPath>;
constexpr auto ZemRbiTunesDB_GetReferAlbumEncode = forward::Code<kFromTrackID, kObjectAlbum>;
constexpr auto ZemRbiTunesDB_GetReferArtistEncode = forward::Code<kFromTrackID, kObjectArtist>;
constexpr auto ZemRbiTunesDB_GetReferGenreEncode = forward::Code<kFromTrackID, kObjectGenre>;
constexpr auto ZemRbiTunesDB_GetReferComposerEncode = forward::Code<kFromTrackID, kObjectComposer>;
constexpr auto ZemRbiTunesDB_GetReferFileTypeEncode = forward::Code<kFromTrackID, kObjectFileType>;
constexpr auto ZemRbiTunesDB_GetReferNumTrack = forward::Integer<kReferTrackNumber>;
constexpr auto ZemRbiTunesDB_GetReferTotalTrack = forward::Integer<kReferTrackTotal>;
constexpr auto ZemRbiTunesDB_GetReferDuration = forward::Integer<kReferDuration>;
constexpr auto ZemRbiTunesDB_GetReferFileSize = forward::Integer<kReferFileSize>;
constexpr auto ZemRbiTunesDB_GetReferYear = forward::Integer<kReferYear>;
constexpr auto ZemRbiTunesDB_GetReferBitrate = forward::Integer<kReferBitrate>;
constexpr auto ZemRbiTunesDB_GetReferSamplerate = forward::Integer<kReferSamplerate>;
constexpr auto ZemRbiTunesDB_GetReferMovieFileFlag = forward::OfTrackID<ZemRbiTunesDB_GetMovieFileFlag>;
constexpr auto ZemRbiTunesDB_GetReferMediaType = forward::Integer<kReferMediaType>;
constexpr auto ZemRbiTunesDB_GetReferAbsolutePath =
    forward::AbsolutePath<ZemRbiTunesDB_GetReferPath, int32_t>;
constexpr auto ZemRbiTunesDB_GetReferFolderItem =
    forward::ItemOf<ZemRbiTunesDB_GetReferAbsolutePath, int32_t>;
constexpr auto ZemRbiTunesDB_GetReferAbsolutePath2 =
    forward::PathOfItem<ZemRbiTunesDB_GetReferFolderItem, int32_t>;
