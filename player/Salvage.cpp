#include "player/Salvage.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/stat.h>
#include <system_error>

#include "player/Chunk.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"
#include "player/RecordObjects.h"

namespace player {

namespace {

constexpr uint32_t kLongestHeader = 0x400;  // no file seen has one of more
constexpr uint32_t kShortestSong = 0x9c;
constexpr uint32_t kShortestList = 0x18;
constexpr uint32_t kShortestListEntry = 0x1c;
constexpr uint32_t kHeaderOfText = 0x28;
constexpr uint64_t kLongestRecord = 16U << 20;  // a song or an entry, with its objects
constexpr uint32_t kUtf8Text = 2;
constexpr uint32_t kDesktopLocation = 1;  // a type whose objects are marked as texts and are none
constexpr size_t kBlock = 512;

// Types of objects that are texts on players.
bool isTextType(uint32_t type) {
  return type < 15 || (type >= 18 && type <= 31) || (type >= 33 && type <= 39) || type == 41;
}

class Scanner {
 public:
  Scanner(std::string_view bytes, bool bigEndian) : bytes_(bytes) { found_.bigEndian = bigEndian; }

  Salvage run() {
    takeFileHeader();
    while (bytes_.size() - at_ >= kListHeader) {
      if (take()) continue;
      afterGap_ = isAnyGap_ = true;
      at_ = nextTag(at_ + 1);
    }
    const auto isEmpty = [](const SalvagedList &list) {
      return list.objects == 0 && list.entries == 0 && !list.isWhole;
    };
    found_.lists.erase(std::remove_if(found_.lists.begin(), found_.lists.end(), isEmpty), found_.lists.end());
    return std::move(found_);
  }

 private:
  struct Object {
    uint64_t length = 0;
    bool isText = false;
    bool isUtf16 = false;
    bool isGood = true;  // its header fits its type
  };

  uint32_t word(uint64_t at) const { return wordAt(bytes_, static_cast<size_t>(at), found_.bigEndian); }
  bool has(uint64_t at, uint64_t size) const { return at <= bytes_.size() && size <= bytes_.size() - at; }

  // Whether the tag of a chunk of this byte order may stand here.
  bool isTagAt(uint64_t at) const {
    if (!has(at, kListHeader)) return false;
    const std::string_view tag = bytes_.substr(static_cast<size_t>(at), 4);
    return tag.starts_with(found_.bigEndian ? "h" : "mh") && isTag(tag);
  }

  uint64_t nextTag(uint64_t from) const {
    const std::string_view begin = found_.bigEndian ? "h" : "mh";
    for (auto at = static_cast<size_t>(from);; ++at) {
      at = bytes_.find(begin, at);
      if (at == std::string_view::npos) return bytes_.size();
      if (isTagAt(at)) return at;
    }
  }

  // The header at an offset that has a tag, when its length is one of a header.
  std::optional<Chunk> headerAt(uint64_t at) const {
    Chunk chunk;
    chunk.at = at;
    std::copy_n(bytes_.begin() + static_cast<ptrdiff_t>(at), 4, chunk.tag.begin());
    chunk.kind = kindOf(chunk.tagText());
    chunk.level = levelOf(chunk.kind, chunk.tagText());
    chunk.jump = word(at + 4);
    chunk.length = word(at + 8);
    const uint64_t least = chunk.level == Level::List ? kListHeader : kCommonHeader;
    if (chunk.jump < least || chunk.jump > kLongestHeader || !has(at, chunk.jump)) return std::nullopt;
    if (has(at, kCommonHeader)) chunk.count = word(at + 12);
    return chunk;
  }

  void takeFileHeader() {
    if (!has(0, kCommonHeader)) return;
    const std::string_view tag = bytes_.substr(0, 4);
    const uint32_t jump = word(4);
    const bool isOurs = found_.bigEndian ? tag == "hdfm" : tag.substr(2) == "bd";
    if (!isOurs || jump < kCommonHeader || jump > kLongestHeader || !has(0, jump)) return;
    found_.fileHeader = jump;
    at_ = jump;
  }

  // Takes what stands at the cursor, and moves it on; false when nothing plausible does.
  bool take() {
    if (!isTagAt(at_)) return false;
    const std::optional<Chunk> chunk = headerAt(at_);
    if (!chunk) return false;
    if (chunk->kind == kTrack) return takeSong(*chunk);
    if (chunk->kind == kPlaylist) return takeList(*chunk);
    if (chunk->kind == kEntry) return takeEntry(*chunk);
    if (chunk->level == Level::Object) {
      const std::optional<Object> object = objectAt(at_);
      // Of no record that is known: its length counts when it leads to something.
      if (!object || !(at_ + object->length == bytes_.size() || isTagAt(at_ + object->length))) return false;
      at_ += object->length;
      return true;
    }
    takeContainer(*chunk);
    at_ += chunk->jump;
    return true;
  }

  void takeContainer(const Chunk &chunk) {
    isListOpen_ = false;
    if (chunk.level == Level::DataSet) {
      set_ = chunk.count;
      setEnd_ = chunk.at + chunk.length;
    } else if (chunk.kind == kTrackList && chunk.length <= bytes_.size() / kShortestSong) {
      found_.announcedSongs += chunk.length;
    } else if (chunk.kind == kPlaylistList) {
      firstListAt_ = chunk.contentAt();
      if (setAt(chunk.at) == 2 && chunk.length <= bytes_.size() / kShortestList)
        found_.announcedLists += chunk.length;
    }
  }

  // The type of the data set that holds an offset. What stands behind the last one that was found stands in
  // one whose header is lost.
  uint32_t setAt(uint64_t at) const { return at < setEnd_ ? set_ : 0; }

  std::optional<Object> objectAt(uint64_t at) const {
    if (!has(at, kHeaderOfObject)) return std::nullopt;
    if (bytes_.substr(static_cast<size_t>(at), 4) != (found_.bigEndian ? "hohm" : "mhod"))
      return std::nullopt;
    const uint32_t jump = word(at + 4);
    Object object;
    object.length = word(at + 8);
    if (jump < kCommonHeader || jump > kHeaderOfText || object.length < kHeaderOfObject ||
        object.length < jump || !has(at, object.length))
      return std::nullopt;
    if (word(at + 0x14) != 0) return object;  // one that readers pass over
    const uint32_t encoding = object.length < kHeaderOfText ? 0 : word(at + 0x18);
    const bool isPlace = found_.bigEndian && word(at + 12) == kDesktopLocation;
    if (encoding == kUtf16Text && !isPlace) {
      const uint32_t size = word(at + 0x1c);
      if (size > object.length - kHeaderOfText) return std::nullopt;
      object.isText = object.isUtf16 = true;
    } else if (found_.bigEndian || encoding == kUtf8Text) {
      object.isText = true;  // of 8 bits, or a file's place
    } else {
      object.isGood = !isTextType(word(at + 12));
    }
    return object;
  }

  // Whether a text of UTF-16 has the character 0, as one has that was partly wiped.
  bool hasZero(uint64_t object) const {
    const std::string_view text =
        bytes_.substr(static_cast<size_t>(object) + kHeaderOfText, word(object + 0x1c));
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
      if (text[i] == '\0' && text[i + 1] == '\0') return true;
    }
    return false;
  }

  // Where the next object begins behind a damaged one, before `end` and before any other record; else `end`.
  uint64_t nextObject(uint64_t from, uint64_t end) {
    // The same stretch is searched once, however many headers claim it.
    uint64_t at = from >= barrenFrom_ && from < barrenTo_ ? barrenTo_ : nextTag(from);
    while (at < end) {
      const size_t kind = kindOf(bytes_.substr(static_cast<size_t>(at), 4));
      const std::optional<Object> object = objectAt(at);
      if (object || (kind != kOther && levelOf(kind, {}) != Level::Object)) {
        barrenFrom_ = from;
        barrenTo_ = at;
        return object && object->length <= end - at ? at : end;
      }
      at = nextTag(at + 1);
    }
    barrenFrom_ = from;
    barrenTo_ = at;
    return end;
  }

  // The objects of a record whose header says how many there are, up to `end`; those behind a damaged one
  // only where the record `spans` to there. Returns where the last one ends.
  uint64_t takeObjects(const Chunk &chunk, uint64_t end, bool spans, SalvagedRecord &record) {
    found_.isBroken = found_.isBroken || isAnyGap_;
    record.at = chunk.at;
    record.header = static_cast<uint32_t>(chunk.jump);
    record.size = chunk.jump;
    record.firstSpan = found_.spans.size();
    hasText_ = false;
    uint64_t reached = chunk.contentAt();
    for (uint64_t at = reached, seen = 0; at < end && seen < chunk.count; ++seen) {
      std::optional<Object> object = objectAt(at);
      if (!object || object->length > end - at) {
        record.isWhole = false;
        found_.isBroken = true;
        at = spans ? nextObject(at, end) : end;
        if (at == end) break;
        object = objectAt(at);
      }
      if (object->isGood && !(object->isUtf16 && hasZero(at))) {
        keep(record, {at, object->length});
        hasText_ = hasText_ || object->isText;
      }
      at += object->length;
      reached = at;
    }
    record.isWhole = record.isWhole && record.objects == chunk.count;
    return reached;
  }

  void keep(SalvagedRecord &record, Span span) {
    ++record.objects;
    record.size += span.size;
    if (record.spans > 0 && found_.spans.back().at + found_.spans.back().size == span.at) {
      found_.spans.back().size += span.size;
      return;
    }
    found_.spans.push_back(span);
    ++record.spans;
  }

  bool takeSong(const Chunk &chunk) {
    if (chunk.jump < kShortestSong || chunk.length > kLongestRecord ||
        chunk.length < chunk.jump + uint64_t{chunk.count} * kHeaderOfObject)
      return false;
    SalvagedRecord song;
    const uint64_t reached =
        takeObjects(chunk, std::min<uint64_t>(chunk.at + chunk.length, bytes_.size()), true, song);
    if (!song.isWhole && !hasText_) {
      found_.spans.resize(song.firstSpan);
      if (reached == chunk.contentAt()) return false;  // nothing but the header speaks for it
    } else {
      found_.songs.push_back(song);
    }
    isListOpen_ = false;
    at_ = reached;
    return true;
  }

  bool takeList(const Chunk &chunk) {
    if (chunk.jump < kShortestList || chunk.length < chunk.jump + uint64_t{chunk.count} * kHeaderOfObject)
      return false;
    const uint64_t end = chunk.at + chunk.length;
    SalvagedList list;
    at_ = takeObjects(chunk, std::min<uint64_t>(end, bytes_.size()), true, list);
    list.set = setAt(chunk.at);
    const char mark = bytes_[static_cast<size_t>(chunk.at) + (found_.bigEndian ? 0x16 : 0x14)];
    list.isLibrary = mark == 1 || chunk.at == firstListAt_;
    list.announced = word(chunk.at + 0x10);
    list.firstEntry = found_.entries.size();
    found_.lists.push_back(list);
    isListOpen_ = true;
    afterGap_ = false;
    listEnd_ = end <= bytes_.size() ? end : 0;
    return true;
  }

  bool takeEntry(const Chunk &chunk) {
    if (chunk.jump < kShortestListEntry || chunk.length < chunk.jump || chunk.length > kLongestRecord ||
        chunk.count > chunk.length)
      return false;
    if (!isListOpen_ || (afterGap_ && at_ >= listEnd_)) {
      at_ += chunk.jump;  // of a list that is lost
      return true;
    }
    SalvagedRecord entry;
    // Older programs write its objects behind the length that it states.
    at_ = takeObjects(chunk, std::min<uint64_t>(chunk.at + kLongestRecord, bytes_.size()), false, entry);
    found_.entries.push_back(entry);
    ++found_.lists.back().entries;
    return true;
  }

  std::string_view bytes_;
  Salvage found_;
  uint64_t at_ = 0;
  bool afterGap_ = false;  // since the last list began
  bool isAnyGap_ = false;
  bool isListOpen_ = false;
  bool hasText_ = false;      // the record that was read last
  uint64_t firstListAt_ = 0;  // behind the header of a list of playlists, where that of all songs stands
  uint64_t listEnd_ = 0;      // of the open list, as it states; 0 where that is not possible
  uint32_t set_ = 0;          // of the last data set
  uint64_t setEnd_ = 0;
  uint64_t barrenFrom_ = 0, barrenTo_ = 0;  // where no object begins
};

}  // namespace

Salvage salvage(std::string_view bytes) {
  if (bytes.starts_with("hdfm")) return Scanner(bytes, true).run();
  Salvage little = Scanner(bytes, false).run();
  if (little.fileHeader != 0 || !little.songs.empty()) return little;
  Salvage big = Scanner(bytes, true).run();
  return big.entries.size() + big.songs.size() > little.entries.size() ? big : little;
}

std::string readWhatCanBeRead(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
  std::string bytes(static_cast<size_t>(status.st_size), '\0');
  constexpr size_t kStep = size_t{128} * kBlock;
  for (size_t at = 0; at < bytes.size(); at += kStep) {
    const size_t size = std::min(kStep, bytes.size() - at);
    try {
      readAt(file, at, bytes.data() + at, size);
    } catch (const std::system_error &) {
      for (size_t block = at; block < at + size; block += kBlock) {
        const size_t part = std::min(kBlock, at + size - block);
        try {
          readAt(file, block, bytes.data() + block, part);
        } catch (const std::system_error &) {
          std::fill_n(bytes.begin() + static_cast<ptrdiff_t>(block), part, '\0');
        }
      }
    }
  }
  return bytes;
}

}  // namespace player
