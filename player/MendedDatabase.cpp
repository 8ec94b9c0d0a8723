#include "player/MendedDatabase.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "player/Fields.h"
#include "player/FileWord.h"

namespace player {

namespace {

using Take = std::function<void(std::string_view)>;

// The headers that a mended file gets of its own, and where things stand in these.
struct Form {
  const char *file, *set, *songs, *lists, *list, *entry;  // tags
  uint32_t fileHeader, listHeader;
  uint32_t setsAt;  // where the file's header has the number of data sets
};
constexpr Form kPlayerForm = {"mhbd", "mhsd", "mhlt", "mhlp", "mhyp", "mhip", 0x68, 0x6c, 0x14};
constexpr Form kDesktopForm = {"hdfm", "hdsm", "htlm", "hplm", "hpim", "hptm", 0x84, 0x200, 0x30};
constexpr uint32_t kSetHeader = 0x60, kListsHeader = 0x5c, kEntryHeader = 0x4c;
constexpr uint32_t kShownSet = 2, kGroupedSet = 3;
constexpr uint32_t kHeaderOfText = 0x28;

void putWord(std::string &bytes, size_t at, uint64_t value, bool bigEndian) {
  for (size_t i = 0; i < 4; ++i)
    bytes[at + (bigEndian ? 3 - i : i)] = static_cast<char>(value >> (8 * i) & 0xFF);
}

// Writes one file, whose parts are measured before they are written.
class Writer {
 public:
  Writer(std::string_view bytes, const Salvage &from, const Take &take)
      : bytes_(bytes), from_(from), form_(from.bigEndian ? kDesktopForm : kPlayerForm), take_(take) {}

  void file(uint64_t content, uint64_t sets) const {
    std::string header = from_.fileHeader != 0 ? std::string(bytes_.substr(0, from_.fileHeader))
                                               : made(form_.file, form_.fileHeader, 0, 0);
    put(header, 8, header.size() + content);
    if (header.size() >= form_.setsAt + 4) put(header, form_.setsAt, sets);
    take_(header);
  }

  static uint64_t setSize(uint64_t content) { return kSetHeader + kListsHeader + content; }

  void set(uint32_t type, uint64_t content, uint64_t records) const {
    take_(made(form_.set, kSetHeader, setSize(content), type));
    take_(made(type == 1 ? form_.songs : form_.lists, kListsHeader, records, 0));
  }

  void song(const SalvagedRecord &song) const { record(song, song.size); }

  // Older programs write an entry's objects behind the length that it states.
  void entry(const SalvagedRecord &entry) const {
    record(entry, word(entry.at + 8) == entry.header ? entry.header : entry.size);
  }

  void list(const SalvagedList &list, uint64_t size, uint64_t entries) const {
    std::string header(bytes_.substr(static_cast<size_t>(list.at), list.header));
    put(header, 8, size);
    put(header, 0x0c, list.objects);
    put(header, 0x10, entries);
    take_(header);
    objects(list);
  }

  uint64_t madeLibrarySize() const { return form_.listHeader + from_.songs.size() * kEntryHeader; }

  void madeLibrary() const {
    std::string header = made(form_.list, form_.listHeader, madeLibrarySize(), 0);
    put(header, 0x10, from_.songs.size());
    header[from_.bigEndian ? 0x16 : 0x14] = 1;
    take_(header);
    for (const SalvagedRecord &song : from_.songs) {
      std::string entry = made(form_.entry, kEntryHeader, kEntryHeader, 0);
      put(entry, 0x18, word(song.at + 0x10));
      take_(entry);
    }
  }

 private:
  uint32_t word(uint64_t at) const { return wordAt(bytes_, static_cast<size_t>(at), from_.bigEndian); }
  void put(std::string &bytes, size_t at, uint64_t value) const {
    putWord(bytes, at, value, from_.bigEndian);
  }

  std::string made(const char *tag, uint32_t header, uint64_t length, uint64_t count) const {
    std::string bytes(tag);
    bytes.resize(header, '\0');
    put(bytes, 4, header);
    put(bytes, 8, length);
    put(bytes, 12, count);
    return bytes;
  }

  void record(const SalvagedRecord &record, uint64_t length) const {
    std::string header(bytes_.substr(static_cast<size_t>(record.at), record.header));
    put(header, 8, length);
    put(header, 0x0c, record.objects);
    take_(header);
    objects(record);
  }

  void objects(const SalvagedRecord &record) const {
    for (size_t i = record.firstSpan; i < record.firstSpan + record.spans; ++i) {
      const Span &span = from_.spans[i];
      take_(bytes_.substr(static_cast<size_t>(span.at), static_cast<size_t>(span.size)));
    }
  }

  std::string_view bytes_;
  const Salvage &from_;
  const Form &form_;
  const Take &take_;
};

}  // namespace

MendedDatabase::MendedDatabase(std::string_view bytes, Salvage salvaged)
    : bytes_(bytes), salvaged_(std::move(salvaged)) {
  chooseLists();
}

// The heading of a group of podcasts, in lists that have such.
bool MendedDatabase::isHeading(const SalvagedRecord &entry) const {
  return !salvaged_.bigEndian && bytes_[static_cast<size_t>(entry.at) + 0x11] == 1;
}

uint64_t MendedDatabase::entriesOf(const SalvagedList &list) const {
  const auto first = salvaged_.entries.begin() + static_cast<ptrdiff_t>(list.firstEntry);
  return static_cast<uint64_t>(
      std::count_if(first, first + static_cast<ptrdiff_t>(list.entries),
                    [this](const SalvagedRecord &entry) { return !isHeading(entry); }));
}

uint64_t MendedDatabase::entries() const {
  uint64_t entries = 0;
  for (const SalvagedList &list : lists_) entries += entriesOf(list);
  return entries;
}

// What tells a list from others of its set: its persistent ID, else its name; empty when it has neither.
std::string MendedDatabase::keyOf(const SalvagedList &list) const {
  const bool big = salvaged_.bigEndian;
  const auto at = static_cast<size_t>(list.at);
  const Fields header(bytes_.substr(at, list.header), big);
  const auto id = header.twoWords(big ? 0x1b8 : 0x1c);
  if (id && *id != 0) return std::to_string(*id);
  for (size_t i = list.firstSpan; i < list.firstSpan + list.spans; ++i) {
    const Span &span = salvaged_.spans[i];
    uint64_t length = 0;
    for (uint64_t place = span.at; place < span.at + span.size; place += length) {
      length = wordAt(bytes_, static_cast<size_t>(place) + 8, big);
      if (wordAt(bytes_, static_cast<size_t>(place) + 12, big) != (big ? 100U : 1U)) continue;
      if (length <= kHeaderOfText) continue;
      const size_t size = static_cast<size_t>(length) - kHeaderOfText;
      return "name " + std::string(bytes_.substr(static_cast<size_t>(place) + kHeaderOfText, size));
    }
  }
  return {};
}

// A player's file holds its lists twice, so one that is lost in the set that is shown may stand in the other,
// and one that lost entries may have them there.
void MendedDatabase::chooseLists() {
  std::map<std::string, size_t> places;
  const auto place = [&](const SalvagedList &list) {
    std::string key = keyOf(list);
    if (!key.empty()) places.try_emplace(std::move(key), lists_.size());
    lists_.push_back(list);
  };
  for (const SalvagedList &list : salvaged_.lists) {
    if (list.set == kShownSet) place(list);
    const Fields header(bytes_.substr(static_cast<size_t>(list.at), list.header));
    if (!salvaged_.bigEndian && list.set == kGroupedSet && header.byte(0x2a).value_or(0) != 0)
      grouped_.push_back(list);
  }
  const bool isShort = salvaged_.announcedLists == 0 || lists_.size() < salvaged_.announcedLists;
  for (const SalvagedList &list : salvaged_.lists) {
    if (list.set != kGroupedSet && list.set != 0) continue;
    // The lists of the player's categories, which people do not see, have rules alone.
    const Fields header(bytes_.substr(static_cast<size_t>(list.at), list.header));
    if (!salvaged_.bigEndian && header.half(0x50).value_or(0) != 0 && list.entries == 0) continue;
    const std::string key = keyOf(list);
    const auto same = places.find(key);
    if (same == places.end()) {
      if (isShort && !key.empty()) place(list);
      continue;
    }
    SalvagedList &shown = lists_[same->second];
    if (shown.entries < shown.announced && entriesOf(list) > entriesOf(shown)) shown = list;
  }
  std::stable_partition(lists_.begin(), lists_.end(),
                        [](const SalvagedList &list) { return list.isLibrary; });
}

void MendedDatabase::write(const Take &take) const {
  const Writer writer(bytes_, salvaged_, take);
  const bool hasLibrary = !lists_.empty() && lists_.front().isLibrary;
  // Headings stand in grouped lists alone.
  const auto eachEntry = [this](const SalvagedList &list, bool isGrouped, const auto &step) {
    for (size_t i = list.firstEntry; i < list.firstEntry + list.entries; ++i) {
      if (isGrouped || !isHeading(salvaged_.entries[i])) step(salvaged_.entries[i]);
    }
  };
  const auto listSize = [&](const SalvagedList &list, bool isGrouped) {
    uint64_t size = list.size;
    eachEntry(list, isGrouped, [&size](const SalvagedRecord &entry) { size += entry.size; });
    return size;
  };
  const auto setOf = [&](const std::vector<SalvagedList> &lists, bool isGrouped, uint64_t more) {
    uint64_t size = more;
    for (const SalvagedList &list : lists) size += listSize(list, isGrouped);
    return size;
  };
  uint64_t songs = 0;
  for (const SalvagedRecord &song : salvaged_.songs) songs += song.size;
  const uint64_t shown = setOf(lists_, false, hasLibrary ? 0 : writer.madeLibrarySize());
  const uint64_t grouped = setOf(grouped_, true, 0);
  uint64_t content = Writer::setSize(songs) + Writer::setSize(shown);
  if (!grouped_.empty()) content += Writer::setSize(grouped);

  const auto writeLists = [&](const std::vector<SalvagedList> &lists, bool isGrouped) {
    for (const SalvagedList &list : lists) {
      writer.list(list, listSize(list, isGrouped), isGrouped ? list.entries : entriesOf(list));
      eachEntry(list, isGrouped, [&](const SalvagedRecord &entry) { writer.entry(entry); });
    }
  };
  writer.file(content, grouped_.empty() ? 2 : 3);
  writer.set(1, songs, salvaged_.songs.size());
  for (const SalvagedRecord &song : salvaged_.songs) writer.song(song);
  writer.set(kShownSet, shown, lists_.size() + (hasLibrary ? 0 : 1));
  if (!hasLibrary) writer.madeLibrary();
  writeLists(lists_, false);
  if (grouped_.empty()) return;
  writer.set(kGroupedSet, grouped, grouped_.size());
  writeLists(grouped_, true);
}

}  // namespace player
