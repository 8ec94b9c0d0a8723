#include "player/ChunkWalk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

#include "platform/carbon/Descriptor.h"
#include "player/FileBytes.h"
#include "player/FileWord.h"

namespace player {

namespace {

constexpr uint64_t kCommonHeader = 16;
constexpr size_t kFileHeaderSeen = 0x34;  // as far as the fields that are read go

// Where a chunk may stand: each level holds those after it.
enum class Level { File, DataSet, List, Record, Entry, Object };

constexpr uint32_t packed(std::string_view tag) {
  uint32_t number = 0;
  for (const char c : tag) number = number << 8 | static_cast<unsigned char>(c);
  return number;
}

struct KnownTag {
  uint32_t player;
  uint32_t desktop;
  Level level;
  std::string_view meaning;
};
constexpr std::array<KnownTag, 10> kKnownTags = {
    {{packed("mhbd"), packed("hdfm"), Level::File, "file"},
     {packed("mhsd"), packed("hdsm"), Level::DataSet, "data set"},
     {packed("mhlt"), packed("htlm"), Level::List, "track list"},
     {packed("mhit"), packed("htim"), Level::Record, "track"},
     {packed("mhlp"), packed("hplm"), Level::List, "playlist list"},
     {packed("mhyp"), packed("hpim"), Level::Record, "playlist"},
     {packed("mhip"), packed("hptm"), Level::Entry, "playlist entry"},
     {packed("mhod"), packed("hohm"), Level::Object, "object"},
     {packed("mhla"), packed("halm"), Level::List, "album list"},
     {packed("mhia"), packed("haim"), Level::Record, "album"}}};
constexpr size_t kTrackList = 2, kTrack = 3, kPlaylistList = 4, kPlaylist = 5, kEntry = 6;
constexpr size_t kOther = kKnownTags.size();
constexpr size_t kMostOpen = 64;       // unknown containers inside each other
constexpr size_t kMostOtherTags = 50;  // told apart in the account

struct Chunk {
  uint64_t at = 0;
  std::array<char, 4> tag{};
  size_t kind = kOther;  // in kKnownTags
  Level level = Level::Record;
  uint64_t jump = 0;
  uint64_t length = 0;  // bytes in all, or the number of children of a list
  uint32_t count = 0;

  std::string_view tagText() const { return {tag.data(), tag.size()}; }
  uint64_t contentAt() const { return at + jump; }
};

// A container that has begun and not ended.
struct Open {
  Chunk chunk;
  uint64_t end = 0;
  uint64_t children = 0;
  uint64_t announced = 0;  // children, as far as its header tells
};

class Window {
 public:
  explicit Window(int file) : file_(file), bytes_(kSize, '\0') {
    struct stat status {};
    if (fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
    size_ = static_cast<uint64_t>(status.st_size);
  }

  uint64_t size() const { return size_; }

  // Up to `count` bytes from an offset on, fewer at the end of the file; valid until the next call.
  std::string_view at(uint64_t offset, size_t count) {
    if (offset < base_ || offset + count > base_ + filled_) {
      base_ = offset;
      filled_ = readAt(file_, offset, bytes_.data(), kSize);
    }
    const auto start = static_cast<size_t>(offset - base_);
    return std::string_view(bytes_).substr(start, std::min(count, filled_ - start));
  }

 private:
  static constexpr size_t kSize = size_t{64} * 1024;

  int file_;
  uint64_t size_ = 0;
  uint64_t base_ = 0;
  size_t filled_ = 0;
  std::string bytes_;
};

bool isLetter(char c) { return c >= 'a' && c <= 'z'; }

size_t kindOf(std::string_view tag) {
  const uint32_t number = packed(tag);
  for (size_t i = 0; i < kKnownTags.size(); ++i) {
    if (number == kKnownTags[i].player || number == kKnownTags[i].desktop) return i;
  }
  return kOther;
}

// Both forms of tags stand for lists when their third letter says so.
Level levelOf(size_t kind, std::string_view tag) {
  if (kind != kOther) return kKnownTags[kind].level;
  return tag[2] == 'l' ? Level::List : Level::Record;
}

std::string hex(uint64_t number) {
  std::array<char, 24> text{};
  std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(number));
  return text.data();
}

std::string described(const Chunk &chunk) {
  const std::string meaning(chunk.kind == kOther ? "chunk" : kKnownTags[chunk.kind].meaning);
  return "the " + meaning + " (" + std::string(chunk.tagText()) + ") at " + hex(chunk.at);
}

class Walk {
 public:
  explicit Walk(int file) : window_(file) {}

  FileAccount run() {
    account_.size = window_.size();
    if (beginFile()) {
      while (step()) {
      }
      while (!open_.empty()) closeLast();
    }
    finishObjects();
    return std::move(account_);
  }

 private:
  uint32_t word(std::string_view bytes, size_t offset) const {
    return bytes.size() < offset + 4 ? 0 : wordAt(bytes, offset, account_.bigEndian);
  }

  void find(FindingKind kind, std::string text, uint64_t offset) {
    account_.findings.add({kind, std::move(text), offset, {}});
  }

  bool beginFile() {
    const std::string_view header = window_.at(0, kFileHeaderSeen);
    account_.bigEndian = header.starts_with("hdfm");
    Chunk file;
    if (!readChunk(0, file)) {
      leaveOut(0, window_.size());
      return false;
    }
    if (account_.bigEndian) {
      if (header.size() > 0x11)
        account_.version = header.substr(0x11, static_cast<unsigned char>(header[0x10]));
      account_.declaredDataSets = word(header, 0x30);
    } else {
      account_.version = hex(word(header, 0x10));
      account_.declaredDataSets = word(header, 0x14);
    }
    file.kind = 0;
    file.level = Level::File;
    enter(file, window_.size());
    return true;
  }

  // The header at an offset, when there is a sound one.
  bool readChunk(uint64_t at, Chunk &chunk) {
    const std::string_view bytes = window_.at(at, kCommonHeader);
    if (bytes.size() < kCommonHeader) return false;
    std::copy_n(bytes.begin(), 4, chunk.tag.begin());
    if (at > 0 && (!std::all_of(chunk.tag.begin(), chunk.tag.end(), isLetter) ||
                   !(chunk.tagText().starts_with("mh") || (chunk.tag[0] == 'h' && chunk.tag[3] == 'm'))))
      return false;
    chunk.at = at;
    chunk.jump = word(bytes, 4);
    chunk.length = word(bytes, 8);
    chunk.count = word(bytes, 12);
    chunk.kind = kindOf(chunk.tagText());
    chunk.level = levelOf(chunk.kind, chunk.tagText());
    if (chunk.jump < kCommonHeader || chunk.jump > window_.size() - at) return false;
    return chunk.level != Level::Object ||
           (chunk.length >= chunk.jump && chunk.length <= window_.size() - at);
  }

  // Takes what stands at the cursor; false at the end of the file.
  bool step() {
    while (!open_.empty() && open_.back().end <= at_) closeLast();
    if (at_ >= window_.size()) return false;
    Chunk chunk;
    const bool sound = readChunk(at_, chunk);
    if (open_.empty()) {
      if (!sound || chunk.level == Level::File) {
        leaveOut(at_, window_.size());
        return false;
      }
      find(FindingKind::WrongLength, described(chunk) + " stands after the end that the file's header tells",
           at_);
      open_.push_back({{}, window_.size()});  // what goes on as if the file did
    }
    if (!sound) {
      skipRest();
    } else if (chunk.level == Level::Object) {
      takeObject(chunk);
    } else {
      closeForChunk(chunk);
      enter(chunk, open_.empty() ? window_.size() : open_.back().end);
    }
    return true;
  }

  // No chunk stands at the cursor: what comes before the next one belongs to none.
  void skipRest() {
    const Open &holder = open_.back();
    const bool unknownSet = holder.chunk.level == Level::DataSet && holder.children == 0 &&
                            (holder.chunk.count == 0 || holder.chunk.count > 5);
    const uint64_t next = unknownSet ? holder.end : nextChunk(at_ + 1, holder.end);
    if (unknownSet) {
      account_.rawBytes += next - at_;
    } else {
      leaveOut(at_, next);
    }
    at_ = next;
  }

  // Where the next header of a kind that is known begins, else `end`.
  uint64_t nextChunk(uint64_t from, uint64_t end) {
    for (uint64_t at = from; at < end; ++at) {
      const char first = window_.at(at, kCommonHeader).front();
      Chunk chunk;
      if ((first == 'm' || first == 'h') && readChunk(at, chunk) && chunk.kind != kOther) return at;
    }
    return end;
  }

  void leaveOut(uint64_t from, uint64_t to) {
    if (from >= to) return;
    account_.unexplainedBytes += to - from;
    account_.findings.add({FindingKind::UnexplainedBytes,
                           std::to_string(to - from) + " bytes from " + hex(from) + " on belong to no chunk",
                           from, to - from});
  }

  void takeObject(const Chunk &object) {
    const Open &holder = open_.back();
    const uint64_t end = object.at + object.length;
    if (end > holder.end) {
      Chunk next;
      const bool goesOn = end == window_.size() || readChunk(end, next);
      find(FindingKind::WrongLength,
           described(object) + " runs past the end of " + described(holder.chunk) + " that holds it",
           object.at);
      if (!goesOn) {
        skipRest();
        return;
      }
    }
    count(object, object.length);
    ++objects_;
    at_ = end;
  }

  // A chunk that cannot stand inside another of its own level or below ends that one.
  void closeForChunk(const Chunk &chunk) {
    if (chunk.kind == kOther) {
      // Unknown chunks may nest, within reason.
      if (open_.size() >= kMostOpen) closeLast();
      return;
    }
    while (!open_.empty() && open_.back().chunk.level >= chunk.level) {
      const Open &last = open_.back();
      // A list tells no length, so it ends where the next thing begins; and a length that is not possible was
      // said to be wrong before.
      if (last.chunk.level != Level::List && last.end == last.chunk.at + last.chunk.length) {
        find(FindingKind::WrongLength,
             described(last.chunk) + " tells a length of " + std::to_string(last.chunk.length) +
                 " bytes, but " + described(chunk) + " begins inside",
             last.chunk.at);
      }
      closeLast();
    }
  }

  void enter(const Chunk &chunk, uint64_t holderEnd) {
    count(chunk, chunk.jump);
    if (!open_.empty()) ++open_.back().children;
    Open opened{chunk, holderEnd};
    opened.announced = childrenToldBy(chunk);
    if (chunk.level != Level::List) {
      const bool fits =
          chunk.length >= chunk.jump && chunk.length <= holderEnd - std::min(holderEnd, chunk.at);
      if (fits) {
        opened.end = chunk.at + chunk.length;
      } else {
        find(FindingKind::WrongLength,
             described(chunk) + " tells a length of " + std::to_string(chunk.length) + " bytes, where " +
                 std::to_string(chunk.jump) + " to " + std::to_string(holderEnd - chunk.at) + " are possible",
             chunk.at);
      }
    }
    finishObjects();
    if (chunk.level == Level::Record || chunk.level == Level::Entry) {
      record_ = chunk;
      objects_ = 0;
      recordOpen_ = chunk.kind == kTrack || chunk.kind == kPlaylist || chunk.kind == kEntry;
    }
    takeCounts(chunk);
    open_.push_back(opened);
    at_ = chunk.contentAt();
  }

  void takeCounts(const Chunk &chunk) {
    const bool readByClass = setType_ == 2;
    if (chunk.level == Level::DataSet) {
      ++account_.dataSets;
      setType_ = chunk.count;
    } else if (chunk.kind == kTrackList) {
      account_.declaredTracks += chunk.length;
    } else if (chunk.kind == kTrack) {
      ++account_.tracks;
    } else if (chunk.kind == kPlaylistList && readByClass) {
      account_.declaredPlaylists += chunk.length;
    } else if (chunk.kind == kPlaylist && readByClass) {
      ++account_.playlists;
      account_.entriesOf.push_back(0);
      account_.declaredEntries += childrenToldBy(chunk);
    } else if (chunk.kind == kEntry && readByClass) {
      ++account_.entries;
      if (!account_.entriesOf.empty()) ++account_.entriesOf.back();
    }
  }

  uint64_t childrenToldBy(const Chunk &chunk) {
    if (chunk.level == Level::List) return chunk.length;
    if (chunk.level == Level::File) return account_.declaredDataSets;
    return chunk.kind == kPlaylist ? word(window_.at(chunk.at, 0x14), 0x10) : 0;
  }

  // The objects of a record come before any other chunk, whatever the record's length says of them.
  void finishObjects() {
    if (recordOpen_ && objects_ != record_.count) {
      find(FindingKind::WrongCount,
           described(record_) + " announces " + std::to_string(record_.count) + " objects, and " +
               std::to_string(objects_) + " follow",
           record_.at);
    }
    recordOpen_ = false;
  }

  void closeLast() {
    const Open last = open_.back();
    open_.pop_back();
    if (last.chunk.jump == 0) return;  // the stand-in after the file's end
    if (last.chunk.level == Level::List) {
      expectChildren(last, "records");
    } else if (last.chunk.kind == kPlaylist) {
      expectChildren(last, "entries");
    } else if (last.chunk.level == Level::File) {
      expectChildren(last, "data sets");
    }
  }

  void expectChildren(const Open &last, const char *what) {
    if (last.announced == last.children) return;
    find(FindingKind::WrongCount,
         described(last.chunk) + " announces " + std::to_string(last.announced) + " " + what + ", and " +
             std::to_string(last.children) + " follow",
         last.chunk.at);
  }

  void count(const Chunk &chunk, uint64_t bytes) {
    const std::string_view tag = chunk.tagText();
    auto &counts = account_.chunks;
    size_t i = chunk.kind == kOther ? 0 : lastOf_[chunk.kind];
    if (i >= counts.size() || counts[i].tag != tag) {
      i = 0;
      while (i < counts.size() && counts[i].tag != tag) ++i;
    }
    if (i == counts.size()) {
      if (chunk.kind == kOther && counts.size() >= kKnownTags.size() + kMostOtherTags) {
        i = counts.size() - 1;
      } else {
        counts.push_back({std::string(tag),
                          std::string(chunk.kind == kOther ? "other" : kKnownTags[chunk.kind].meaning), 0,
                          0});
      }
    }
    if (chunk.kind != kOther) lastOf_[chunk.kind] = i;
    ++counts[i].chunks;
    counts[i].bytes += bytes;
  }

  Window window_;
  FileAccount account_;
  std::vector<Open> open_;
  uint64_t at_ = 0;
  uint32_t setType_ = 0;
  Chunk record_;  // whose objects are counted
  bool recordOpen_ = false;
  uint64_t objects_ = 0;
  std::array<size_t, kKnownTags.size()> lastOf_{};  // where each known tag was counted last
};

}  // namespace

FileAccount walkChunks(int file) { return Walk(file).run(); }

}  // namespace player
