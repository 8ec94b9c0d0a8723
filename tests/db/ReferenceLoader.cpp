#include "tests/db/ReferenceLoader.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>

namespace db_test {
namespace {

std::string Padded(int32_t number, size_t width) {
  std::string text = std::to_string(number);
  if (text.size() < width) text.insert(number < 0 ? 1 : 0, width - text.size(), '0');
  return text;
}

std::string TrackText(uint32_t number, uint32_t total) {
  const auto num = static_cast<int32_t>(number);
  if (total == 0) return number == 0 ? "-" : Padded(num, 0);
  const size_t width = total <= 99 ? 2 : total <= 999 ? 3 : 4;
  return Padded(num, width) + "/" + Padded(static_cast<int32_t>(total), width);
}

class Reader {
 public:
  Reader(std::string file, ReferenceDatabase &out) : file_(std::move(file)), size_(file_.size()), out_(out) {
    file_ += '\0';  // what the last byte of an odd text is exchanged with at the end of the file
  }

  int32_t Read() {
    if (size_ < 16) return 0;
    if (Code(0) == "bd") {
      little_ = true;
    } else if (Code(0) != "fm" || Pad(0) != "hd") {
      return 0;
    }
    out_.libType = little_ ? 1 : 0;
    Walk();
    NumberByPairs(out_.songs);
    return 1;
  }

 private:
  [[nodiscard]] uint32_t Byte(uint64_t at) const {
    return at < size_ ? static_cast<uint8_t>(file_[static_cast<size_t>(at)]) : 0;
  }
  [[nodiscard]] uint32_t HighFirst(uint64_t at) const {
    return Byte(at) * 0x1000000 + Byte(at + 1) * 0x10000 + Byte(at + 2) * 0x100 + Byte(at + 3);
  }
  [[nodiscard]] uint32_t LowFirst(uint64_t at) const {
    return Byte(at + 3) * 0x1000000 + Byte(at + 2) * 0x10000 + Byte(at + 1) * 0x100 + Byte(at);
  }
  [[nodiscard]] uint32_t Word(uint64_t at) const { return little_ ? LowFirst(at) : HighFirst(at); }
  [[nodiscard]] int32_t Signed(uint64_t at) const { return static_cast<int32_t>(Word(at)); }
  [[nodiscard]] std::string Pad(uint64_t at) const { return file_.substr(static_cast<size_t>(at), 2); }
  [[nodiscard]] std::string Code(uint64_t at) const { return file_.substr(static_cast<size_t>(at) + 2, 2); }
  [[nodiscard]] std::string Cut(uint64_t at, uint64_t n) const {
    return file_.substr(static_cast<size_t>(at), static_cast<size_t>(n));
  }

  [[nodiscard]] bool Is(uint64_t at, const char *code, const char *bigCode, const char *bigPad) const {
    return Code(at) == code || (Code(at) == bigCode && Pad(at) == bigPad);
  }

  void Walk() {
    uint64_t at = 0;
    uint32_t advance = Word(4);
    while (true) {
      if (advance == 0 || advance >= 0x80000000U) return;
      at += advance;
      if (at + 16 > size_) return;
      advance = Word(at + 4);
      if (Is(at, "sd", "sm", "hd")) {
        listType_ = Word(at + 12);
      } else if (Is(at, "lt", "lm", "ht")) {
        continue;
      } else if (Is(at, "it", "im", "ht")) {
        filling_ = Filling::Track;
        Track(at);
      } else if (Is(at, "lp", "lm", "hp")) {
        continue;
      } else if (Is(at, "yp", "im", "hp")) {
        filling_ = Filling::Playlist;
        if (listType_ == 2) Playlist(at);
      } else if (Is(at, "ip", "tm", "hp")) {
        filling_ = Filling::Entry;
        if (listType_ == 2 && !out_.playlists.empty()) {
          const int32_t ref = Signed(at + 0x18);
          out_.playlists.back().entries.push_back(
              {ref, FindByWalking(out_.songs, ref), Signed(at + 0x10), 0});
        }
      } else if (Is(at, "od", "hm", "ho")) {
        advance = Word(at + 8);
        Object(at);
      }
    }
  }

  void Track(uint64_t at) {
    ReferenceSong song;
    song.id = Signed(at + 0x10);
    song.res[0] = Signed(at + 0x14);
    song.res[1] = Signed(at + 0x18);
    song.res[2] = Signed(at + 0x1c);
    song.res[3] = Signed(at + 0x20);
    song.filesize = Word(at + 0x24);
    song.duration = Word(at + 0x28);
    song.number = Word(at + 0x2c);
    song.total = Word(at + 0x30);
    song.year = Word(at + 0x34);
    song.bitrate = HighFirst(at + 0x38);
    song.samplerate = HighFirst(at + 0x3c);
    song.moviefileflag = static_cast<uint8_t>(Byte(at + 0xb1));
    song.mediaType = Word(at + 0xd0);
    song.trackInfo.text = TrackText(song.number, song.total);
    out_.songs.push_back(song);
  }

  void Playlist(uint64_t at) {
    ReferencePlaylist playlist;
    playlist.listType = Signed(at + 12);
    playlist.listTypeII = static_cast<int32_t>(Byte(at + 0x2c));
    out_.playlists.push_back(playlist);
  }

  void Object(uint64_t at) {
    const uint32_t myLen = Word(at + 8);
    if (myLen == 0 || Word(at + 0x14) != 0 || at + myLen > size_) return;
    if (filling_ == Filling::Track && !out_.songs.empty()) {
      SongObject(out_.songs.back(), at, myLen);
    } else if (filling_ == Filling::Playlist && listType_ == 2 && !out_.playlists.empty()) {
      PlaylistName(out_.playlists.back(), at, myLen);
    }
  }

  void SwapPairs(uint64_t from, uint64_t n) {
    for (auto i = static_cast<size_t>(from); i < from + n; i += 2) std::swap(file_[i], file_[i + 1]);
  }

  void SongObject(ReferenceSong &song, uint64_t at, uint32_t myLen) {
    const bool text = Word(at + 0x18) == 1;
    const uint64_t start = at + (text ? 0x28U : 0x18U);
    const auto bufSize = static_cast<int32_t>(text ? myLen - 40 : myLen - Word(at + 4));
    const uint32_t enc = text ? HighFirst(at + 0x18) : 0;
    if (bufSize <= 0) return;
    const auto length = static_cast<uint64_t>(bufSize);
    if (start + length > size_) return;
    const uint32_t type = Word(at + 12);
    if (little_) {
      if (text) SwapPairs(start, length);
      LittleEndianObject(song, type, enc, Cut(start, length));
    } else if (type == 1) {
      Location(song, at, myLen, text, enc);
    } else {
      BigEndianObject(song, type, enc, Cut(start, length));
    }
  }

  static void LittleEndianObject(ReferenceSong &song, uint32_t type, uint32_t enc, const std::string &bytes) {
    ReferenceCell *cell = type == 1    ? &song.title
                          : type == 2  ? &song.path
                          : type == 3  ? &song.album
                          : type == 4  ? &song.artist
                          : type == 5  ? &song.genre
                          : type == 6  ? &song.filetype
                          : type == 12 ? &song.composer
                                       : nullptr;
    if (cell == nullptr) cell = &song.unknown.emplace_back();
    cell->idx = static_cast<int32_t>(type);
    cell->enc = enc;
    cell->text += bytes;
  }

  static void BigEndianObject(ReferenceSong &song, uint32_t type, uint32_t enc, const std::string &bytes) {
    ReferenceCell *cell = type == 2    ? &song.title
                          : type == 3  ? &song.album
                          : type == 4  ? &song.artist
                          : type == 5  ? &song.genre
                          : type == 12 ? &song.composer
                                       : nullptr;
    if (cell == nullptr) return;
    cell->enc = enc;
    cell->text += bytes;
  }

  void Location(ReferenceSong &song, uint64_t at, uint32_t myLen, bool text, uint32_t enc) {
    const auto base = static_cast<int64_t>(at) - (text ? 0 : 16);
    const int64_t end = base + int64_t{myLen};
    const int64_t nameAt = base + 0x23;
    if (nameAt > end) return;
    const auto n = static_cast<int64_t>(Byte(static_cast<uint64_t>(nameAt - 1)));
    if (nameAt + n > end) return;
    const std::string name = file_.substr(static_cast<size_t>(nameAt), static_cast<size_t>(n));
    for (int64_t match = nameAt + n; match + n <= end; ++match) {
      const auto from = static_cast<size_t>(match);
      if (file_.compare(from, name.size(), name) != 0) continue;
      const uint64_t length = 256 * Byte(from - 2) + Byte(from - 1);
      if (from + length > at + myLen) return;
      song.path.text += Cut(from, length);
      song.path.enc = enc;
      return;
    }
  }

  void PlaylistName(ReferencePlaylist &playlist, uint64_t at, uint32_t myLen) {
    if (Word(at + 12) != (little_ ? 1U : 100U) || myLen < 40) return;
    if (little_) SwapPairs(at + 0x28, myLen - 40);
    playlist.name.text += Cut(at + 0x28, myLen - 40);
    playlist.name.enc = HighFirst(at + 0x18);
  }

  enum class Filling { Nothing, Track, Playlist, Entry };

  std::string file_;
  uint64_t size_;
  ReferenceDatabase &out_;
  bool little_ = false;
  uint32_t listType_ = 0;
  Filling filling_ = Filling::Nothing;
};

ReferenceCell Plain(const songInfo &cell) { return {cell.idx, cell.enc, std::string(cell.obj.View())}; }

}  // namespace

int32_t ReferenceLoad(std::string file, ReferenceDatabase &database) {
  return Reader(std::move(file), database).Read();
}

int32_t FindByWalking(const std::vector<ReferenceSong> &songs, int32_t id) {
  for (size_t i = 0; i < songs.size(); ++i) {
    if (songs[i].id == id) return static_cast<int32_t>(i);
  }
  return 0;
}

void NumberByPairs(std::vector<ReferenceSong> &songs) {
  int32_t artist = 0;
  int32_t album = 0;
  int32_t genre = 0;
  int32_t shared = 0;
  for (size_t i = 0; i + 1 < songs.size(); ++i) {
    ReferenceSong &a = songs[i];
    if (a.artist.idx < 0) a.artist.idx = ++artist;
    if (a.album.idx < 0) a.artist.idx = ++album;
    if (a.genre.idx < 0) a.artist.idx = ++genre;
    if (a.composer.idx < 0) a.artist.idx = ++shared;
    if (a.filetype.idx < 0) a.artist.idx = ++shared;
    for (size_t j = i + 1; j < songs.size(); ++j) {
      ReferenceSong &b = songs[j];
      if (b.artist.idx < 0 && a.artist.text == b.artist.text) b.artist.idx = artist;
      if (b.album.idx < 0 && a.album.text == b.album.text && a.artist.text == b.artist.text) {
        b.album.idx = album;
      }
      if (b.genre.idx < 0 && a.genre.text == b.genre.text) b.genre.idx = genre;
      if (b.composer.idx < 0 && a.composer.text == b.composer.text) b.composer.idx = genre;
      if (b.filetype.idx < 0 && a.filetype.text == b.filetype.text) b.filetype.idx = genre;
    }
  }
}

ReferenceSong Plain(const CSongList &song) {
  ReferenceSong plain;
  plain.id = song.id;
  std::copy(std::begin(song.res), std::end(song.res), plain.res);
  plain.number = song.track.num;
  plain.total = song.track.total;
  plain.duration = song.duration;
  plain.filesize = song.filesize;
  plain.bitrate = song.bitrate;
  plain.samplerate = song.samplerate;
  plain.moviefileflag = song.moviefileflag;
  plain.mediaType = song.mediaType;
  plain.year = song.year;
  plain.trackInfo = Plain(song.trackInfo);
  plain.title = Plain(song.title);
  plain.path = Plain(song.path);
  plain.album = Plain(song.album);
  plain.artist = Plain(song.artist);
  plain.genre = Plain(song.genre);
  plain.filetype = Plain(song.filetype);
  plain.composer = Plain(song.composer);
  for (const songInfo &other : song.unknown) plain.unknown.push_back(Plain(other));
  return plain;
}

ReferenceDatabase Plain(const CiTunesDB &database) {
  ReferenceDatabase plain;
  plain.libType = database.libType;
  for (const CSongList &song : database.songs) plain.songs.push_back(Plain(song));
  for (const CPlayList &list : database.plays) {
    ReferencePlaylist playlist{list.listType, list.listTypeII, Plain(list.name), {}};
    for (const refidx &entry : list.refnum) {
      playlist.entries.push_back({entry.ref, entry.idx, entry.ply, entry.flg});
    }
    plain.playlists.push_back(std::move(playlist));
  }
  return plain;
}

namespace {

void Describe(std::ostream &out, const ReferenceCell &cell) {
  out << " {" << cell.idx << ' ' << cell.enc << ' ' << testing::PrintToString(cell.text) << '}';
}

void Describe(std::ostream &out, const ReferenceSong &song) {
  out << "song " << song.id << std::hex;
  for (const int32_t word : song.res) out << ' ' << word;
  for (const uint32_t word : {song.number, song.total, song.duration, song.filesize, song.bitrate,
                              song.samplerate, uint32_t{song.moviefileflag}, song.mediaType, song.year}) {
    out << ' ' << word;
  }
  out << std::dec;
  for (const ReferenceCell *cell : {&song.trackInfo, &song.title, &song.path, &song.album, &song.artist,
                                    &song.genre, &song.filetype, &song.composer}) {
    Describe(out, *cell);
  }
  for (const ReferenceCell &cell : song.unknown) Describe(out, cell);
  out << '\n';
}

}  // namespace

std::string Describe(const ReferenceDatabase &database) {
  std::ostringstream out;
  out << "variant " << database.libType << '\n';
  for (const ReferenceSong &song : database.songs) Describe(out, song);
  for (const ReferencePlaylist &list : database.playlists) {
    out << "playlist " << list.listType << ' ' << list.listTypeII;
    Describe(out, list.name);
    for (const ReferenceEntry &entry : list.entries) {
      out << " (" << entry.ref << ' ' << entry.idx << ' ' << entry.ply << ' ' << entry.flg << ')';
    }
    out << '\n';
  }
  return out.str();
}

}  // namespace db_test
