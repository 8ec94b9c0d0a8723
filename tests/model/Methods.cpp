#include "tests/model/Methods.h"

namespace model {

int32_t Call::Integer(size_t argument) const { return std::get<int32_t>(arguments.at(argument)); }

const std::optional<HostText> &Call::String(size_t argument) const {
  return std::get<std::optional<HostText>>(arguments.at(argument));
}

const std::optional<HostFile> &Call::File(size_t argument) const {
  return std::get<std::optional<HostFile>>(arguments.at(argument));
}

HostText Call::Text(size_t argument) const {
  return String(argument) ? *String(argument) : HostText{"", object.EncodingOfNoString()};
}

namespace {

using Do = std::function<Result(const Call &)>;

// How a method's arguments name a song: by its index, by playlist and position, by track ID.
enum Family { ByIndex = 1, ByPosition = 2, ByTrackID = 3 };

int32_t PlaylistOf(const Call &call, Family family) { return family == ByPosition ? call.Integer(0) : 0; }
int32_t IndexOf(const Call &call, Family family) { return call.Integer(family == ByPosition ? 1 : 0); }

// The library index that the methods without a selector of their own start from.
int32_t LibraryIndex(const Call &call, Family family) {
  if (family == ByPosition) return call.object.Number(3, call.Integer(1), call.Integer(0));
  if (family == ByTrackID) return call.object.Number(7, call.Integer(0), 0);
  return call.Integer(0);
}

std::optional<HostText> Path(const Call &call, Family family) {
  return call.object.String(family, 2, PlaylistOf(call, family), IndexOf(call, family));
}

Do Number(Family family, int32_t selector) {
  return [=](const Call &call) {
    return call.object.Number(selector, IndexOf(call, family), PlaylistOf(call, family));
  };
}

Do Text(Family family, int32_t object) {
  return [=](const Call &call) {
    return call.object.String(family, object, PlaylistOf(call, family), IndexOf(call, family));
  };
}

Do Encoding(Family family, int32_t object) {
  return [=](const Call &call) {
    return call.object.Encoding(family, object, PlaylistOf(call, family), IndexOf(call, family));
  };
}

Do Unknown(Family family) {
  return [=](const Call &call) {
    const int32_t object = call.Integer(family == ByPosition ? 2 : 1);
    return call.object.String(family + 3, object, PlaylistOf(call, family), IndexOf(call, family));
  };
}

Do Compilation(Family family) {
  return [=](const Call &call) { return call.object.Compilation(LibraryIndex(call, family)); };
}

Do DateAdded(Family family) {
  return [=](const Call &call) { return call.object.Number(11, LibraryIndex(call, family), 3); };
}

Do MovieFileFlag(Family family) {
  return [=](const Call &call) { return call.object.MovieFileFlag(LibraryIndex(call, family)); };
}

Do AbsolutePath(Family family) {
  return [=](const Call &call) { return call.object.WithVolume(Path(call, family)); };
}

Do FolderItemOf(Family family) {
  return [=](const Call &call) {
    return FolderItem{call.object.ItemOf(call.object.WithVolume(Path(call, family)))};
  };
}

Do AbsolutePath2(Family family) {
  return [=](const Call &call) { return call.object.PathOfItem(call.object.WithVolume(Path(call, family))); };
}

Do Compare(int32_t object) {
  return [=](const Call &call) { return call.object.Compare(object, -1, call.Integer(0), call.Integer(1)); };
}

Do ComparePlaylist(int32_t object) {
  return [=](const Call &call) {
    return call.object.Compare(object, call.Integer(0), call.Integer(1), call.Integer(2));
  };
}

Do PlayListType(int32_t reqType) {
  return [=](const Call &call) { return call.object.PlayListType(call.Integer(0), reqType); };
}

Do SetNumber(int32_t selector) {
  return [=](const Call &call) {
    call.object.SetNumber(selector, call.Integer(0), 0, call.Integer(1));
    return Result();
  };
}

Do SetText(int32_t object) {
  return [=](const Call &call) {
    call.object.SetString(object, call.Integer(0), call.Text(1));
    return Result();
  };
}

Result Construct(const Call &call) {
  call.object.Construct();
  return {};
}

Result LoadFile(const Call &call) { return call.object.LoadFile(call.File(0)) ? 1 : 0; }
Result CountSongs(const Call &call) { return call.object.CountSongs(); }
Result CountPlayLists(const Call &call) { return call.object.CountPlayLists(); }
Result CountSongsInPlayList(const Call &call) { return call.object.CountSongsInPlayList(call.Integer(0)); }
Result Prop(const Call &call) { return call.object.Number(11, call.Integer(0), call.Integer(1)); }
Result PlayListEncode(const Call &call) { return call.object.Encoding(0, 15, call.Integer(0), 0); }
Result PlayListName(const Call &call) { return call.object.String(0, 15, call.Integer(0), 0); }
Result PlayListTypeAsked(const Call &call) {
  return call.object.PlayListType(call.Integer(0), call.Integer(1));
}
Result AbsolutePathOfText(const Call &call) { return call.object.WithVolume(call.String(0)); }
Result PlaySong(const Call &call) { return call.object.PlaySong(call.Integer(0), call.Integer(1)); }
Result Flags(const Call &call) { return call.object.Flags(call.Integer(0), call.Integer(1)); }

Result SetPlaySong(const Call &call) {
  call.object.SetPlaySong(call.Integer(0), call.Integer(1), call.Integer(2));
  return {};
}

Result SetFlags(const Call &call) {
  call.object.SetFlags(call.Integer(0), call.Integer(1), call.Integer(2));
  return {};
}

Result SetCompilation(const Call &call) {
  call.object.SetCompilation(call.Integer(0), call.Integer(1));
  return {};
}

}  // namespace

const std::vector<Method> &Methods() {
  static const std::vector<Method> methods = {
      {"Constructor", Construct},
      {"Load(f As FolderItem) As Boolean", LoadFile},
      {"CountSongs As Integer", CountSongs},
      {"CountPlayLists As Integer", CountPlayLists},
      {"CountSongsInPlayList(playlist As Integer) As Integer", CountSongsInPlayList},
      {"GetID(index As Integer) As Integer", Number(ByIndex, 0)},
      {"GetProp(index As Integer, num As Integer) As Integer", Prop},
      {"GetIndex(playlist As Integer, Index As Integer) As Integer", Number(ByPosition, 3)},
      {"GetRefNum(playlist As Integer, Index As Integer) As Integer", Number(ByPosition, 4)},
      {"GetPlayListEncode(playlist As Integer) As Integer", PlayListEncode},
      {"GetPlayListTypeI(playlist As Integer) As Integer", PlayListType(0)},
      {"GetPlayListTypeII(playlist As Integer) As Integer", PlayListType(1)},
      {"GetPlayListType(playlist As Integer, reqType As Integer) As Integer", PlayListTypeAsked},
      {"GetPlayListName(playlist As Integer) As String", PlayListName},
      {"GetAbsolutePath(path As String) As String", AbsolutePathOfText},
      {"CompareArtist(IndexA As Integer, IndexB As Integer) As Boolean", Compare(4)},
      {"CompareAlbum(IndexA As Integer, IndexB As Integer) As Boolean", Compare(3)},
      {"CompareGenre(IndexA As Integer, IndexB As Integer) As Boolean", Compare(5)},
      {"CompareComposer(IndexA As Integer, IndexB As Integer) As Boolean", Compare(12)},
      {"ComparePlaylistArtist(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean",
       ComparePlaylist(4)},
      {"ComparePlaylistAlbum(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean",
       ComparePlaylist(3)},
      {"ComparePlaylistGenre(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean",
       ComparePlaylist(5)},
      {"ComparePlaylistComposer(playlist As Integer, IndexA As Integer, IndexB As Integer) As Boolean",
       ComparePlaylist(12)},
      {"CountSongUnknown(index As Integer) As Integer", Number(ByIndex, 10)},
      {"GetTrackTotalInfo(index As Integer) As String", Text(ByIndex, -100)},
      {"GetTitle(index As Integer) As String", Text(ByIndex, 1)},
      {"GetPath(index As Integer) As String", Text(ByIndex, 2)},
      {"GetAlbum(index As Integer) As String", Text(ByIndex, 3)},
      {"GetArtist(index As Integer) As String", Text(ByIndex, 4)},
      {"GetGenre(index As Integer) As String", Text(ByIndex, 5)},
      {"GetComposer(index As Integer) As String", Text(ByIndex, 12)},
      {"GetFileType(index As Integer) As String", Text(ByIndex, 6)},
      {"GetCompilation(index As Integer) As Boolean", Compilation(ByIndex)},
      {"GetDataAdded(index As Integer) As Integer", DateAdded(ByIndex)},
      {"GetUnknown(index As Integer, num As Integer) As String", Unknown(ByIndex)},
      {"GetTitleEncode(index As Integer) As Integer", Encoding(ByIndex, 1)},
      {"GetPathEncode(index As Integer) As Integer", Encoding(ByIndex, 2)},
      {"GetAlbumEncode(index As Integer) As Integer", Encoding(ByIndex, 3)},
      {"GetArtistEncode(index As Integer) As Integer", Encoding(ByIndex, 4)},
      {"GetGenreEncode(index As Integer) As Integer", Encoding(ByIndex, 5)},
      {"GetComposerEncode(index As Integer) As Integer", Encoding(ByIndex, 12)},
      {"GetFileTypeEncode(index As Integer) As Integer", Encoding(ByIndex, 6)},
      {"GetNumOfTrack(index As Integer) As Integer", Number(ByIndex, 1)},
      {"GetTotalTrack(index As Integer) As Integer", Number(ByIndex, 2)},
      {"GetDuration(index As Integer) As Integer", Number(ByIndex, 12)},
      {"GetFileSize(index As Integer) As Integer", Number(ByIndex, 15)},
      {"GetYear(index As Integer) As Integer", Number(ByIndex, 18)},
      {"GetBitrate(index As Integer) As Integer", Number(ByIndex, 24)},
      {"GetSamplerate(index As Integer) As Integer", Number(ByIndex, 27)},
      {"GetMovieFileFlag(index As Integer) As Boolean", MovieFileFlag(ByIndex)},
      {"GetMediaType(index As Integer) As Integer", Number(ByIndex, 30)},
      {"GetAbsolutePath(index As Integer) As String", AbsolutePath(ByIndex)},
      {"GetFolderItem(index As Integer) As FolderItem", FolderItemOf(ByIndex)},
      {"GetAbsolutePath2(index As Integer) As String", AbsolutePath2(ByIndex)},
      {"SetTitle(index As Integer, name As String)", SetText(1)},
      {"SetAlbum(index As Integer, alb As String)", SetText(3)},
      {"SetArtist(index As Integer, art As String)", SetText(4)},
      {"SetGenre(index As Integer, gnr As String)", SetText(5)},
      {"SetComposer(index As Integer, cmp As String)", SetText(12)},
      {"SetNumOfTrack(index As Integer, trkNum As Integer)", SetNumber(1)},
      {"SetTotalTrack(index As Integer, trkToral As Integer)", SetNumber(2)},
      {"SetFileSize(index As Integer, filesize As Integer)", SetNumber(15)},
      {"SetYear(index As Integer, year As Integer)", SetNumber(18)},
      {"SetMediaType(index As Integer, flag As Integer)", SetNumber(30)},
      {"SetCompilation(index As Integer, b As Boolean)", SetCompilation},
      {"GetTrackTotalInfo(playlist As Integer, index As Integer) As String", Text(ByPosition, -100)},
      {"GetTitle(playlist As Integer, index As Integer) As String", Text(ByPosition, 1)},
      {"GetPath(playlist As Integer, index As Integer) As String", Text(ByPosition, 2)},
      {"GetAlbum(playlist As Integer, index As Integer) As String", Text(ByPosition, 3)},
      {"GetArtist(playlist As Integer, index As Integer) As String", Text(ByPosition, 4)},
      {"GetGenre(playlist As Integer, index As Integer) As String", Text(ByPosition, 5)},
      {"GetComposer(playlist As Integer, index As Integer) As String", Text(ByPosition, 12)},
      {"GetFileType(playlist As Integer, index As Integer) As String", Text(ByPosition, 6)},
      {"GetCompilation(playlist As Integer, index As Integer) As Boolean", Compilation(ByPosition)},
      {"GetDataAdded(playlist As Integer, index As Integer) As Integer", DateAdded(ByPosition)},
      {"GetUnknown(playlist As Integer, index As Integer, num As Integer) As String", Unknown(ByPosition)},
      {"GetTitleEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 1)},
      {"GetPathEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 2)},
      {"GetAlbumEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 3)},
      {"GetArtistEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 4)},
      {"GetGenreEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 5)},
      {"GetComposerEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 12)},
      {"GetFileTypeEncode(playlist As Integer, index As Integer) As Integer", Encoding(ByPosition, 6)},
      {"GetNumOfTrack(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 5)},
      {"GetTotalTrack(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 6)},
      {"GetDuration(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 13)},
      {"GetFileSize(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 16)},
      {"GetYear(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 19)},
      {"GetBitrate(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 25)},
      {"GetSamplerate(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 28)},
      {"GetMovieFileFlag(playlist As Integer, index As Integer) As Boolean", MovieFileFlag(ByPosition)},
      {"GetMediaType(playlist As Integer, index As Integer) As Integer", Number(ByPosition, 31)},
      {"GetPlaySong(playlist As Integer, index As Integer) As Boolean", PlaySong},
      {"SetPlaySong(playlist As Integer, index As Integer, play As Boolean)", SetPlaySong},
      {"GetFlags(playlist As Integer, index As Integer) As Integer", Flags},
      {"SetFlags(playlist As Integer, index As Integer, flags As Integer)", SetFlags},
      {"GetAbsolutePath(playlist As Integer, index As Integer) As String", AbsolutePath(ByPosition)},
      {"GetFolderItem(playlist As Integer, index As Integer) As FolderItem", FolderItemOf(ByPosition)},
      {"GetAbsolutePath2(playlist As Integer, index As Integer) As String", AbsolutePath2(ByPosition)},
      {"GetIndex(trackID As Integer) As Integer", Number(ByTrackID, 7)},
      {"GetReferTrackTotalInfo(trackID As Integer) As String", Text(ByTrackID, -100)},
      {"GetReferTitle(trackID As Integer) As String", Text(ByTrackID, 1)},
      {"GetReferPath(trackID As Integer) As String", Text(ByTrackID, 2)},
      {"GetReferAlbum(trackID As Integer) As String", Text(ByTrackID, 3)},
      {"GetReferArtist(trackID As Integer) As String", Text(ByTrackID, 4)},
      {"GetReferGenre(trackID As Integer) As String", Text(ByTrackID, 5)},
      {"GetReferComposer(trackID As Integer) As String", Text(ByTrackID, 12)},
      {"GetReferFileType(trackID As Integer) As String", Text(ByTrackID, 6)},
      {"GetReferCompilation(trackID As Integer) As Boolean", Compilation(ByTrackID)},
      {"GetReferDateAdded(trackID As Integer) As Integer", DateAdded(ByTrackID)},
      {"GetReferUnknown(trackID As Integer, num As Integer) As String", Unknown(ByTrackID)},
      {"GetReferTitleEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 1)},
      {"GetReferPathEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 2)},
      {"GetReferAlbumEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 3)},
      {"GetReferArtistEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 4)},
      {"GetReferGenreEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 5)},
      {"GetReferComposerEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 12)},
      {"GetReferFileTypeEncode(trackID As Integer) As Integer", Encoding(ByTrackID, 6)},
      {"GetReferNumOfTrack(trackID As Integer) As Integer", Number(ByTrackID, 8)},
      {"GetReferTotalTrack(trackID As Integer) As Integer", Number(ByTrackID, 9)},
      {"GetReferDuration(trackID As Integer) As Integer", Number(ByTrackID, 14)},
      {"GetReferFileSize(trackID As Integer) As Integer", Number(ByTrackID, 17)},
      {"GetReferYear(trackID As Integer) As Integer", Number(ByTrackID, 20)},
      {"GetReferBitrate(trackID As Integer) As Integer", Number(ByTrackID, 26)},
      {"GetReferSamplerate(trackID As Integer) As Integer", Number(ByTrackID, 29)},
      {"GetReferMovieFileFlag(trackID As Integer) As Boolean", MovieFileFlag(ByTrackID)},
      {"GetReferMediaType(trackID As Integer) As Integer", Number(ByTrackID, 32)},
      {"GetReferAbsolutePath(trackID As Integer) As String", AbsolutePath(ByTrackID)},
      {"GetReferFolderItem(trackID As Integer) As FolderItem", FolderItemOf(ByTrackID)},
      {"GetReferAbsolutePath2(trackID As Integer) As String", AbsolutePath2(ByTrackID)},
  };
  return methods;
}

}  // namespace model
