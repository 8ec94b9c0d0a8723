#include "tests/model/Loader.h"

#include <cstddef>
#include <cstdio>

#include "tests/model/Queries.h"

namespace model {
namespace {

uint32_t Reversed(uint32_t word) {
  return (word & 0xFFU) << 24U | (word & 0xFF00U) << 8U | (word & 0xFF0000U) >> 8U | word >> 24U;
}

struct Header {
  std::string pad;
  std::string code;
  uint32_t jump = 0;
  uint32_t myLen = 0;
  uint32_t count = 0;
};

class Walk {
 public:
  Walk(const std::string &file, Database &database)
      : database_(database), image_(file + '\0'), size_(static_cast<int64_t>(file.size())) {}

  bool Run() {
    if (size_ < 16 || size_ > 0x7FFFFFFF) return false;
    const std::string code = image_.substr(2, 2);
    const std::string pad = image_.substr(0, 2);
    if (code == "bd") {
      database_.libType = 1;
    } else if (code == "fm" && pad == "hd") {
      database_.libType = 0;
    } else {
      return false;
    }
    int64_t cursor = static_cast<int32_t>(Word(4));
    while (cursor >= 0 && cursor + 16 <= size_) {
      const auto advance = static_cast<int32_t>(ReadChunk(cursor));
      if (advance <= 0) break;
      cursor += advance;
    }
    SetSongsObjectIndex(database_.songs);
    return true;
  }

 private:
  [[nodiscard]] bool Little() const { return database_.libType == 1; }

  // Bytes past the end of the file read as zero.
  [[nodiscard]] uint8_t Byte(int64_t at) const {
    return at < size_ ? static_cast<uint8_t>(image_[static_cast<size_t>(at)]) : uint8_t{0};
  }

  // The word with its most significant byte first, whatever the variant.
  [[nodiscard]] uint32_t PlainWord(int64_t at) const {
    return uint32_t{Byte(at)} << 24U | uint32_t{Byte(at + 1)} << 16U | uint32_t{Byte(at + 2)} << 8U |
           Byte(at + 3);
  }

  [[nodiscard]] uint32_t Word(int64_t at) const { return Little() ? Reversed(PlainWord(at)) : PlainWord(at); }

  [[nodiscard]] std::string Bytes(int64_t at, int64_t count) const {
    return image_.substr(static_cast<size_t>(at), static_cast<size_t>(count));
  }

  // Exchanges the bytes of each pair; an odd last byte changes places with the byte after the text.
  void SwapPairs(int64_t at, int64_t count) {
    for (int64_t i = 0; i < count; i += 2) {
      const auto first = static_cast<size_t>(at + i);
      const char byte = image_[first];
      image_[first] = image_[first + 1];
      image_[first + 1] = byte;
    }
  }

  static bool Is(const Header &chunk, const char *code, const char *bigCode, const char *bigPad) {
    return chunk.code == code || (chunk.code == bigCode && chunk.pad == bigPad);
  }

  Playlist &OpenPlaylist() { return database_.plays[static_cast<size_t>(database_.tarPlay)]; }

  // Takes in one chunk and returns how far to go on.
  uint32_t ReadChunk(int64_t at) {
    const Header chunk = {Bytes(at, 2), Bytes(at + 2, 2), Word(at + 4), Word(at + 8), Word(at + 12)};
    if (Is(chunk, "sd", "sm", "hd")) {
      database_.listType = static_cast<int32_t>(chunk.count);
    } else if (Is(chunk, "lt", "lm", "ht") || Is(chunk, "lp", "lm", "hp")) {
      // Only announces how many tracks or playlists follow.
    } else if (Is(chunk, "it", "im", "ht")) {
      database_.infoType = Little() ? 1 : 5;
      database_.odcount = static_cast<int32_t>(chunk.myLen);
      ReadTrack(at);
    } else if (Is(chunk, "yp", "im", "hp")) {
      database_.infoType = Little() ? 2 : 6;
      if (database_.listType == 2) ReadPlaylist(at, chunk);
    } else if (Is(chunk, "ip", "tm", "hp")) {
      database_.infoType = Little() ? 3 : 7;
      if (database_.listType == 2) ReadEntry(at, chunk);
    } else if (Is(chunk, "od", "hm", "ho")) {
      database_.odcount = static_cast<int32_t>(int64_t{database_.odcount} - 1);
      if (chunk.myLen != 0) ReadObject(at, chunk);
      return chunk.myLen;
    }
    return chunk.jump;
  }

  void ReadTrack(int64_t at) {
    Song song;
    song.id = static_cast<int32_t>(Word(at + 0x10));
    song.res[0] = static_cast<int32_t>(Word(at + 0x14));
    song.res[1] = static_cast<int32_t>(Word(at + 0x18));
    song.res[2] = static_cast<int32_t>(Word(at + 0x1c));
    song.res[3] = static_cast<int32_t>(Word(at + 0x20));
    song.filesize = Word(at + 0x24);
    song.duration = Word(at + 0x28);
    song.number = Word(at + 0x2c);
    song.total = Word(at + 0x30);
    song.year = Word(at + 0x34);
    song.bitrate = PlainWord(at + 0x38);
    song.samplerate = PlainWord(at + 0x3c);
    song.moviefileflag = Byte(at + 0xb1);
    song.mediaType = Word(at + 0xd0);
    song.trackInfo.text += TrackText(song.number, song.total);
    database_.songs.push_back(song);
    database_.tarSong = static_cast<int64_t>(database_.songs.size()) - 1;
  }

  static std::string TrackText(uint32_t number, uint32_t total) {
    char text[50] = "-";
    const auto n = static_cast<int>(number);
    const auto t = static_cast<int>(total);
    if (total == 0) {
      if (number != 0) std::snprintf(text, sizeof text, "%d", n);
    } else if (total < 100) {
      std::snprintf(text, sizeof text, "%02d/%02d", n, t);
    } else if (total < 1000) {
      std::snprintf(text, sizeof text, "%03d/%03d", n, t);
    } else {
      std::snprintf(text, sizeof text, "%04d/%04d", n, t);
    }
    return text;
  }

  void ReadPlaylist(int64_t at, const Header &chunk) {
    database_.odcount = static_cast<int32_t>(chunk.myLen);
    Playlist playlist;
    playlist.listType = static_cast<int32_t>(chunk.count);
    playlist.listTypeII = Byte(at + 0x2c);
    database_.plays.push_back(playlist);
    database_.tarPlay = static_cast<int64_t>(database_.plays.size()) - 1;
  }

  void ReadEntry(int64_t at, const Header &chunk) {
    database_.odcount = static_cast<int32_t>(chunk.myLen);
    if (database_.tarPlay < 0) return;
    Entry entry;
    entry.ref = static_cast<int32_t>(Word(at + 0x18));
    entry.idx = FindRefIdx(database_.songs, entry.ref);
    entry.ply = static_cast<int32_t>(Word(at + 0x10));
    OpenPlaylist().entries.push_back(entry);
  }

  void ReadObject(int64_t at, const Header &chunk) {
    if (chunk.myLen > size_ - at) return;
    if (Word(at + 0x14) != 0) return;
    const uint32_t encodingWord = PlainWord(at + 0x18);
    const int32_t kind = database_.infoType;
    if ((kind == 1 || kind == 5) && database_.tarSong >= 0) {
      FileTrackObject(at, chunk, encodingWord);
    } else if ((kind == 2 || kind == 6) && database_.listType == 2 && database_.tarPlay >= 0) {
      FilePlaylistObject(at, chunk, encodingWord, OpenPlaylist().name);
    }
  }

  void FileTrackObject(int64_t at, const Header &chunk, uint32_t encodingWord) {
    const bool isText = (Little() ? Reversed(encodingWord) : encodingWord) == 1;
    const int64_t start = isText ? at + 0x28 : at + 0x18;
    const int64_t length = static_cast<int32_t>(isText ? chunk.myLen - 40 : chunk.myLen - chunk.jump);
    const uint32_t stored = isText ? encodingWord : 0;
    if (length < 0 || start + length > size_) return;
    // Bodies that reach past their objects are stored until, counted from the objects' first bytes, they come
    // to more than eight times the file.
    if (start + length > at + chunk.myLen) {
      reaching_ += start + length - at;
      if (reaching_ > 8 * size_) return;
    }
    if (length == 0) return;
    Song &song = database_.songs[static_cast<size_t>(database_.tarSong)];
    if (Little()) {
      if (isText) SwapPairs(start, length);
      FileLittleObject(song, chunk.count, stored, Bytes(start, length));
    } else if (chunk.count == 1) {
      FileLocation(song, start - 40, chunk.myLen, at + chunk.myLen, stored);
    } else {
      FileBigObject(song, chunk.count, stored, Bytes(start, length));
    }
  }

  static void FileLittleObject(Song &song, uint32_t type, uint32_t stored, const std::string &bytes) {
    const struct {
      uint32_t type;
      Cell &cell;
    } named[] = {{1, song.title}, {2, song.path},     {3, song.album},    {4, song.artist},
                 {5, song.genre}, {6, song.filetype}, {12, song.composer}};
    for (const auto &name : named) {
      if (name.type != type) continue;
      name.cell.idx = static_cast<int32_t>(type);
      name.cell.text += bytes;
      name.cell.enc = stored;
      return;
    }
    song.unknown.push_back({static_cast<int32_t>(type), stored, bytes});
  }

  static void FileBigObject(Song &song, uint32_t type, uint32_t stored, const std::string &bytes) {
    const struct {
      uint32_t type;
      Cell &cell;
    } named[] = {{2, song.title}, {3, song.album}, {4, song.artist}, {5, song.genre}, {12, song.composer}};
    for (const auto &name : named) {
      if (name.type != type) continue;
      name.cell.text += bytes;
      name.cell.enc = stored;
    }
  }

  // The volume's name, one length byte before it, is met again at the start of the full path, whose length
  // stands in the two bytes before it.
  void FileLocation(Song &song, int64_t base, uint32_t myLen, int64_t objectEnd, uint32_t stored) {
    const int64_t nameAt = base + 0x23;
    const int64_t end = base + myLen;
    const int64_t nameLength = Byte(base + 0x22);
    if (nameAt + nameLength > end) return;
    const std::string name = Bytes(nameAt, nameLength);
    for (int64_t match = nameAt + nameLength; match + nameLength <= end; ++match) {
      if (Bytes(match, nameLength) != name) continue;
      const int64_t pathLength = int64_t{256} * Byte(match - 2) + Byte(match - 1);
      if (match + pathLength > objectEnd) return;
      song.path.text += Bytes(match, pathLength);
      song.path.enc = stored;
      return;
    }
  }

  void FilePlaylistObject(int64_t at, const Header &chunk, uint32_t encodingWord, Cell &name) {
    if (chunk.count != (Little() ? 1U : 100U) || chunk.myLen < 40) return;
    const int64_t length = int64_t{chunk.myLen} - 40;
    if (Little()) SwapPairs(at + 0x28, length);
    name.text += Bytes(at + 0x28, length);
    name.enc = encodingWord;
  }

  Database &database_;
  std::string image_;
  int64_t size_;
  int64_t reaching_ = 0;
};

}  // namespace

bool Load(const std::string &file, Database &database) { return Walk(file, database).Run(); }

}  // namespace model
