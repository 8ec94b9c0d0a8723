#include "zemhost/library/SqliteSource.h"

#include <algorithm>
#include <utility>

#include "host/runtime/MacPaths.h"

namespace zemhost {

namespace {

template <typename Record>
const Record &at(const std::vector<Record> &records, int32_t index) {
  static const Record kNone;
  const auto place = static_cast<size_t>(index);
  return index >= 0 && place < records.size() ? records[place] : kNone;
}

player::PlaylistKind kindOf(player::SqliteListKind kind) {
  switch (kind) {
    case player::SqliteListKind::Library:
      return player::PlaylistKind::Library;
    case player::SqliteListKind::Smart:
      return player::PlaylistKind::Smart;
    case player::SqliteListKind::Folder:
      return player::PlaylistKind::Folder;
    case player::SqliteListKind::Ordinary:
      break;
  }
  return player::PlaylistKind::Ordinary;
}

player::SmartRules rulesOf(const player::SqliteList &list) {
  player::SmartRules rules;
  rules.isLive = list.isLive.value_or(true);
  rules.usesRules = list.usesRules.value_or(true);
  rules.isLimited = list.isLimited.value_or(false) && list.limit;
  rules.limitUnit = player::limitUnitOf(list.limitKind.value_or(0));
  rules.limitOrder = player::limitOrderOf(list.limitOrder.value_or(0));
  rules.limit = list.limit.value_or(0);
  rules.onlyChecked = list.onlyChecked.value_or(false);
  rules.isReversed = list.reverse.value_or(false);
  rules.groups = player::readRuleGroups(list.criteria);
  return rules;
}

}  // namespace

SqliteSource::SqliteSource(player::DatabaseLocation location,
                           std::shared_ptr<const player::SqliteLibrary> library)
    : location_(std::move(location)), library_(std::move(library)) {}

const player::SqliteSong &SqliteSource::record(int32_t index) const { return at(library_->songs(), index); }
const player::SqliteList &SqliteSource::list(int32_t playlist) const {
  return at(library_->lists(), playlist);
}

std::string SqliteSource::volumeName() const { return zemhost::volumeName(location_.volumeRoot); }

Song SqliteSource::song(int32_t index) const {
  const player::SqliteSong &record = this->record(index);
  Song song;
  song.title = record.title;
  song.artist = record.artist;
  song.album = record.album;
  song.genre = record.genre;
  song.composer = record.composer;
  song.fileType = record.kind;
  song.path = record.path;
  song.lossyTexts = record.lossyTexts;
  song.facts = record.facts;
  song.track = record.facts.track.value_or(0);
  song.trackTotal = record.facts.trackTotal.value_or(0);
  song.duration = record.facts.duration.value_or(0);
  song.size = record.facts.size.value_or(0);
  song.year = record.facts.year.value_or(0);
  song.bitRate = record.facts.bitRate.value_or(0);
  song.sampleRate = record.sampleRate.value_or(0);
  song.modified = record.facts.modified.value_or(0);
  const bool isThere = index >= 0 && index < songCount();
  const player::PlayCount *const counted = isThere ? library_->counted(static_cast<size_t>(index)) : nullptr;
  if (counted != nullptr) song.sinceSync = *counted;
  return song;
}

uint32_t SqliteSource::duration(int32_t index) const { return record(index).facts.duration.value_or(0); }
uint32_t SqliteSource::size(int32_t index) const { return record(index).facts.size.value_or(0); }

std::optional<std::string> SqliteSource::numberedText(int32_t index, int32_t number) const {
  const std::vector<player::SongText> &texts = record(index).texts;
  const auto found = std::find_if(texts.begin(), texts.end(), [number](const player::SongText &text) {
    return text.type == static_cast<uint32_t>(number);
  });
  return found == texts.end() ? std::nullopt : std::optional(found->text);
}

int32_t SqliteSource::numberedTextCount(int32_t index) const {
  return static_cast<int32_t>(record(index).texts.size());
}

std::vector<player::SongText> SqliteSource::textsInFile(int32_t index) const { return record(index).texts; }

std::string SqliteSource::storedText(SongTextField field, int32_t index) const {
  return textOf(record(index), field);
}

bool SqliteSource::isSame(SongTextField by, int32_t one, int32_t other) const {
  return storedText(by, one) == storedText(by, other);
}

std::string SqliteSource::playlistName(int32_t playlist, size_t *lost) const {
  const player::SqliteList &list = this->list(playlist);
  if (lost != nullptr) *lost += list.lost;
  return list.name;
}

player::PlaylistFacts SqliteSource::playlistFacts(int32_t playlist) const {
  const player::SqliteList &list = this->list(playlist);
  player::PlaylistFacts facts;
  facts.kind = kindOf(list.kind);
  facts.created = list.created;
  facts.modified = list.modified;
  if (list.pid != 0) facts.persistentId = static_cast<uint64_t>(list.pid);
  if (list.parent) facts.folder = static_cast<uint64_t>(*list.parent);
  if (!list.criteria.empty()) facts.rules = rulesOf(list);
  return facts;
}

int32_t SqliteSource::entryCount(int32_t playlist) const {
  return static_cast<int32_t>(list(playlist).entries.size());
}

PlaylistEntry SqliteSource::entry(int32_t playlist, int32_t position) const {
  const player::SqliteList::Entry &stored = at(list(playlist).entries, position);
  PlaylistEntry entry;
  entry.id = player::hexId(stored.pid);
  if (stored.song) entry.song = static_cast<int32_t>(*stored.song);
  return entry;
}

}  // namespace zemhost
