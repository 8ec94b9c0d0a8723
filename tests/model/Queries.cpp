#include "tests/model/Queries.h"

#include <cstddef>

namespace model {
namespace {

const Cell *CellOf(const Song &song, int32_t object) {
  switch (object) {
    case -100:
      return &song.trackInfo;
    case 1:
      return &song.title;
    case 2:
      return &song.path;
    case 3:
      return &song.album;
    case 4:
      return &song.artist;
    case 5:
      return &song.genre;
    case 6:
      return &song.filetype;
    case 12:
      return &song.composer;
    default:
      return nullptr;
  }
}

bool Same(const Cell &a, const Cell &b, By mode) {
  switch (mode) {
    case By::Idx:
      return a.idx == b.idx;
    case By::Text:
      return a.text == b.text;
    case By::Enc:
      return a.enc == b.enc;
  }
  return false;
}

// One byte for each unit whose high byte is 0 and whose low byte is not.
std::string RemoveZeroFromAsciiUTF16(const std::string &text) {
  std::string result;
  for (size_t i = 0; i < text.size(); i += 2) {
    const char second = i + 1 < text.size() ? text[i + 1] : '\0';
    if (text[i] == '\0' && second != '\0') result += second;
  }
  return result;
}

}  // namespace

bool IsSong(const Database &database, int32_t index) {
  return index >= 0 && static_cast<size_t>(index) < database.songs.size();
}

bool IsPlaylist(const Database &database, int64_t playlist) {
  return playlist >= 0 && static_cast<uint64_t>(playlist) < database.plays.size();
}

bool IsEntry(const Database &database, int64_t playlist, int32_t position) {
  return IsPlaylist(database, playlist) && position >= 0 &&
         static_cast<size_t>(position) < database.plays[static_cast<size_t>(playlist)].entries.size();
}

int32_t FindRefIdx(const std::vector<Song> &songs, int32_t id) {
  for (size_t i = 0; i < songs.size(); ++i)
    if (songs[i].id == id) return static_cast<int32_t>(i);
  return 0;
}

bool CompareSongsObjects(const std::vector<Song> &songs, int32_t object, int32_t a, int32_t b, By mode) {
  const auto count = static_cast<int64_t>(songs.size());
  if (a < 0 || a >= count || b < 0 || b >= count) return false;
  const Song &first = songs[static_cast<size_t>(a)];
  const Song &second = songs[static_cast<size_t>(b)];
  switch (object) {
    case 3:
      return Same(first.album, second.album, mode) && Same(first.artist, second.artist, mode);
    case 4:
      return Same(first.artist, second.artist, mode);
    case 5:
      return Same(first.genre, second.genre, mode);
    case 6:
      return Same(first.filetype, second.filetype, mode);
    case 12:
      return Same(first.composer, second.composer, mode);
    default:
      return false;
  }
}

void SetSongsObjectIndex(std::vector<Song> &songs) {
  int32_t artists = 0;
  int32_t albums = 0;
  int32_t genres = 0;
  int32_t others = 0;
  const auto count = static_cast<int32_t>(songs.size());
  for (int32_t i = 0; i < count - 1; ++i) {
    Song &song = songs[static_cast<size_t>(i)];
    if (song.artist.idx < 0) song.artist.idx = ++artists;
    if (song.album.idx < 0) song.artist.idx = ++albums;
    if (song.genre.idx < 0) song.artist.idx = ++genres;
    if (song.composer.idx < 0) song.artist.idx = ++others;
    if (song.filetype.idx < 0) song.artist.idx = ++others;
    for (int32_t j = i + 1; j < count; ++j) {
      Song &next = songs[static_cast<size_t>(j)];
      const auto same = [&](int32_t object) { return CompareSongsObjects(songs, object, i, j, By::Text); };
      if (next.artist.idx < 0 && same(4)) next.artist.idx = artists;
      if (next.album.idx < 0 && same(3)) next.album.idx = albums;
      if (next.genre.idx < 0 && same(5)) next.genre.idx = genres;
      if (next.composer.idx < 0 && same(12)) next.composer.idx = genres;
      if (next.filetype.idx < 0 && same(6)) next.filetype.idx = genres;
    }
  }
}

int32_t SongsID(const Database &database, int32_t index) {
  return IsSong(database, index) ? database.songs[static_cast<size_t>(index)].id : 0;
}

int32_t SongsProp(const Database &database, int32_t index, int32_t num) {
  if (!IsSong(database, index)) return 0;
  const Song &song = database.songs[static_cast<size_t>(index)];
  switch (num) {
    case -2:
      return song.error;
    case -1:
      return song.id;
    case 0:
    case 1:
    case 2:
    case 3:
      return song.res[num];
    case 4:
      return static_cast<int32_t>(song.number);
    case 5:
      return static_cast<int32_t>(song.total);
    case 6:
      return static_cast<int32_t>(song.duration);
    case 7:
      return static_cast<int32_t>(song.filesize);
    case 8:
      return static_cast<int32_t>(song.bitrate);
    case 9:
      return static_cast<int32_t>(song.samplerate);
    default:
      return 0;
  }
}

void SetSongsProp(Database &database, int32_t index, int32_t num, uint32_t value) {
  if (!IsSong(database, index)) return;
  Song &song = database.songs[static_cast<size_t>(index)];
  switch (num) {
    case -2:
      song.error = static_cast<int32_t>(value);
      break;
    case -1:
      song.id = static_cast<int32_t>(value);
      break;
    case 0:
    case 1:
    case 2:
    case 3:
      song.res[num] = static_cast<int32_t>(value);
      break;
    case 4:
      song.number = value;
      break;
    case 5:
      song.total = value;
      break;
    case 6:
      song.duration = value;
      break;
    case 7:
      song.filesize = value;
      break;
    case 8:
      song.bitrate = value;
      break;
    case 9:
      song.samplerate = value;
      break;
    default:
      break;
  }
}

int32_t CountSongUnknown(const Database &database, int32_t index) {
  if (!IsSong(database, index)) return 0;
  return static_cast<int32_t>(database.songs[static_cast<size_t>(index)].unknown.size());
}

Cell SongsObjectInfo(const Database &database, int32_t index, int32_t object) {
  if (!IsSong(database, index)) return {};
  const Cell *found = CellOf(database.songs[static_cast<size_t>(index)], object);
  if (found == nullptr) return {};
  Cell cell = *found;
  if (object == 2 && database.libType != 0) cell.text = RemoveZeroFromAsciiUTF16(cell.text);
  return cell;
}

void SetSongsObjectInfo(Database &database, int32_t index, int32_t object, const std::string &text,
                        uint32_t encoding) {
  if (!IsSong(database, index)) return;
  Song &song = database.songs[static_cast<size_t>(index)];
  const auto set = [&](Cell &cell) {
    cell.enc = encoding;
    cell.text = text;
  };
  switch (object) {
    case -100:
      set(song.trackInfo);
      return;
    case 1:
      set(song.title);
      return;
    case 3:
      set(song.album);
      return;
    case 4:
      set(song.artist);
      return;
    case 5:
      set(song.genre);
      return;
    case 6:
      set(song.filetype);
      return;
    case 12:
      set(song.composer);
      return;
    default:
      break;
  }
  if (object < 0) return;
  for (Cell &cell : song.unknown) {
    if (cell.idx != object) continue;
    set(cell);
    return;
  }
}

Cell SongsUnknownObjectInfo(const Database &database, int32_t index, int32_t object) {
  if (!IsSong(database, index) || object < 0) return {};
  for (const Cell &cell : database.songs[static_cast<size_t>(index)].unknown)
    if (cell.idx == object) return cell;
  return {-1, 0, ""};
}

Cell PlayListNameInfo(const Database &database, int64_t playlist) {
  return IsPlaylist(database, playlist) ? database.plays[static_cast<size_t>(playlist)].name : Cell{};
}

}  // namespace model
