#include "samples/SampleLibrary.h"

#include <map>
#include <optional>
#include <utility>

#include "samples/GeneratedLibrary.h"

namespace samples {

namespace {

constexpr int64_t kFrom1904To1970 = 2082844800;  // seconds

// The upper half of Mac Roman, 0x80 to 0xff; 0xf0 stands for a logo that has no code point of its own.
constexpr std::u16string_view kMacRoman =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø¿¡¬√ƒ≈∆«»…\u00a0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ‡·"
    u"‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uf8ffÒÚÛ"
    u"Ùıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(kMacRoman.size() == 128);

std::optional<std::string> InMacRoman(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    const size_t upper = kMacRoman.find(unit);
    if (unit >= 0x80 && upper == std::u16string_view::npos) return std::nullopt;
    bytes += static_cast<char>(unit < 0x80 ? unit : 0x80 + upper);
  }
  return bytes;
}

uint32_t TrackId(size_t song) { return static_cast<uint32_t>(100 + 3 * song); }

std::u16string Path(const SampleSong &song, std::u16string_view folder) {
  std::u16string path(folder);
  for (const char c : song.file) path += static_cast<char16_t>(c == '/' ? ':' : c);
  return path;
}

// Four letters that name the kind of file, "M4A ", as one number.
uint32_t TypeCode(const SampleSong &song) {
  uint32_t code = 0;
  for (const char c : song.file.substr(song.file.rfind('.') + 1)) {
    code = code << 8 | static_cast<uint32_t>(c >= 'a' ? c - 'a' + 'A' : c);
  }
  return code << 8 | ' ';
}

Track NumbersOf(size_t index) {
  const SampleSong &song = SampleSongs().at(index);
  Track track;
  track.id = TrackId(index);
  track.res = {1, TypeCode(song), song.compilation ? 0x10000U : 0U,
               static_cast<uint32_t>(song.added + kFrom1904To1970)};
  track.filesize = static_cast<uint32_t>(PlaceholderFile(song).size());
  track.duration = song.duration;
  track.number = song.number;
  track.total = song.total;
  track.year = song.year;
  track.bitrate = song.bitrate;
  track.samplerate = song.rate << 16;
  track.moviefileflag = song.mediaType == 2 ? 1 : 0;
  track.mediaType = song.mediaType;
  return track;
}

SongTexts TextsOf(const SampleSong &song, std::u16string_view folder) {
  const auto text = [](std::u16string_view view) { return std::u16string(view); };
  return {text(song.title), Path(song, folder),  text(song.album),   text(song.artist),
          text(song.genre), text(song.filetype), text(song.composer)};
}

std::vector<Track> Tracks(Variant variant) {
  const bool little = variant == Variant::LittleEndian;
  std::vector<Track> tracks;
  for (size_t i = 0; i < SampleSongs().size(); ++i) {
    const SampleSong &song = SampleSongs()[i];
    Track track = NumbersOf(i);
    track.objects =
        SongObjects(variant, TextsOf(song, little ? u":iPod_Control:Music:" : u"Sample Disk:Music:"));
    for (const ExtraText &extra : song.extra) {
      track.objects.push_back(TextObject(extra.type, std::u16string(extra.text)));
    }
    if (little && !song.enclosure.empty())
      track.objects.push_back(RawObject(15, std::string(song.enclosure)));
    tracks.push_back(std::move(track));
  }
  return tracks;
}

std::vector<Playlist> Playlists(Variant variant) {
  std::vector<Playlist> lists;
  for (const SamplePlaylist &sample : SamplePlaylists()) {
    Playlist list;
    list.name = std::u16string(sample.name);
    list.master = lists.empty();
    list.typeII = lists.empty() ? 5 : 1;
    for (const size_t song : sample.songs) {
      const auto position = static_cast<uint32_t>(list.entries.size() + 1);
      list.entries.push_back({.ref = TrackId(song), .objects = {PositionObject(variant, position)}});
    }
    lists.push_back(std::move(list));
  }
  return lists;
}

// The album list of newer players: one album chunk for each pair of album and artist.
std::string AlbumChunks() {
  std::map<std::pair<std::u16string_view, std::u16string_view>, uint32_t> albums;
  for (const SampleSong &song : SampleSongs()) {
    if (!song.album.empty()) albums.try_emplace({song.album, song.artist}, 0);
  }
  ChunkWriter out(Variant::LittleEndian);
  out.PutWord(out.Begin("mhla", 0x5c) + 8, static_cast<uint32_t>(albums.size()));
  uint32_t id = 1;
  for (const auto &[names, unused] : albums) {
    const size_t album = out.Begin("mhia", 0x58, names.second.empty() ? 1 : 2);
    out.PutWord(album + 0x10, id++);
    AppendObject(out, TextObject(200, std::u16string(names.first)));
    if (!names.second.empty()) AppendObject(out, TextObject(201, std::u16string(names.second)));
    out.Finish(album);
  }
  return out.TakeBytes();
}

void InMacRomanWherePossible(std::vector<DataObject> &objects) {
  for (DataObject &object : objects) {
    if (object.form != DataObject::Form::Utf16) continue;
    if (auto bytes = InMacRoman(object.text)) object = EightBitObject(object.type, std::move(*bytes));
  }
}

}  // namespace

std::string PlaceholderFile(const SampleSong &song) {
  std::string bytes = "Placeholder for " + std::string(song.file) + '\n';
  Random random(song.duration);
  for (uint32_t left = song.duration / 100; left > 0; --left) {
    bytes += static_cast<char>(random.Below(256));
  }
  return bytes;
}

std::string SamplePlayerDatabase() {
  constexpr Variant kVariant = Variant::LittleEndian;
  Library library;
  library.sets.push_back({.type = 4, .content = AlbumChunks()});
  library.sets.push_back({.type = 1, .content = Tracks(kVariant)});
  library.sets.push_back({.type = 3, .content = Playlists(kVariant)});
  library.sets.push_back({.type = 2, .content = Playlists(kVariant)});
  return WriteLibrary(library, kVariant);
}

std::string SampleDesktopLibrary() {
  constexpr Variant kVariant = Variant::BigEndian;
  std::vector<Track> tracks = Tracks(kVariant);
  for (Track &track : tracks) InMacRomanWherePossible(track.objects);
  std::vector<Playlist> lists = Playlists(kVariant);
  for (Playlist &list : lists) {
    auto bytes = InMacRoman(*list.name);
    if (!bytes) continue;
    list.name.reset();
    list.objects = {EightBitObject(100, std::move(*bytes))};
  }
  return WriteLibrary(OrdinaryLibrary(std::move(tracks), std::move(lists)), kVariant);
}

}  // namespace samples
