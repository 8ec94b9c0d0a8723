#include "zemhost/library/ClassSource.h"

#include <system_error>
#include <utility>

#include "host/Error.h"
#include "host/runtime/MacPaths.h"
#include "player/Device.h"
#include "zemhost/library/ClassWords.h"
#include "zemhost/library/StoredText.h"

namespace zemhost {

namespace {

// With this result encoding the class hands out every text but the path without converting it.
constexpr uint32_t kTextsAsStored = kUtf16;
// And with this one the path.
constexpr uint32_t kPathsAsStored = kAscii;

// Numbered texts that hold an Internet address.
constexpr int32_t kEnclosureUrl = 15;
constexpr int32_t kFeedUrl = 16;

uint32_t number(const Method &method, int32_t index) {
  return static_cast<uint32_t>(method(index).integer());
}

}  // namespace

ClassSource::TextMethods::TextMethods(const Object &object, const std::string &name)
    : text(object.method("Get" + name + "(index As Integer) As String")),
      encode(object.method("Get" + name + "Encode(index As Integer) As Integer")) {}

std::string ClassSource::TextMethods::read(int32_t index, int32_t libType, size_t *lost) const {
  const Value stored = text(index);
  if (stored.isNil()) return {};
  return songText(stored.bytes(), static_cast<uint32_t>(encode(index).integer()), libType, lost);
}

ClassSource::ClassSource(OpenDatabase database) : database_(std::move(database)) {
  database_.object.set("ResultEncode", kTextsAsStored);
}

Method ClassSource::numberMethod(const std::string &name) const {
  return database_.object.method(name + "(index As Integer) As Integer");
}

Method ClassSource::compareMethod(const std::string &name) const {
  return database_.object.method("Compare" + name + "(IndexA As Integer, IndexB As Integer) As Boolean");
}

// What a step gives that reads the file; a failure names the file.
template <typename Step>
auto ClassSource::read(const Step &step) const {
  try {
    return step();
  } catch (const std::system_error &error) {
    throw HostError(database_.location.name + ": " + error.code().message());
  }
}

// A song stands at the same place in the class's list and in the file. Where other IDs show that it does not,
// as may be in a damaged file, nothing more is known of it.
void ClassSource::addFacts(int32_t index, Song &song) const {
  const auto place = static_cast<size_t>(index);
  const player::PlayerSongs &songs = *database_.songs;
  if (place >= songs.count()) return;
  const player::SongFacts facts = read([&] { return songs.facts(place); });
  if (facts.id != static_cast<uint32_t>(*song.id)) return;
  song.facts = facts;
  if (const player::PlayCount *counted = songs.counted(place)) song.sinceSync = *counted;
  if (auto path = read([&] { return songs.path(place); })) song.path = *std::move(path);
}

Song ClassSource::song(int32_t index) const {
  Song song;
  song.id = id_(index).integer();
  const auto read = [&](const TextMethods &methods, const char *name) {
    size_t lost = 0;
    std::string text = methods.read(index, libType_, &lost);
    if (lost > 0) song.lossyTexts.emplace_back(name);
    return text;
  };
  song.title = read(title_, "title");
  song.artist = read(artist_, "artist");
  song.album = read(album_, "album");
  song.genre = read(genre_, "genre");
  song.composer = read(composer_, "composer");
  song.fileType = read(fileType_, "file type");
  song.track = number(track_, index);
  song.trackTotal = number(trackTotal_, index);
  song.duration = duration(index);
  song.size = size(index);
  song.year = number(year_, index);
  song.bitRate = rateWord(bitRate_(index).integer(), libType_);
  song.sampleRate = sampleRateHertz(rateWord(sampleRate_(index).integer(), libType_));
  song.modified = number(modified_, index);
  addFacts(index, song);
  if (song.path.empty()) song.path = answeredPath(index);
  return song;
}

std::string ClassSource::answeredPath(int32_t index) const {
  database_.object.set("ResultEncode", kPathsAsStored);
  std::string path = pathText(path_(index).bytes(), libType_);
  database_.object.set("ResultEncode", kTextsAsStored);
  return path;
}

std::string ClassSource::volumeName() const {
  const bool isOnPlayer = form() == LibraryForm::Player && !location().volumeRoot.empty();
  return isOnPlayer ? zemhost::volumeName(location().volumeRoot) : database_.object.get("VolumeName").text();
}

uint32_t ClassSource::duration(int32_t index) const { return number(duration_, index); }
uint32_t ClassSource::size(int32_t index) const { return number(size_, index); }

std::optional<std::string> ClassSource::numberedText(int32_t index, int32_t number) const {
  const Value text = numberedText_(index, number);
  if (text.isNil()) return std::nullopt;
  return number == kEnclosureUrl || number == kFeedUrl ? addressText(text.bytes()) : otherText(text.bytes());
}

std::vector<player::SongText> ClassSource::textsInFile(int32_t index) const {
  const auto place = static_cast<size_t>(index);
  const player::PlayerSongs &songs = *database_.songs;
  return place < songs.count() ? read([&] { return songs.texts(place); }) : std::vector<player::SongText>();
}

const ClassSource::TextMethods &ClassSource::methodsOf(SongTextField field) const {
  switch (field) {
    case SongTextField::Title:
      return title_;
    case SongTextField::Artist:
      return artist_;
    case SongTextField::Album:
      return album_;
    case SongTextField::Genre:
      return genre_;
    case SongTextField::Composer:
      break;
  }
  return composer_;
}

std::string ClassSource::text(SongTextField field, int32_t index) const {
  return methodsOf(field).read(index, libType_);
}

std::string ClassSource::storedText(SongTextField field, int32_t index) const {
  const Value text = methodsOf(field).text(index);
  return std::string(text.bytes());
}

bool ClassSource::isSame(SongTextField by, int32_t one, int32_t other) const {
  switch (by) {
    case SongTextField::Title:
      return storedText(by, one) == storedText(by, other);  // the class has no method for it
    case SongTextField::Artist:
      return sameArtist_(one, other).boolean();
    case SongTextField::Album:
      return sameAlbum_(one, other).boolean();
    case SongTextField::Genre:
      return sameGenre_(one, other).boolean();
    case SongTextField::Composer:
      break;
  }
  return sameComposer_(one, other).boolean();
}

std::vector<player::Chapter> ClassSource::chapters(int32_t index) const {
  const auto place = static_cast<size_t>(index);
  const player::PlayerSongs &songs = *database_.songs;
  return place < songs.count() ? read([&] { return songs.chapters(place); }) : std::vector<player::Chapter>();
}

player::SongFacts ClassSource::storedFacts(int32_t index) const {
  const auto place = static_cast<size_t>(index);
  const player::PlayerSongs &songs = *database_.songs;
  return place < songs.count() ? read([&] { return songs.storedFacts(place); }) : player::SongFacts();
}

const player::OnTheGoList *ClassSource::onTheGo(int32_t playlist) const {
  const std::vector<player::OnTheGoList> &lists = database_.lists->onTheGo();
  const auto place = static_cast<size_t>(playlist - storedLists_);
  return playlist >= storedLists_ && place < lists.size() ? &lists[place] : nullptr;
}

std::optional<size_t> ClassSource::placeInFile(int32_t playlist) const {
  const auto place = static_cast<size_t>(playlist);
  const size_t stored = database_.lists->stored().count();
  return stored == static_cast<size_t>(storedLists_) && place < stored ? std::optional(place) : std::nullopt;
}

int32_t ClassSource::playlistCount() const {
  return storedLists_ + static_cast<int32_t>(database_.lists->onTheGo().size());
}

player::PlaylistFacts ClassSource::playlistFacts(int32_t playlist) const {
  player::PlaylistFacts facts;
  if (onTheGo(playlist) != nullptr) {
    facts.kind = player::PlaylistKind::OnTheGo;
  } else if (const auto place = placeInFile(playlist)) {
    facts = read([&] { return database_.lists->stored().facts(*place); });
  } else if (playlist == 0) {
    facts.kind = player::PlaylistKind::Library;
  }
  return facts;
}

int32_t ClassSource::entryCount(int32_t playlist) const {
  const player::OnTheGoList *const list = onTheGo(playlist);
  return list != nullptr ? static_cast<int32_t>(list->songs.size()) : entryCount_(playlist).integer();
}

std::optional<std::vector<uint32_t>> ClassSource::idsInFile(int32_t playlist) const {
  const auto place = placeInFile(playlist);
  if (!place) return std::nullopt;
  return read([&] { return database_.lists->stored().songIds(*place); });
}

std::vector<player::PodcastGroup> ClassSource::podcastGroups(int32_t playlist) const {
  const auto place = placeInFile(playlist);
  return place ? read([&] { return database_.lists->stored().podcastGroups(*place); })
               : std::vector<player::PodcastGroup>();
}

std::optional<int32_t> ClassSource::syncZone() const {
  return read([&] { return player::syncZoneOf(database_.content.number()); });
}

std::string ClassSource::playlistName(int32_t playlist, size_t *lost) const {
  if (const player::OnTheGoList *const list = onTheGo(playlist)) return list->name();
  const Value name = playlistName_(playlist);
  if (name.isNil()) return {};
  const auto code = static_cast<uint32_t>(playlistEncode_(playlist).integer());
  return playlistNameText(name.bytes(), code, libType_, lost);
}

std::optional<int32_t> ClassSource::trackID(int32_t playlist, int32_t position) const {
  if (const player::OnTheGoList *const list = onTheGo(playlist)) {
    const auto place = static_cast<size_t>(position);
    if (place >= list->songs.size()) return std::nullopt;
    return id_(static_cast<int32_t>(list->songs[place])).integer();
  }
  return entryTrackID_(playlist, position).integer();
}

PlaylistEntry ClassSource::entry(int32_t playlist, int32_t position) const {
  PlaylistEntry entry;
  entry.trackID = trackID(playlist, position);
  if (!entry.trackID) return entry;
  entry.id = std::to_string(*entry.trackID);
  if (const player::OnTheGoList *const list = onTheGo(playlist)) {
    entry.song = static_cast<int32_t>(list->songs[static_cast<size_t>(position)]);
    return entry;
  }
  const int32_t song = entrySong_(playlist, position).integer();
  if (song < songCount() && id_(song).integer() == *entry.trackID) entry.song = song;
  return entry;
}

}  // namespace zemhost
