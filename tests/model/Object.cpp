#include "tests/model/Object.h"

#include <cstddef>

#include "tests/model/Loader.h"
#include "tests/model/Queries.h"

namespace model {

void Object::Construct() {
  loadWasTried_ = false;
  resultEncode_ = 0x08000100;
  database_ = Database{};
}

bool Object::LoadFile(const std::optional<HostFile> &file) {
  if (!database_ || loadWasTried_) return false;
  error_ = -50;
  if (!file) return false;
  loadWasTried_ = true;
  if (!file->hasSpecification || !file->bytes) return false;
  const bool loaded = Load(*file->bytes, *database_);
  std::string volume;
  if (loaded && database_->libType != 0 && file->path) {
    volume = *file->path;
    const size_t marker = volume.find(":iPod_Control");
    if (marker != std::string::npos) volume = volume.substr(0, marker);
  } else if (loaded && database_->libType == 0) {
    volume = file->specificationName;
  }
  database_->volumeName = volume;
  error_ = loaded ? 0 : 1;
  return loaded;
}

int32_t Object::LibType() const { return database_ ? database_->libType : -1; }

int32_t Object::UseSJIS() const { return database_ ? database_->useSJIS : 0; }

void Object::SetUseSJIS(int32_t value) {
  if (database_) database_->useSJIS = value != 0 ? 1 : 0;
}

std::optional<HostText> Object::VolumeName() const {
  if (!database_ || database_->volumeName.empty()) return std::nullopt;
  return host_.Build(database_->volumeName);
}

int32_t Object::CountSongs() const { return database_ ? static_cast<int32_t>(database_->songs.size()) : 0; }

int32_t Object::CountPlayLists() const {
  return database_ ? static_cast<int32_t>(database_->plays.size()) - process_.listSet : 0;
}

int32_t Object::CountSongsInPlayList(int32_t playlist) const {
  if (!database_ || !IsPlaylist(*database_, PlayNum(playlist))) return 0;
  return static_cast<int32_t>(database_->plays[static_cast<size_t>(PlayNum(playlist))].entries.size());
}

const Entry *Object::FindEntry(int32_t playlist, int32_t index) const {
  if (!database_ || !IsEntry(*database_, PlayNum(playlist), index)) return nullptr;
  return &database_->plays[static_cast<size_t>(PlayNum(playlist))].entries[static_cast<size_t>(index)];
}

Entry *Object::FindEntry(int32_t playlist, int32_t index) {
  if (!database_ || !IsEntry(*database_, PlayNum(playlist), index)) return nullptr;
  return &database_->plays[static_cast<size_t>(PlayNum(playlist))].entries[static_cast<size_t>(index)];
}

int32_t Object::Number(int32_t selector, int32_t index, int32_t playlist) const {
  enum class Family { Library, Playlist, Reference };
  if (!database_ || selector < 0 || selector > 35) return 0;
  const Database &database = *database_;
  switch (selector) {
    case 0:
      return SongsID(database, index);
    case 3:
      return FindEntry(playlist, index) != nullptr ? FindEntry(playlist, index)->idx : 0;
    case 4:
      return FindEntry(playlist, index) != nullptr ? FindEntry(playlist, index)->ref : 0;
    case 7: {
      const int32_t found = FindRefIdx(database.songs, index);
      return IsSong(database, found) ? found : 0;
    }
    case 10:
      return CountSongUnknown(database, index);
    case 11:
      return SongsProp(database, index, playlist);
    default:
      break;
  }
  Family family = Family::Library;
  if (selector < 12) {
    if (selector == 5 || selector == 6) family = Family::Playlist;
    if (selector == 8 || selector == 9) family = Family::Reference;
  } else {
    if (selector % 3 == 1) family = Family::Playlist;
    if (selector % 3 == 2) family = Family::Reference;
  }
  int32_t songIndex = index;
  if (family == Family::Playlist) {
    const Entry *entry = FindEntry(playlist, index);
    if (entry == nullptr) return 0;
    songIndex = entry->idx;
  } else if (family == Family::Reference) {
    songIndex = FindRefIdx(database.songs, index);
  }
  if (!IsSong(database, songIndex)) return 0;
  const Song &song = database.songs[static_cast<size_t>(songIndex)];
  switch (selector) {
    case 1:
    case 5:
    case 8:
      return static_cast<int32_t>(song.number);
    case 2:
    case 6:
    case 9:
      return static_cast<int32_t>(song.total);
    default:
      break;
  }
  switch (selector / 3) {
    case 4:
      return static_cast<int32_t>(song.duration);
    case 5:
      return static_cast<int32_t>(song.filesize);
    case 6:
      return static_cast<int32_t>(song.year);
    case 7:
      return song.res[3];
    case 8:
      return static_cast<int32_t>(song.bitrate);
    case 9:
      return static_cast<int32_t>(song.samplerate);
    case 10:
      return static_cast<int32_t>(song.mediaType);
    default:
      return song.moviefileflag;
  }
}

void Object::SetNumber(int32_t selector, int32_t index, int32_t num, int32_t value) {
  if (!database_ || !IsSong(*database_, index)) return;
  const auto word = static_cast<uint32_t>(value);
  Song &song = database_->songs[static_cast<size_t>(index)];
  switch (selector) {
    case 11:
      SetSongsProp(*database_, index, num, word);
      [[fallthrough]];
    case 1:
      song.number = word;
      [[fallthrough]];
    case 2:
      song.total = word;
      [[fallthrough]];
    case 15:
      song.filesize = word;
      [[fallthrough]];
    case 18:
      song.year = word;
      [[fallthrough]];
    case 30:
      song.mediaType = word;
      break;
    default:
      break;
  }
}

int32_t Object::Compilation(int32_t index) const {
  return (static_cast<uint32_t>(Number(11, index, 2)) & 0x10000U) != 0 ? 1 : 0;
}

void Object::SetCompilation(int32_t index, int32_t value) {
  auto prop = static_cast<uint32_t>(Number(11, index, 2));
  if (value != 0) {
    prop |= 0x10000U;
  } else {
    prop &= ~0x10000U;
  }
  SetNumber(11, index, 2, static_cast<int32_t>(prop));
}

int32_t Object::MovieFileFlag(int32_t trackID) const { return Number(35, trackID, 0) == 1 ? 1 : 0; }

Cell Object::Source(int32_t dataType, int32_t param, int32_t playlist, int32_t index) const {
  const Database &database = *database_;
  int32_t song = index;
  if (dataType == 2 || dataType == 5) {
    const Entry *entry = FindEntry(playlist, index);
    song = entry == nullptr ? 0 : entry->idx;
  } else if (dataType == 3 || dataType == 6) {
    song = FindRefIdx(database.songs, index);
  }
  switch (dataType) {
    case 0:
      return PlayListNameInfo(database, PlayNum(playlist));
    case 1:
    case 2:
    case 3:
      return SongsObjectInfo(database, song, param);
    case 4:
    case 5:
    case 6:
      return SongsUnknownObjectInfo(database, song, param);
    default:
      return {};
  }
}

std::optional<HostText> Object::String(int32_t dataType, int32_t param, int32_t playlist,
                                       int32_t index) const {
  if (!database_) return std::nullopt;
  return HandOut(Source(dataType, param, playlist, index), param, database_->useSJIS != 0, resultEncode_,
                 host_);
}

int32_t Object::Encoding(int32_t dataType, int32_t param, int32_t playlist, int32_t index) const {
  if (!database_) return 0;
  return static_cast<int32_t>(Source(dataType, param, playlist, index).enc);
}

void Object::SetString(int32_t param, int32_t index, const HostText &text) {
  if (database_) SetSongsObjectInfo(*database_, index, param, text.bytes, text.encoding);
}

int32_t Object::PlayListType(int32_t playlist, int32_t reqType) const {
  if (!database_ || !IsPlaylist(*database_, PlayNum(playlist))) return 0;
  const Playlist &found = database_->plays[static_cast<size_t>(PlayNum(playlist))];
  return reqType == 0 ? found.listType : found.listTypeII;
}

std::optional<HostText> Object::WithVolume(const std::optional<HostText> &path) const {
  if (!database_ || !loadWasTried_ || !path || path->bytes.empty()) return std::nullopt;
  return host_.Build(database_->libType == 0 ? path->bytes : database_->volumeName + path->bytes);
}

std::optional<std::string> Object::ItemOf(const std::optional<HostText> &path) const {
  if (!path || path->bytes.size() > 255) return std::nullopt;
  return host_.ItemOfPath(path->bytes);
}

std::optional<HostText> Object::PathOfItem(const std::optional<HostText> &path) const {
  if (!ItemOf(path)) return std::nullopt;
  return host_.PathOfItemOfPath(path->bytes);
}

int32_t Object::PlaySong(int32_t playlist, int32_t index) const {
  if (!database_ || !loadWasTried_) return 0;
  const Entry *entry = FindEntry(playlist, index);
  return entry == nullptr || entry->ply == 0 ? 1 : 0;
}

void Object::SetPlaySong(int32_t playlist, int32_t index, int32_t play) {
  Entry *entry = FindEntry(playlist, index);
  if (entry == nullptr) return;
  const uint32_t negated = 0U - (static_cast<uint32_t>(play) ^ 1U);
  entry->ply = static_cast<int32_t>(negated >> 31U);
}

int32_t Object::Flags(int32_t playlist, int32_t index) const {
  const Entry *entry = FindEntry(playlist, index);
  return entry == nullptr ? 0 : entry->flg;
}

void Object::SetFlags(int32_t playlist, int32_t index, int32_t flags) {
  Entry *entry = FindEntry(playlist, index);
  if (entry != nullptr) entry->flg = flags;
}

int32_t Object::Compare(int32_t object, int32_t playlist, int32_t a, int32_t b) const {
  if (!database_) return 0;
  if (playlist >= 0) {
    const Entry *first = FindEntry(playlist, a);
    const Entry *second = FindEntry(playlist, b);
    a = first == nullptr ? 0 : first->idx;
    b = second == nullptr ? 0 : second->idx;
  }
  return CompareSongsObjects(database_->songs, object, a, b, By::Text) ? 1 : 0;
}

}  // namespace model
