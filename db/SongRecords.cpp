#include "db/SongRecords.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "db/ByteOrder.h"

const songInfo errSongInfo = {0, 0, {}};

namespace {

std::string_view Bytes(const uint8_t *at, size_t n) { return {reinterpret_cast<const char *>(at), n}; }

// Adds bytes of an object of this type to a record's text. The first ones go to the arena, if there is one
// and they would not fit into the text itself.
void Store(ByteString &text, std::string_view bytes, uint32_t type, TextArena *arena) {
  if (arena == nullptr || !text.empty() || bytes.size() <= ByteString::kNearRoom) {
    text.Append(bytes);
  } else {
    text.Append(arena->Keep(bytes, type));
  }
}

// A data object's header and what precedes its text.
constexpr int32_t kTextOffset = 40;

uint32_t FileOrder(uint32_t word, int32_t libType) {
  if (libType == 1) Swap4Byte(&word);
  return word;
}

// The field that a data object of the type fills; null for a type without one. A big-endian file numbers
// titles and paths the other way round, and holds its paths in a form of their own and no file types.
songInfo *FieldOf(CSongList &song, uint32_t type, int32_t libType) {
  auto number = static_cast<int32_t>(type);
  if (number < 0) return nullptr;
  if (libType != 1) {
    if (number == kObjectTitle || number == kObjectFileType) return nullptr;
    if (number == kObjectPath) number = kObjectTitle;
  }
  return NamedCell(song, number);
}

// Writes the word as the signed number it is shown as, with zeros after the sign up to the width ("%0*d";
// every load writes two of these a song). Returns the end.
char *PutDecimal(char *out, uint32_t word, int width) {
  const auto value = static_cast<int32_t>(word);
  char digits[12];
  const char *end = std::to_chars(digits, digits + sizeof digits, value < 0 ? 0U - word : word).ptr;
  if (value < 0) {
    *out++ = '-';
    --width;
  }
  for (auto count = end - digits; count < width; ++count) *out++ = '0';
  return std::copy(static_cast<const char *>(digits), end, out);
}

}  // namespace

const songInfo *NamedCell(const CSongList &song, int32_t num) {
  switch (num) {
    case kObjectTrackInfo:
      return &song.trackInfo;
    case kObjectTitle:
      return &song.title;
    case kObjectPath:
      return &song.path;
    case kObjectAlbum:
      return &song.album;
    case kObjectArtist:
      return &song.artist;
    case kObjectGenre:
      return &song.genre;
    case kObjectFileType:
      return &song.filetype;
    case kObjectComposer:
      return &song.composer;
    default:
      return nullptr;
  }
}

songInfo *NamedCell(CSongList &song, int32_t num) {
  return const_cast<songInfo *>(NamedCell(std::as_const(song), num));
}

int32_t CSongList::SetObj(const fsbbStruct *fsbb, uint8_t *objPtr, uint32_t _encode, int32_t libType,
                          TextArena *arena) {
  if (objPtr == nullptr) return 0;
  const bool isText = FileOrder(_encode, libType) == 1;
  uint8_t *start = isText ? objPtr : objPtr - 16;
  const auto bufSize =
      static_cast<int32_t>(isText ? fsbb->myLen - uint32_t{kTextOffset} : fsbb->myLen - fsbb->jump);
  const uint32_t encode = isText ? _encode : 0;
  if (bufSize <= 0) return 0;
  const auto size = static_cast<size_t>(bufSize);

  if (libType != 1) {
    if (fsbb->count == 1) {
      // A raw body's object may end before the place where a text would begin.
      return SetLocation(fsbb, start, objPtr - kTextOffset + fsbb->myLen, encode, arena);
    }
    songInfo *field = FieldOf(*this, fsbb->count, libType);
    if (field == nullptr) return 0;
    Store(field->obj, Bytes(start, size), fsbb->count, arena);
    field->enc = encode;
    return 1;
  }

  if (isText) Swap2ByteString(start, size);
  songInfo *field = FieldOf(*this, fsbb->count, libType);
  if (field == nullptr) {
    songInfo other{static_cast<int32_t>(fsbb->count), encode, {}};
    Store(other.obj, Bytes(start, size), fsbb->count, arena);
    constexpr size_t kUsual = 4;
    if (unknown.empty()) unknown.reserve(kUsual);
    unknown.push_back(std::move(other));
    return 1;
  }
  Store(field->obj, Bytes(start, size), fsbb->count, arena);
  field->idx = static_cast<int32_t>(fsbb->count);
  field->enc = encode;
  return 1;
}

// An alias-style body holds the volume's name with a length byte before it, and further on the full path,
// which begins with that name and has its 16-bit length right before it. The body is laid out for a text
// object; it is read from the same distance before the text when the object is not marked as text.
int32_t CSongList::SetLocation(const fsbbStruct *fsbb, const uint8_t *start, const uint8_t *objectEnd,
                               uint32_t encode, TextArena *arena) {
  constexpr int32_t kName = 0x23;
  const uint8_t *at = start + (kName - kTextOffset);
  if (fsbb->myLen < uint32_t{kName}) return 0;
  const size_t room = fsbb->myLen - uint32_t{kName};
  const size_t n = at[-1];
  if (n > room) return 0;
  const std::string_view name = Bytes(at, n);
  const std::string_view rest = Bytes(at + n, room - n);
  const size_t match = rest.find(name);
  if (match == std::string_view::npos) return 0;
  const uint8_t *found = at + n + match;
  const size_t length = size_t{256} * found[-2] + found[-1];
  if (objectEnd < found || length > static_cast<size_t>(objectEnd - found)) return 0;
  Store(path.obj, Bytes(found, length), fsbb->count, arena);
  path.enc = encode;
  return 1;
}

void CSongList::SetTrack(trackParam _track) {
  track = _track;
  char text[50];
  char *end = text;
  if (_track.total == 0 && _track.num == 0) {
    *end++ = '-';
  } else if (_track.total == 0) {
    end = PutDecimal(end, _track.num, 1);
  } else {
    const int width = _track.total < 100 ? 2 : _track.total < 1000 ? 3 : 4;
    end = PutDecimal(end, _track.num, width);
    *end++ = '/';
    end = PutDecimal(end, _track.total, width);
  }
  trackInfo.obj.Append({text, static_cast<size_t>(end - text)});
}

int32_t CPlayList::SetTitle(const fsbbStruct *fsbb, uint8_t *objPtr, uint32_t _encode, int32_t libType,
                            TextArena *arena) {
  const uint32_t nameType = libType == 1 ? 1 : 100;
  const auto lng = static_cast<int32_t>(fsbb->myLen - uint32_t{kTextOffset});
  if (fsbb->count != nameType || objPtr == nullptr || lng < 0) return 0;
  const auto size = static_cast<size_t>(lng);
  if (libType == 1) Swap2ByteString(objPtr, size);
  Store(name.obj, Bytes(objPtr, size), fsbb->count, arena);
  name.enc = _encode;
  return 1;
}
