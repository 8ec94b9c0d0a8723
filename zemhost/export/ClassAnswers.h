#pragma once

// What exports ask of the class alone: its methods for them, each looked up once.

#include <string>
#include <utility>

#include "host/Host.h"

namespace zemhost {

struct SongAnswers {
  explicit SongAnswers(Object asked) : object(std::move(asked)) {}

  Method integer(const std::string &name) const {
    return object.method(name + "(index As Integer) As Integer");
  }

  Object object;
  Method prop = object.method("GetProp(index As Integer, num As Integer) As Integer");
  Method mediaType = integer("GetMediaType");
  Method compilation = object.method("GetCompilation(index As Integer) As Boolean");
  Method movieFlag = object.method("GetMovieFileFlag(index As Integer) As Boolean");
  Method indexOfID = object.method("GetIndex(trackID As Integer) As Integer");
  Method trackText = object.method("GetTrackTotalInfo(index As Integer) As String");
  Method absolutePath = object.method("GetAbsolutePath(path As String) As String");
  Method titleEncode = integer("GetTitleEncode");
  Method pathEncode = integer("GetPathEncode");
  Method albumEncode = integer("GetAlbumEncode");
  Method artistEncode = integer("GetArtistEncode");
  Method genreEncode = integer("GetGenreEncode");
  Method composerEncode = integer("GetComposerEncode");
  Method fileTypeEncode = integer("GetFileTypeEncode");
};

struct PlaylistAnswers {
  explicit PlaylistAnswers(Object asked) : object(std::move(asked)) {}

  Object object;
  Method typeI = object.method("GetPlayListTypeI(playlist As Integer) As Integer");
  Method typeII = object.method("GetPlayListTypeII(playlist As Integer) As Integer");
  Method nameEncode = object.method("GetPlayListEncode(playlist As Integer) As Integer");
  Method play = object.method("GetPlaySong(playlist As Integer, index As Integer) As Boolean");
  Method flags = object.method("GetFlags(playlist As Integer, index As Integer) As Integer");
};

}  // namespace zemhost
