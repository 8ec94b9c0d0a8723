#include "samples/SampleLibrary.h"

#include <map>
#include <optional>
#include <utility>

#include "samples/GeneratedLibrary.h"
#include "samples/SampleCovers.h"
#include "samples/SmartObjects.h"

namespace samples {

namespace {

constexpr int64_t kFrom1904To1970 = 2082844800;  // seconds

uint32_t Since1904(int64_t unixTime) {
  return unixTime == 0 ? 0 : static_cast<uint32_t>(unixTime + kFrom1904To1970);
}

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

std::map<uint32_t, uint32_t> PlayerWords(size_t index) {
  const SampleSong &song = SampleSongs().at(index);
  const SampleFacts facts = SampleFactsOf(index);
  const uint64_t id = SamplePersistentId(index);
  const bool isSpoken = song.mediaType == 4 || song.mediaType == 8;
  const uint32_t video = song.mediaType == 2 ? 1 : 0;
  const uint32_t picture = SampleHasCover(index) ? 1 : 2;
  return {{0x50, facts.plays},
          {0x54, facts.plays},
          {0x58, Since1904(facts.lastPlayed)},
          {0x5c, facts.disc},
          {0x60, facts.discs},
          {0x68, Since1904(song.added)},
          {0x6c, facts.bookmark},
          {0x70, static_cast<uint32_t>(id)},
          {0x74, static_cast<uint32_t>(id >> 32)},
          {0x78, uint32_t{facts.bpm} << 16},
          {0x90, uint32_t{facts.explicitMark} << 16},
          {0x98, facts.skips},
          {0x9c, facts.skips},
          {0xa0, Since1904(facts.lastSkipped)},
          {0xa4, (isSpoken ? 0x10100U : 0U) | picture},  // not in shuffle, goes on where it stopped
          {0xb0, video << 8 | uint32_t{facts.heardMark} << 16},
          {0x160, SampleImageId(index)}};
}

std::map<uint32_t, uint32_t> DesktopWords(size_t index) {
  const SampleFacts facts = SampleFactsOf(index);
  const uint64_t id = SamplePersistentId(index);
  return {{0x4c, facts.plays},
          {0x60, facts.plays},
          {0x64, Since1904(facts.lastPlayed)},
          {0x6c, uint32_t{facts.rating} << 24},
          {0x78, Since1904(SampleSongs().at(index).added)},
          {0x80, static_cast<uint32_t>(id >> 32)},
          {0x84, static_cast<uint32_t>(id)},
          {0xa4, uint32_t{facts.bpm} << 16}};
}

Track NumbersOf(size_t index, Variant variant) {
  const SampleSong &song = SampleSongs().at(index);
  Track track;
  const bool little = variant == Variant::LittleEndian;
  const SampleFacts facts = SampleFactsOf(index);
  track.id = TrackId(index);
  track.res = {1, TypeCode(song), song.compilation ? 0x10000U : 0U,
               Since1904(song.added - facts.changedBefore)};
  if (little) track.res[2] |= uint32_t{facts.rating} << 24;
  track.words = little ? PlayerWords(index) : DesktopWords(index);
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
    Track track = NumbersOf(i, variant);
    track.objects =
        SongObjects(variant, TextsOf(song, little ? u":iPod_Control:Music:" : u"Sample Disk:Music:"));
    for (const ExtraText &extra : song.extra) {
      track.objects.push_back(TextObject(extra.type, std::u16string(extra.text)));
    }
    if (little && !song.enclosure.empty())
      track.objects.push_back(RawObject(15, std::string(song.enclosure)));
    const std::vector<ChapterMark> chapters = SampleChaptersOf(song);
    if (little && !chapters.empty()) track.objects.push_back(ChapterObject(chapters));
    tracks.push_back(std::move(track));
  }
  return tracks;
}

std::map<uint32_t, uint32_t> ListWords(const SamplePlaylist &sample, size_t place, Variant variant) {
  const uint64_t id = Random(place + 9000).Next() | 1;
  const auto low = static_cast<uint32_t>(id);
  const auto high = static_cast<uint32_t>(id >> 32);
  if (variant == Variant::BigEndian) return {{0x1c, Since1904(sample.created)}, {0x1b8, high}, {0x1bc, low}};
  return {{0x18, Since1904(sample.created)},
          {0x1c, low},
          {0x20, high},
          {0x28, sample.podcasts ? 0x10000U : 0U},
          {0x58, Since1904(sample.changed)}};
}

// The same entries under a heading for each album, as the third data set has them.
std::vector<Entry> UnderHeadings(const SamplePlaylist &sample) {
  constexpr uint32_t kFirstHeading = 1000;
  std::vector<Entry> entries;
  std::u16string_view album;
  uint32_t heading = kFirstHeading;
  for (const size_t song : sample.songs) {
    const std::u16string_view name = SampleSongs().at(song).album;
    if (name != album) {
      album = name;
      entries.push_back(
          {.ply = 0x100, .objects = {TextObject(1, std::u16string(name))}, .words = {{0x14, ++heading}}});
    }
    const auto position = static_cast<uint32_t>(entries.size() + 1);
    entries.push_back({.ref = TrackId(song),
                       .objects = {PositionObject(Variant::LittleEndian, position)},
                       .words = {{0x20, heading}}});
  }
  return entries;
}

std::vector<Playlist> Playlists(Variant variant, bool grouped = false) {
  std::vector<Playlist> lists;
  for (const SamplePlaylist &sample : SamplePlaylists()) {
    Playlist list;
    list.name = std::u16string(sample.name);
    list.master = lists.empty();
    list.typeII = sample.order;
    list.words = ListWords(sample, lists.size(), variant);
    if (sample.smart) list.objects = SampleRules(variant);
    if (grouped && sample.podcasts) list.entries = UnderHeadings(sample);
    for (const size_t song : sample.songs) {
      if (grouped && sample.podcasts) break;
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

std::string SamplePlayCounts() {
  constexpr uint32_t kHeader = 0x60;
  constexpr uint32_t kEntry = 0x1c;
  ChunkWriter out(Variant::LittleEndian);
  const auto count = static_cast<uint32_t>(SampleSongs().size());
  out.PutWord(out.Begin("mhdp", kHeader, count) + 8, kEntry);
  for (uint32_t song = 0; song < count; ++song) {
    const SampleFacts facts = SampleFactsOf(song);
    out.AppendWord(facts.newPlays);
    out.AppendWord(Since1904(facts.newPlays != 0 ? facts.newLastPlayed : facts.lastPlayed));
    out.AppendWord(facts.bookmark);
    out.AppendWord(facts.newRating != 0 ? facts.newRating : facts.rating);
    out.AppendWord(uint32_t{facts.heardMark} << 8);
    out.AppendWord(facts.newSkips);
    out.AppendWord(Since1904(facts.newSkips != 0 ? facts.newLastSkipped : facts.lastSkipped));
  }
  return out.TakeBytes();
}

std::vector<DataObject> SampleRules(Variant variant) {
  constexpr uint32_t kRating = 0x19;
  constexpr uint32_t kPlays = 0x16;
  constexpr uint32_t kAtLeast = 0x20;
  constexpr uint32_t kGreater = 0x10;
  const uint32_t order = variant == Variant::LittleEndian ? 0x15 : 0x19;
  return SmartObjects(variant, {.limited = true, .order = order, .limit = 6},
                      {{.field = kRating, .action = kAtLeast, .from = {.value = 80}, .to = {.value = 80}},
                       {.field = kPlays, .action = kGreater, .from = {.value = 10}, .to = {.value = 10}}});
}

std::string SampleOnTheGo() { return OnTheGoFile({4, 22, 0}); }

std::string SampleSysInfo() {
  return "BoardHwName: iPod\npszSerialNumber: XX000000SZ9\nModelNumStr: MA002\n"
         "FirewireGuid: 0x000A270000000001\nHddFirmwareRev: BAH1C04Q\nRegionCode: LL(0x0001)\n"
         "buildID: 0x01218000 (1.2.1)\nvisibleBuildID: 0x01218000 (1.2.1)\niPodFamily: 0x00000006\n";
}

std::string SampleDeviceInfo() { return DeviceInfoFile({u"Sample Player", u"sample", u"desk"}); }

std::string SamplePlayerDatabase() {
  constexpr Variant kVariant = Variant::LittleEndian;
  Library library;
  library.words = {{0x6c, 2 * 3600}};  // the zone of the computer
  library.sets.push_back({.type = 4, .content = AlbumChunks()});
  library.sets.push_back({.type = 1, .content = Tracks(kVariant)});
  library.sets.push_back({.type = 3, .content = Playlists(kVariant, true)});
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
    list.objects.insert(list.objects.begin(), EightBitObject(100, std::move(*bytes)));
  }
  return WriteLibrary(OrdinaryLibrary(std::move(tracks), std::move(lists)), kVariant);
}

}  // namespace samples
