#include "player/Playlists.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "player/Chunk.h"
#include "player/FileBytes.h"
#include "player/FileWindow.h"
#include "player/RecordHeader.h"
#include "player/RecordObjects.h"

namespace player {

namespace {

constexpr size_t kLongestListHeader = 0x400;  // no file seen has one of more
constexpr size_t kHeaderOfEntry = 0x4c;

constexpr uint32_t kSettingsObject = 50;
constexpr uint32_t kCriteriaObject = 51;
constexpr uint32_t kDesktopSettings = 102;
constexpr uint32_t kDesktopCriteria = 101;
constexpr uint32_t kNameObject = 1;

std::optional<SmartRules> rulesAmong(FileWindow &file, bool bigEndian,
                                     const std::vector<StoredObject> &objects) {
  std::string settings;
  std::optional<std::string> criteria;
  for (const StoredObject &object : objects) {
    if (object.type == (bigEndian ? kDesktopSettings : kSettingsObject)) settings = bodyOf(file, object);
    if (object.type == (bigEndian ? kDesktopCriteria : kCriteriaObject)) criteria = bodyOf(file, object);
  }
  if (!criteria) return std::nullopt;
  return bigEndian ? readDesktopRules(settings, *criteria) : readSmartRules(settings, *criteria);
}

bool isOfPodcasts(const RecordHeader &header) { return header.flag(0x2a).value_or(false); }

PlaylistKind playlistKindOf(const RecordHeader &header, bool bigEndian, bool isFirst, bool isSmart) {
  // Players and desktop programs store the list of everything before all others.
  if (isFirst) return PlaylistKind::Library;
  if (!bigEndian && isOfPodcasts(header)) return PlaylistKind::Podcasts;
  if (!bigEndian && header.flag(0x2b).value_or(false)) return PlaylistKind::Folder;
  return isSmart ? PlaylistKind::Smart : PlaylistKind::Ordinary;
}

// An entry of a list, or the heading of a group of podcasts.
struct StoredEntry {
  uint64_t at = 0;
  uint32_t id = 0;
  uint32_t song = 0;
  uint32_t group = 0;  // the ID of the heading above it
  bool isHeading = false;
};

// Hands on the entries that follow a list's header and objects, to the first chunk that is neither entry nor
// object, before `end`.
template <typename Sink>
void eachEntry(int file, bool bigEndian, uint64_t list, uint64_t end, const Sink &sink) {
  FileWindow window(file);
  std::string_view head = window.at(list, kCommonHeader);
  if (head.size() < kCommonHeader) return;
  uint64_t at = list + wordAt(head, 4, bigEndian);
  while (at < end) {
    head = window.at(at, kHeaderOfEntry);
    if (head.size() < kCommonHeader) return;
    const bool isObject = head.starts_with(bigEndian ? "hohm" : "mhod");
    if (!isObject && !head.starts_with(bigEndian ? "hptm" : "mhip")) return;
    const uint32_t step = wordAt(head, isObject ? 8 : 4, bigEndian);
    if (step < kCommonHeader) return;
    if (!isObject) {
      const RecordHeader header(head, bigEndian);
      sink(StoredEntry{at, header.word(0x14).value_or(0), header.word(0x18).value_or(0),
                       header.word(0x20).value_or(0), !bigEndian && header.byte(0x11).value_or(0) == 1});
    }
    at += step;
  }
}

std::string nameOf(FileWindow &file, uint64_t record, uint64_t end) {
  for (const StoredObject &object : objectsOf(file, false, record, end)) {
    if (object.type != kNameObject) continue;
    if (auto name = textOf(file, false, object)) return std::move(*name);
  }
  return {};
}

}  // namespace

PlaylistReader::PlaylistReader(int file, const FileAccount &account)
    : file_(file), bigEndian_(account.bigEndian), lists_(account.playlistsAt), starts_(lists_) {
  starts_.insert(starts_.end(), account.groupedListsAt.begin(), account.groupedListsAt.end());
  std::sort(starts_.begin(), starts_.end());
  if (bigEndian_) return;
  std::map<std::optional<uint64_t>, uint64_t> grouped;  // by persistent ID
  const auto idOfPodcasts = [file](uint64_t at, std::optional<uint64_t> &id) {
    const std::string bytes = readAt(file, at, kLongestListHeader);
    const RecordHeader header(bytes, false);
    id = unlessZero(header.twoWords(0x1c));
    return isOfPodcasts(header);
  };
  std::optional<uint64_t> id;
  for (const uint64_t at : account.groupedListsAt) {
    if (idOfPodcasts(at, id)) grouped.try_emplace(id, at);
  }
  for (size_t list = 0; list < lists_.size() && !grouped.empty(); ++list) {
    if (!idOfPodcasts(lists_[list], id)) continue;
    const auto same = grouped.find(id);
    if (same == grouped.end()) continue;
    groupedAt_.emplace(list, same->second);
    grouped.erase(same);  // it stands for one list
  }
}

// What a list states of its length need not be true, but nothing behind the beginning of another one is its
// own.
uint64_t PlaylistReader::endOf(uint64_t at) const {
  const auto next = std::upper_bound(starts_.begin(), starts_.end(), at);
  return next == starts_.end() ? UINT64_MAX : *next;
}

PlaylistFacts PlaylistReader::facts(size_t list) const {
  const uint64_t at = lists_[list];
  const std::string bytes = readAt(file_, at, kLongestListHeader);
  const RecordHeader header(bytes, bigEndian_);
  PlaylistFacts facts;
  FileWindow window(file_);
  facts.rules = rulesAmong(window, bigEndian_, objectsOf(window, bigEndian_, at, endOf(at)));
  facts.kind = playlistKindOf(header, bigEndian_, list == 0, facts.rules.has_value());
  if (bigEndian_) {
    facts.created = header.date(0x1c);
    facts.persistentId = unlessZero(header.twoWords(0x1b8));
    return facts;
  }
  facts.created = header.date(0x18);
  facts.persistentId = unlessZero(header.twoWords(0x1c));
  facts.sortOrder = unlessZero(header.word(0x2c));
  facts.folder = unlessZero(header.twoWords(0x30));
  facts.modified = header.date(0x58);
  return facts;
}

std::vector<uint32_t> PlaylistReader::songIds(size_t list) const {
  std::vector<uint32_t> ids;
  eachEntry(file_, bigEndian_, lists_[list], endOf(lists_[list]), [&ids](const StoredEntry &entry) {
    if (!entry.isHeading) ids.push_back(entry.song);
  });
  return ids;
}

std::vector<PodcastGroup> PlaylistReader::podcastGroups(size_t list) const {
  const auto grouped = groupedAt_.find(list);
  if (grouped == groupedAt_.end()) return {};
  std::vector<PodcastGroup> groups;
  std::map<uint32_t, size_t> places;  // of the groups, by the IDs of their headings
  const auto placeOf = [&](uint32_t heading) {
    const auto [found, isNew] = places.try_emplace(heading, groups.size());
    if (isNew) groups.emplace_back();
    return found->second;
  };
  FileWindow names(file_);
  const uint64_t end = endOf(grouped->second);
  eachEntry(file_, false, grouped->second, end, [&](const StoredEntry &entry) {
    if (entry.isHeading) {
      groups[placeOf(entry.id)].name = nameOf(names, entry.at, end);
    } else {
      groups[placeOf(entry.group)].songs.push_back(entry.song);
    }
  });
  return groups;
}

}  // namespace player
