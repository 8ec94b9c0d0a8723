#include "zemhost/library/MusicLibrary.h"

#include <system_error>
#include <utility>

#include "zemhost/library/ClassWords.h"
#include "zemhost/library/StoredText.h"

namespace zemhost {

namespace {

// With this result encoding the class hands out every text but the path without converting it.
constexpr uint32_t kTextsAsStored = kUtf16;
// And with this one the path.
constexpr uint32_t kPathsAsStored = kAscii;

// A text method and its Encode method.
struct TextMethods {
  Method text;
  Method encode;

  TextMethods(const Object &object, const std::string &name)
      : text(object.method("Get" + name + "(index As Integer) As String")),
        encode(object.method("Get" + name + "Encode(index As Integer) As Integer")) {}

  std::string read(int32_t index, int32_t libType, size_t *lost = nullptr) const {
    const Value stored = text(index);
    if (stored.isNil()) return {};
    return songText(stored.bytes(), static_cast<uint32_t>(encode(index).integer()), libType, lost);
  }
};

Method numberMethod(const Object &object, const std::string &name) {
  return object.method(name + "(index As Integer) As Integer");
}

uint32_t number(const Method &method, int32_t index) {
  return static_cast<uint32_t>(method(index).integer());
}

}  // namespace

// Every method looked up once.
struct MusicLibrary::State {
  explicit State(OpenDatabase database)
      : host(std::move(database.host)),
        location(std::move(database.location)),
        object(std::move(database.object)),
        content(std::move(database.content)),
        songs(std::move(database.songs)) {}

  // What a step gives that reads the file; a failure names the file.
  template <typename Step>
  auto read(const Step &step) const {
    try {
      return step();
    } catch (const std::system_error &error) {
      throw HostError(location.name + ": " + error.code().message());
    }
  }

  // A song stands at the same place in the class's list and in the file. Where other IDs show that it does
  // not, as may be in a damaged file, nothing more is known of it.
  void addFacts(int32_t index, Song &song) const {
    const auto place = static_cast<size_t>(index);
    if (place >= songs->count()) return;
    const player::SongFacts facts = read([&] { return songs->facts(place); });
    if (facts.id != static_cast<uint32_t>(song.id)) return;
    song.facts = facts;
    if (const player::PlayCount *counted = songs->counted(place)) song.sinceSync = *counted;
  }

  Host host;
  player::DatabaseLocation location;
  Object object;
  carbon::Descriptor content;  // which the songs are read from
  std::shared_ptr<const player::PlayerSongs> songs;
  int32_t libType = object.get("LibType").integer();
  std::unique_ptr<SongFiles> files = std::make_unique<SongFiles>(location, libType);  // remembers folders
  Covers covers{*files, !location.volumeRoot.empty() && libType != 0};

  TextMethods title{object, "Title"};
  TextMethods artist{object, "Artist"};
  TextMethods album{object, "Album"};
  TextMethods genre{object, "Genre"};
  TextMethods composer{object, "Composer"};
  TextMethods fileType{object, "FileType"};
  Method songCount = object.method("CountSongs As Integer");
  Method path = object.method("GetPath(index As Integer) As String");
  Method id = numberMethod(object, "GetID");
  Method track = numberMethod(object, "GetNumOfTrack");
  Method trackTotal = numberMethod(object, "GetTotalTrack");
  Method duration = numberMethod(object, "GetDuration");
  Method size = numberMethod(object, "GetFileSize");
  Method year = numberMethod(object, "GetYear");
  Method bitRate = numberMethod(object, "GetBitrate");
  Method sampleRate = numberMethod(object, "GetSamplerate");
  Method modified = numberMethod(object, "GetDataAdded");

  Method playlistCount = object.method("CountPlayLists As Integer");
  Method playlistName = object.method("GetPlayListName(playlist As Integer) As String");
  Method playlistEncode = object.method("GetPlayListEncode(playlist As Integer) As Integer");
  Method entryCount = object.method("CountSongsInPlayList(playlist As Integer) As Integer");
  Method entrySong = object.method("GetIndex(playlist As Integer, Index As Integer) As Integer");
  Method entryTrackID = object.method("GetRefNum(playlist As Integer, Index As Integer) As Integer");
};

void Totals::add(uint32_t songDuration, uint32_t songSize) {
  ++songs;
  duration += songDuration;
  size += songSize;
}

MusicLibrary::MusicLibrary(OpenDatabase database)
    : state_(std::make_shared<const State>(std::move(database))) {
  state_->object.set("ResultEncode", kTextsAsStored);
}

const player::DatabaseLocation &MusicLibrary::location() const { return state_->location; }
const Object &MusicLibrary::object() const { return state_->object; }
const Host &MusicLibrary::host() const { return state_->host; }
int32_t MusicLibrary::libType() const { return state_->libType; }
int32_t MusicLibrary::songCount() const { return state_->songCount().integer(); }
int32_t MusicLibrary::playlistCount() const { return state_->playlistCount().integer(); }

Song MusicLibrary::song(int32_t index) const {
  const State &my = *state_;
  Song song;
  song.id = my.id(index).integer();
  song.title = my.title.read(index, my.libType);
  song.artist = my.artist.read(index, my.libType);
  song.album = my.album.read(index, my.libType);
  song.genre = my.genre.read(index, my.libType);
  song.composer = my.composer.read(index, my.libType);
  song.fileType = my.fileType.read(index, my.libType);
  my.object.set("ResultEncode", kPathsAsStored);
  song.path = pathText(my.path(index).bytes(), my.libType);
  my.object.set("ResultEncode", kTextsAsStored);
  song.track = number(my.track, index);
  song.trackTotal = number(my.trackTotal, index);
  song.duration = duration(index);
  song.size = size(index);
  song.year = number(my.year, index);
  song.bitRate = rateWord(my.bitRate(index).integer(), my.libType);
  song.sampleRate = sampleRateHertz(rateWord(my.sampleRate(index).integer(), my.libType));
  song.modified = number(my.modified, index);
  my.addFacts(index, song);
  song.covers = &my.covers;
  return song;
}

std::vector<std::string> MusicLibrary::lossyTexts(int32_t index) const {
  const State &my = *state_;
  const std::pair<const char *, const TextMethods *> fields[] = {
      {"title", &my.title}, {"artist", &my.artist},     {"album", &my.album},
      {"genre", &my.genre}, {"composer", &my.composer}, {"file type", &my.fileType}};
  std::vector<std::string> names;
  for (const auto &[name, methods] : fields) {
    size_t lost = 0;
    methods->read(index, my.libType, &lost);
    if (lost > 0) names.emplace_back(name);
  }
  return names;
}

std::vector<player::SongText> MusicLibrary::textsInFile(int32_t index) const {
  const auto place = static_cast<size_t>(index);
  return place < state_->songs->count() ? state_->read([&] { return state_->songs->texts(place); })
                                        : std::vector<player::SongText>();
}

SongFile MusicLibrary::file(const std::string &path) const { return state_->files->find(path); }
carbon::Descriptor MusicLibrary::open(const SongFile &file) const { return state_->files->open(file); }

const Covers &MusicLibrary::covers() const { return state_->covers; }

bool MusicLibrary::hasCounts() const { return state_->songs->hasCounts(); }

uint32_t MusicLibrary::duration(int32_t index) const { return number(state_->duration, index); }
uint32_t MusicLibrary::size(int32_t index) const { return number(state_->size, index); }

std::string MusicLibrary::playlistName(int32_t playlist, size_t *lost) const {
  const State &my = *state_;
  const Value name = my.playlistName(playlist);
  if (name.isNil()) return {};
  const auto code = static_cast<uint32_t>(my.playlistEncode(playlist).integer());
  return playlistNameText(name.bytes(), code, my.libType, lost);
}

int32_t MusicLibrary::entryCount(int32_t playlist) const { return state_->entryCount(playlist).integer(); }

PlaylistEntry MusicLibrary::entry(int32_t playlist, int32_t position) const {
  PlaylistEntry entry;
  entry.trackID = state_->entryTrackID(playlist, position).integer();
  const int32_t song = state_->entrySong(playlist, position).integer();
  if (song < songCount() && state_->id(song).integer() == entry.trackID) entry.song = song;
  return entry;
}

Totals MusicLibrary::playlistTotals(int32_t playlist) const {
  Totals totals;
  const int32_t count = entryCount(playlist);
  for (int32_t position = 0; position < count; ++position) {
    const PlaylistEntry place = entry(playlist, position);
    if (place.song >= 0) totals.add(duration(place.song), size(place.song));
  }
  return totals;
}

}  // namespace zemhost
