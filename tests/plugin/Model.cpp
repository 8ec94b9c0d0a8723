#include "tests/plugin/Model.h"

#include <climits>
#include <cstdio>

namespace plugin_test {

using samples::DataObject;
using samples::Track;
using samples::Variant;
using support::HostText;

namespace {

constexpr uint32_t kTrackTextCode = static_cast<uint32_t>(-100);

int32_t Signed(uint32_t word) { return static_cast<int32_t>(word); }

uint32_t Reversed(uint32_t word) {
  return word >> 24 | (word >> 8 & 0xff00U) | (word << 8 & 0xff0000U) | word << 24;
}

std::string HighByteFirst(std::u16string_view text) {
  std::string bytes;
  for (const char16_t unit : text) {
    bytes += static_cast<char>(unit >> 8 & 0xff);
    bytes += static_cast<char>(unit & 0xff);
  }
  return bytes;
}

void AddEdges(std::vector<int32_t> &numbers, int32_t count) {
  for (int32_t i = -2; i <= count + 1; ++i) numbers.push_back(i);
  for (const int32_t far : {INT_MAX, INT_MAX - 1, INT_MIN, INT_MIN + 1}) numbers.push_back(far);
}

}  // namespace

Model Model::Varied(Variant variant) {
  const bool little = variant == Variant::LittleEndian;
  Track full;
  full.id = 52;
  full.res = {0x11, 0x22, 0x10033, 0x44556677};
  full.filesize = 5000001;
  full.duration = 201000;
  full.number = 5;
  full.total = 12;
  full.year = 2003;
  full.bitrate = 128;
  full.samplerate = 44100U << 16;
  full.mediaType = 1;
  full.objects = samples::SongObjects(variant, {.title = u"Nocturne No. 2",
                                                .path = little ? u":iPod_Control:Music:F00:Caf\u00e9.mp3"
                                                               : u"iPod:iPod_Control:Music:F00:A.mp3",
                                                .album = u"Night",
                                                .artist = u"Ren\u00e9e",
                                                .genre = u"Classical",
                                                .filetype = u"MPEG audio file",
                                                .composer = u"F. C."});
  for (const uint32_t type : {7U, 8U, 7U, 13U, 100U}) {
    full.objects.push_back(
        samples::TextObject(type, u"other " + std::u16string(1, u'a' + static_cast<char16_t>(type % 26))));
  }

  Track bare;  // nothing but an ID, which is also a library index
  bare.id = 1;
  bare.moviefileflag = 1;

  Track zero;
  zero.id = 0;
  zero.moviefileflag = 2;
  zero.number = 7;
  zero.total = 150;
  zero.objects = samples::SongObjects(
      variant, {.title = u"\u591c\u60f3\u66f2",
                .path = little ? u":iPod_Control:\u97f3\u697d:B.mp3" : u"iPod:missing:folder:B.mp3",
                .album = u"Night",
                .artist = u"Other"});

  Track twin = full;  // the ID of another song
  twin.res[2] = 0;
  twin.number = 0xfffffff0;
  twin.total = 0;
  twin.year = 0x80000000;
  twin.mediaType = 0xffffffff;
  twin.objects.push_back(samples::TextObject(3, u"fall"));
  twin.objects.push_back(samples::EightBitObject(4, "raw", 3));

  Track last;
  last.id = 0xfffffffb;
  last.moviefileflag = 1;
  last.objects = {samples::RawObject(5, "\xb6 raw genre"), samples::TextObject(12, u"F. C."),
                  samples::RawObject(50, "raw other")};

  const auto entry = [](uint32_t ref, uint32_t ply) { return samples::Entry{.ref = ref, .ply = ply}; };
  samples::Playlist all{.name = u"iPod"};
  all.master = true;
  all.entries = {entry(52, 0), entry(1, 1), entry(0, 0), entry(0xfffffffb, 0xffffffff)};
  samples::Playlist odd{.name = u"\u30d7\u30ec\u30a4\u30ea\u30b9\u30c8"};
  odd.typeII = 0xfd;
  odd.type = 0x80000001;
  odd.entries = {entry(777, 2), entry(0xfffffffb, 0), entry(52, 0), entry(52, 0x80000000), entry(1, 0)};
  const samples::Playlist nameless;

  return {variant, {full, bare, zero, twin, last}, {all, odd, nameless}};
}

std::string Model::File() const {
  return samples::WriteLibrary(samples::OrdinaryLibrary(tracks_, playlists_), variant_);
}

std::vector<int32_t> Model::Indexes() const {
  std::vector<int32_t> indexes;
  AddEdges(indexes, Songs());
  return indexes;
}

std::vector<int32_t> Model::PlaylistNumbers() const {
  std::vector<int32_t> numbers;
  AddEdges(numbers, Playlists());
  return numbers;
}

std::vector<int32_t> Model::Positions() const {
  size_t longest = 0;
  for (const samples::Playlist &list : playlists_) longest = std::max(longest, list.entries.size());
  std::vector<int32_t> positions;
  AddEdges(positions, Signed(static_cast<uint32_t>(longest)));
  return positions;
}

std::vector<int32_t> Model::TrackIDs() const {
  std::vector<int32_t> ids = Indexes();
  for (const Track &track : tracks_) ids.push_back(Signed(track.id));
  ids.push_back(777);
  return ids;
}

std::vector<Pick> Model::Picks(Family family) const {
  std::vector<Pick> picks;
  if (family == Family::Library) {
    for (const int32_t index : Indexes()) picks.push_back({family, index, 0});
  } else if (family == Family::Refer) {
    for (const int32_t id : TrackIDs()) picks.push_back({family, id, 0});
  } else {
    for (const int32_t playlist : PlaylistNumbers()) {
      for (const int32_t position : Positions()) picks.push_back({family, position, playlist});
    }
  }
  return picks;
}

const samples::Playlist *Model::List(int32_t playlist) const {
  const int64_t p = int64_t{playlist} + zeroBase;
  return p >= 0 && p < Playlists() ? &playlists_[static_cast<size_t>(p)] : nullptr;
}

const samples::Entry *Model::At(int32_t playlist, int32_t position) const {
  const samples::Playlist *list = List(playlist);
  if (list == nullptr || position < 0 || static_cast<size_t>(position) >= list->entries.size())
    return nullptr;
  return &list->entries[static_cast<size_t>(position)];
}

int32_t Model::IndexOfID(uint32_t id) const {
  for (int32_t i = 0; i < Songs(); ++i) {
    if (tracks_[static_cast<size_t>(i)].id == id) return i;
  }
  return 0;
}

const Track *Model::Song(int32_t index) const {
  return index >= 0 && index < Songs() ? &tracks_[static_cast<size_t>(index)] : nullptr;
}

int32_t Model::LibraryIndex(const Pick &pick) const {
  if (pick.family == Family::Library) return pick.index;
  if (pick.family == Family::Refer) return IndexOfID(static_cast<uint32_t>(pick.index));
  const samples::Entry *entry = At(pick.playlist, pick.index);
  return entry == nullptr ? 0 : IndexOfID(entry->ref);
}

const Track *Model::StrictSong(const Pick &pick) const {
  if (pick.family == Family::Playlist && At(pick.playlist, pick.index) == nullptr) return nullptr;
  return Song(LibraryIndex(pick));
}

const Track *Model::LooseSong(const Pick &pick) const { return Song(LibraryIndex(pick)); }

int32_t Model::Field(const Pick &pick, uint32_t Track::*field) const {
  const Track *song = StrictSong(pick);
  return song == nullptr ? 0 : Signed(song->*field);
}

int32_t Model::Rate(const Pick &pick, uint32_t Track::*field) const {
  const auto word = static_cast<uint32_t>(Field(pick, field));
  return Signed(Little() ? Reversed(word) : word);
}

int32_t Model::ID(int32_t index) const {
  const Track *song = Song(index);
  return song == nullptr ? 0 : Signed(song->id);
}

int32_t Model::Prop(int32_t index, int32_t num) const {
  const Track *song = Song(index);
  const Pick pick{Family::Library, index, 0};
  if (song == nullptr) return 0;
  if (num >= 0 && num <= 3) return Signed(song->res.at(static_cast<size_t>(num)));
  switch (num) {
    case -1:
      return Signed(song->id);
    case 4:
      return Signed(song->number);
    case 5:
      return Signed(song->total);
    case 6:
      return Signed(song->duration);
    case 7:
      return Signed(song->filesize);
    case 8:
      return Rate(pick, &Track::bitrate);
    case 9:
      return Rate(pick, &Track::samplerate);
    default:
      return 0;
  }
}

int32_t Model::UnknownCount(int32_t index) const {
  const Track *song = Song(index);
  int32_t count = 0;
  if (song == nullptr || !Little()) return 0;
  for (const DataObject &object : song->objects) {
    if ((object.type < 1 || object.type > 6) && object.type != 12) ++count;
  }
  return count;
}

int32_t Model::Compilation(const Pick &pick) const {
  return (static_cast<uint32_t>(Prop(LibraryIndex(pick), 2)) >> 16 & 1U) != 0 ? 1 : 0;
}

int32_t Model::MovieFileFlag(const Pick &pick) const {
  // The library index of every family is taken for a track ID.
  const Track *song = Song(IndexOfID(static_cast<uint32_t>(LibraryIndex(pick))));
  return song != nullptr && song->moviefileflag == 1 ? 1 : 0;
}

int32_t Model::RefNum(int32_t playlist, int32_t position) const {
  const samples::Entry *entry = At(playlist, position);
  return entry == nullptr ? 0 : Signed(entry->ref);
}

int32_t Model::EntriesOf(int32_t playlist) const {
  const samples::Playlist *list = List(playlist);
  return list == nullptr ? 0 : static_cast<int32_t>(list->entries.size());
}

int32_t Model::TypeI(int32_t playlist) const {
  const samples::Playlist *list = List(playlist);
  if (list == nullptr) return 0;
  return Signed(list->type.value_or(list->name ? 1 : 0));
}

int32_t Model::TypeII(int32_t playlist) const {
  const samples::Playlist *list = List(playlist);
  return list == nullptr ? 0 : list->typeII;
}

int32_t Model::Plays(int32_t playlist, int32_t position) const {
  const samples::Entry *entry = At(playlist, position);
  return entry == nullptr || entry->ply == 0 ? 1 : 0;
}

Model::Stored Model::Kept(const DataObject &object) const {
  if (object.form == DataObject::Form::Utf16)
    return {HighByteFirst(object.text), Little() ? 0x01000000U : 1U};
  if (object.form == DataObject::Form::Raw) return {object.bytes, 0};
  // 8-bit text of another code is kept with the four words before it.
  samples::ChunkWriter body(variant_);
  body.AppendWord(object.encodingWord);
  body.AppendWord(static_cast<uint32_t>(object.bytes.size()));
  body.AppendWord(0);
  body.AppendWord(0);
  body.AppendBytes(object.bytes);
  return {body.Bytes(), 0};
}

Model::Stored Model::Named(const Track &song, int32_t object) const {
  Stored stored;
  if (object == -100) {
    char text[50];
    const int width = song.total < 100 ? 2 : song.total < 1000 ? 3 : 4;
    if (song.total != 0) {
      std::snprintf(text, sizeof text, "%0*d/%0*d", width, Signed(song.number), width, Signed(song.total));
    } else if (song.number != 0) {
      std::snprintf(text, sizeof text, "%d", Signed(song.number));
    } else {
      return {"-", kTrackTextCode};
    }
    return {text, kTrackTextCode};
  }
  if (!Little() && object == 6) return stored;
  // Big-endian files have title and path the other way round.
  const int32_t type = Little() || object > 2 ? object : 3 - object;
  for (const DataObject &written : song.objects) {
    if (Signed(written.type) != type) continue;
    if (!Little() && object == 2) {
      const std::string &alias = written.bytes;  // the path stands at its end, after its length
      const size_t name = static_cast<uint8_t>(alias[0x22 - 0x18]);
      const size_t at = alias.find(alias.substr(0x23 - 0x18, name), 0x23 - 0x18 + name);
      const size_t length = 256U * static_cast<uint8_t>(alias[at - 2]) + static_cast<uint8_t>(alias[at - 1]);
      return {alias.substr(at, length), 1};
    }
    const Stored one = Kept(written);
    stored.bytes += one.bytes;
    stored.code = one.code;
  }
  if (Little() && object == 2) {
    std::string reduced;
    for (size_t i = 0; i + 1 < stored.bytes.size(); i += 2) {
      if (stored.bytes[i] == 0 && stored.bytes[i + 1] != 0) reduced += stored.bytes[i + 1];
    }
    stored.bytes = reduced;
  }
  return stored;
}

HostText Model::HandedOut(const Stored &stored, int32_t object) const {
  if (stored.bytes.empty()) return {};
  const bool ascii = object == 2 || stored.code == kTrackTextCode;
  const uint32_t tag = ascii ? support::kAscii : support::kUtf16;
  const uint32_t carried = stored.code == kTrackTextCode ? 0 : tag;
  if (carried == resultEncode) return support::Text(stored.bytes, tag);
  return support::Text(support::Convert(stored.bytes, tag, resultEncode), resultEncode);
}

HostText Model::TextOf(const Pick &pick, int32_t object) const {
  const Track *song = LooseSong(pick);
  return song == nullptr ? HostText{} : HandedOut(Named(*song, object), object);
}

int32_t Model::CodeOf(const Pick &pick, int32_t object) const {
  const Track *song = LooseSong(pick);
  return song == nullptr ? 0 : Signed(Named(*song, object).code);
}

HostText Model::Unknown(const Pick &pick, int32_t object) const {
  const Track *song = LooseSong(pick);
  const bool named = (object >= 1 && object <= 6) || object == 12;
  if (song == nullptr || !Little() || named) return {};
  for (const DataObject &written : song->objects) {
    if (Signed(written.type) == object) return HandedOut(Kept(written), object);
  }
  return {};
}

HostText Model::PlaylistName(int32_t playlist) const {
  const samples::Playlist *list = List(playlist);
  if (list == nullptr || !list->name) return {};
  return HandedOut({HighByteFirst(*list->name), 0}, 15);
}

int32_t Model::PlaylistCode(int32_t playlist) const {
  const samples::Playlist *list = List(playlist);
  if (list == nullptr || !list->name) return 0;
  return Little() ? 0x01000000 : 1;
}

HostText Model::WithVolume(const HostText &path) const {
  if (path.isNull || path.bytes.empty()) return {};
  return support::Text((Little() ? volume : "") + path.bytes, support::kUntagged);
}

HostText Model::AbsolutePath(const Pick &pick) const { return WithVolume(TextOf(pick, 2)); }

int32_t Model::Same(int32_t object, int32_t playlist, int32_t a, int32_t b) const {
  if (playlist >= 0) {
    a = LibraryIndex({Family::Playlist, a, playlist});
    b = LibraryIndex({Family::Playlist, b, playlist});
  }
  const Track *one = Song(a);
  const Track *other = Song(b);
  if (one == nullptr || other == nullptr) return 0;
  const auto same = [&](int32_t num) { return Named(*one, num).bytes == Named(*other, num).bytes; };
  return same(object) && (object != 3 || same(4)) ? 1 : 0;
}

}  // namespace plugin_test
