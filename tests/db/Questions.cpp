#include "tests/db/Questions.h"

#include <algorithm>
#include <cstdint>
#include <map>

namespace db_test {
namespace {

constexpr int32_t kSome = 6;  // records of each kind

std::string AskSong(const CiTunesDB &database, int32_t song) {
  ScratchText scratch;
  const int32_t unknown = database.CountSongUnknown(song);
  for (int32_t num = -3; num <= 13; ++num) {
    (void)database.SongsProp(song, num);
    (void)database.SongsUnknownObjectInfo(song, num);
    const songInfo info = database.SongsObjectInfo(song, num);
    if (database.CellText(database.SongsCell(song, num), num, scratch) != info.obj.View())
      return "a text in its cell differs from its copy";
    for (int32_t mode = -1; mode <= 3; ++mode) {
      (void)database.CompareSongsObjects(num, song, 0, mode);
      if (database.CompareSongsObjects(num, song, song, mode) && !database.songs.Has(song))
        return "a song that there is not is like itself";
    }
  }
  for (const int32_t num : {100, unknown, INT32_MIN, INT32_MAX}) {
    (void)database.SongsObject(song, num);
    (void)database.SongsUnknownObjectInfo(song, num);
  }
  return database.SongsID(song) == database.SongsProp(song, -1) ? "" : "two answers about an ID differ";
}

std::string AskPlayList(const CiTunesDB &database, int32_t list) {
  const bool isNone = list < 0 || static_cast<size_t>(list) >= database.plays.size();
  if (isNone != (&database.PlayListNameCell(list) == &errSongInfo))
    return "a playlist is in and out of range";
  if (isNone && (database.PlayListType(list) != 0 || database.PlayListTypeII(list) != 0))
    return "a playlist that there is not has a type";
  for (const int32_t at : {-1, 0, 1, 2, INT32_MIN, INT32_MAX}) {
    if ((database.Entry(list, at) == nullptr) != database.PLR(list, at)) return "PLR and Entry differ";
  }
  return "";
}

// The first song of each ID is the one to be found.
std::string AskForIDs(const CiTunesDB &database) {
  const auto count = static_cast<int32_t>(std::min<size_t>(database.songs.size(), 200));
  std::map<int32_t, int32_t> first;
  for (int32_t song = 0; song < count; ++song) {
    const int32_t id = database.SongsID(song);
    if (database.FindRefIdx(id) != first.emplace(id, song).first->second) return "an ID is found elsewhere";
  }
  return "";
}

}  // namespace

std::string AskEverything(const CiTunesDB &database) {
  const auto songs = static_cast<int32_t>(database.songs.size());
  const auto lists = static_cast<int32_t>(database.plays.size());
  std::string fault = AskForIDs(database);
  for (int32_t song = -1; song < std::min(songs, kSome) && fault.empty(); ++song)
    fault = AskSong(database, song);
  for (const int32_t song : {songs - 1, songs, INT32_MIN, INT32_MAX}) {
    if (fault.empty()) fault = AskSong(database, song);
  }
  for (int32_t list = -1; list < std::min(lists, kSome) && fault.empty(); ++list)
    fault = AskPlayList(database, list);
  for (const int32_t list : {lists - 1, lists, INT32_MIN, INT32_MAX}) {
    if (fault.empty()) fault = AskPlayList(database, list);
  }
  return fault;
}

void ChangeEverything(CiTunesDB &database, std::string_view text) {
  const auto songs = static_cast<int32_t>(database.songs.size());
  for (const int32_t song : {-1, 0, songs - 1, songs}) {
    for (int32_t num = -3; num <= 13; ++num) {
      database.SetSongsObjectInfo(song, num, text, static_cast<uint32_t>(num));
      database.SetSongsProp(song, num, static_cast<uint32_t>(song) * 7);
    }
  }
  database.SetSongsObjectIndex();
}

}  // namespace db_test
