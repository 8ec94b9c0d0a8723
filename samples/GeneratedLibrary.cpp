#include "samples/GeneratedLibrary.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>
#include <utility>

namespace samples {

namespace {

using Words = std::array<std::u16string_view, 16>;

constexpr Words kFirst{u"Quiet",  u"Electric", u"Frozen",   u"Paper", u"Élan", u"Violet",
                       u"Über",   u"Second",   u"Borrowed", u"Slow",  u"Año",  u"Blue",
                       u"Hollow", u"Little",   u"Noël",     u"Last"};
constexpr Words kSecond{u"River",  u"Engines", u"Café",    u"Mirror", u"Garden", u"Señal",
                        u"Winter", u"Arcade",  u"Tide",    u"Façade", u"Radio",  u"Smoke",
                        u"Letter", u"Ångst",   u"Harbour", u"Signal"};
constexpr Words kJapanese{u"青い", u"夜の", u"海",   u"風",   u"そら",   u"とうきょう", u"ラジオ", u"ガラス",
                          u"雪",   u"夏",   u"手紙", u"電車", u"ひかり", u"メロディー", u"遠い",   u"橋"};
constexpr std::array<std::u16string_view, 10> kGenres{u"Rock",  u"Jazz",      u"Classical", u"J-Pop",
                                                      u"Folk",  u"Hip-Hop",   u"Soul",      u"ロック",
                                                      u"Latin", u"Electronic"};

template <typename Pool>
std::u16string_view Pick(Random &random, const Pool &pool) {
  return pool.at(random.Below(static_cast<uint32_t>(pool.size())));
}

std::u16string Name(Random &random, bool japanese) {
  std::u16string name;
  if (japanese) {
    for (uint32_t left = 2 + random.Below(3); left > 0; --left) name += Pick(random, kJapanese);
  } else {
    name += Pick(random, kFirst);
    name += u' ';
    name += Pick(random, kSecond);
  }
  return name;
}

std::u16string Digits(uint32_t number, size_t width) {
  std::u16string digits(width, u'0');
  for (size_t i = width; i > 0; --i, number /= 10) digits[i - 1] = static_cast<char16_t>(u'0' + number % 10);
  return digits;
}

// The file name of the song at `index`, four letters as players give them, and a number that makes it the
// only one.
std::u16string Path(Random &random, uint32_t index, bool movie, Variant variant) {
  std::u16string path = variant == Variant::BigEndian ? u"Disk:Music" : u":iPod_Control:Music";
  path += u":F" + Digits(index % 50, 2) + u':';
  for (int i = 0; i < 4; ++i) path += static_cast<char16_t>(u'A' + random.Below(26));
  return path + Digits(index, 7) + (movie ? u".m4v" : u".m4a");
}

void WriteBytes(std::ostream &stream, ChunkWriter &out) {
  stream.write(out.Bytes().data(), static_cast<std::streamsize>(out.Size()));
  out.Clear();
}

// Sets the length word of the chunk at `chunk`, which is known only now that `end` is reached.
void WriteLength(std::ostream &stream, Variant variant, size_t chunk, size_t end) {
  ChunkWriter word(variant);
  word.AppendWord(static_cast<uint32_t>(end - chunk));
  stream.seekp(static_cast<std::streamoff>(chunk + 8));
  WriteBytes(stream, word);
  stream.seekp(static_cast<std::streamoff>(end));
}

}  // namespace

uint64_t Random::Next() {
  state_ += 0x9e3779b97f4a7c15;
  uint64_t mixed = state_;
  mixed = (mixed ^ mixed >> 30) * 0xbf58476d1ce4e5b9;
  mixed = (mixed ^ mixed >> 27) * 0x94d049bb133111eb;
  return mixed ^ mixed >> 31;
}

uint32_t Random::Below(uint32_t limit) { return static_cast<uint32_t>((Next() >> 32) * limit >> 32); }

Track GeneratedLibrary::Song(uint32_t index) const {
  constexpr uint32_t kSongsPerAlbum = 12;
  const uint32_t album = index / kSongsPerAlbum;
  const bool japanese = album % 5 == 2;
  const uint64_t start = Random(seed).Next();
  Random albumRandom(start ^ 0xa000000000000000 ^ album);
  Random random(start ^ 0xb000000000000000 ^ index);

  const bool movie = random.OneIn(50);
  SongTexts texts;
  texts.title = Name(random, japanese);
  texts.artist = Name(albumRandom, japanese) + (japanese ? u"" : u" Band");
  texts.album = Name(albumRandom, japanese) + u' ' + Digits(album % 100, 2);
  texts.genre = Pick(albumRandom, kGenres);
  texts.filetype = movie ? u"MPEG-4 video file" : u"AAC audio file";
  texts.composer = Name(albumRandom, japanese);
  texts.path = Path(random, index, movie, variant);

  Track track;
  track.id = 2 * index + 52;
  track.res = {1, movie ? 0x4d345620U : 0x41414320U, albumRandom.OneIn(10) ? 0x10000U : 0U,
               3200000000U + random.Below(300000000)};
  track.duration = 90000 + random.Below(360000);
  track.bitrate = 128 + 64 * random.Below(4);
  track.samplerate = 44100U << 16;
  track.filesize = track.duration / 8 * track.bitrate + random.Below(1000);
  track.number = index % kSongsPerAlbum + 1;
  track.total = kSongsPerAlbum;
  track.year = 1960 + albumRandom.Below(50);
  track.moviefileflag = movie ? 1 : 0;
  track.mediaType = movie ? 2 : 1;
  track.objects = SongObjects(variant, texts);
  track.objects.push_back(TextObject(8, Name(random, japanese)));
  if (random.OneIn(2)) track.objects.push_back(TextObject(23, texts.artist));
  if (random.OneIn(2)) track.objects.push_back(TextObject(27, texts.title));
  return track;
}

Playlist GeneratedLibrary::List(uint32_t index) const {
  Random random(Random(seed).Next() ^ 0xc000000000000000 ^ index);
  Playlist list;
  list.master = index == 0;
  list.name = list.master ? std::u16string(u"Library") : Name(random, random.OneIn(5));
  const uint32_t count = list.master || songs == 0 ? songs : entries;
  list.entries.reserve(count);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t song = list.master ? i : random.Below(songs);
    list.entries.push_back({.ref = 2 * song + 52, .objects = {PositionObject(variant, i + 1)}});
  }
  return list;
}

void GeneratedLibrary::WriteTo(std::ostream &stream) const {
  constexpr size_t kFlushAt = 1 << 20;
  ChunkWriter out(variant);
  size_t written = 0;
  const auto flush = [&] {
    written += out.Size();
    WriteBytes(stream, out);
  };
  const auto beginSet = [&](uint32_t type, Kind list, uint32_t count) {
    const size_t set = written + out.Size();
    out.Begin(Kind::DataSet, UsualHeaderLength(Kind::DataSet, variant), type);
    out.PutWord(out.Begin(list, UsualHeaderLength(list, variant)) + 8, count);
    return set;
  };
  const auto finish = [&](size_t chunk) {
    flush();
    WriteLength(stream, variant, chunk, written);
  };

  const size_t file = BeginFile(out, 2);
  const size_t tracks = beginSet(1, Kind::TrackList, songs);
  for (uint32_t i = 0; i < songs; ++i) {
    AppendTrack(out, Song(i));
    if (out.Size() >= kFlushAt) flush();
  }
  finish(tracks);
  const size_t lists = beginSet(2, Kind::PlaylistList, playlists);
  for (uint32_t i = 0; i < playlists; ++i) {
    AppendPlaylist(out, List(i));
    flush();
  }
  finish(lists);
  finish(file);
}

std::u16string CancellingText(uint32_t number) {
  // Of every other word of eight bytes, bit 63 is flipped in one and bits 63 and 31 in the next: in the low
  // bytes of UTF-16 units.
  constexpr uint32_t kBits = 18;
  std::u16string text(kBits / 2 * 16 + 8, u'a');
  for (uint32_t bit = 0; bit < kBits; ++bit) {
    if ((number >> bit & 1) == 0) continue;
    const size_t word = bit / 2 * 16 + bit % 2 * 4;
    for (const size_t unit : {word + 3, word + 9, word + 11}) text[unit] = u'\u00e1';
  }
  return text;
}

std::string GeneratedLibrary::Bytes() const {
  std::ostringstream stream;
  WriteTo(stream);
  return std::move(stream).str();
}

}  // namespace samples
