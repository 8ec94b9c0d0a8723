#include "player/ChunkWalk.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "player/Chunk.h"
#include "player/FileWindow.h"
#include "player/FileWord.h"

namespace player {

namespace {

constexpr size_t kFileHeaderSeen = 0x34;  // as far as the fields that are read go
constexpr uint32_t kGroupedLists = 3;     // the type of the set in which podcasts stand in groups
constexpr size_t kMostOpen = 64;          // unknown containers inside each other
constexpr size_t kMostOtherTags = 50;     // listed one by one in the account

// A container that has begun and not ended.
struct Open {
  Chunk chunk;
  uint64_t end = 0;
  uint64_t children = 0;
  uint64_t announced = 0;  // children, as far as its header states them
};

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
  bool readChunk(uint64_t at, Chunk &chunk) { return readChunk(at, window_.at(at, kCommonHeader), chunk); }

  bool readChunk(uint64_t at, std::string_view bytes, Chunk &chunk) const {
    if (bytes.size() < kListHeader) return false;
    std::copy_n(bytes.begin(), 4, chunk.tag.begin());
    if (at > 0 && !isTag(chunk.tagText())) return false;
    chunk.at = at;
    chunk.jump = word(bytes, 4);
    chunk.length = word(bytes, 8);
    chunk.count = word(bytes, 12);
    chunk.kind = kindOf(chunk.tagText());
    chunk.level = levelOf(chunk.kind, chunk.tagText());
    const uint64_t least = chunk.level == Level::List ? kListHeader : kCommonHeader;
    if (chunk.jump < least || chunk.jump > window_.size() - at) return false;
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
      find(FindingKind::WrongLength, described(chunk) + " stands after the end that the file's header states",
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
      const bool goesOn = end == window_.size() || readChunk(end, window_.ahead(end, kCommonHeader), next);
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
      // A list states no length, so it ends where the next thing begins; a length that is not possible was
      // reported before.
      if (last.chunk.level != Level::List && last.end == last.chunk.at + last.chunk.length) {
        find(FindingKind::WrongLength,
             described(last.chunk) + " states a length of " + std::to_string(last.chunk.length) +
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
    opened.announced = announcedBy(chunk);
    if (chunk.level != Level::List) {
      const bool fits =
          chunk.length >= chunk.jump && chunk.length <= holderEnd - std::min(holderEnd, chunk.at);
      if (fits) {
        opened.end = chunk.at + chunk.length;
      } else {
        find(FindingKind::WrongLength,
             described(chunk) + " states a length of " + std::to_string(chunk.length) + " bytes, where " +
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
      account_.tracksAt.push_back(chunk.at);
    } else if (chunk.kind == kPlaylistList && readByClass) {
      account_.declaredPlaylists += chunk.length;
    } else if (chunk.kind == kPlaylist && readByClass) {
      ++account_.playlists;
      account_.entriesOf.push_back(0);
      account_.playlistsAt.push_back(chunk.at);
      account_.declaredEntries += announcedBy(chunk);
    } else if (chunk.kind == kPlaylist && setType_ == kGroupedLists) {
      account_.groupedListsAt.push_back(chunk.at);
    } else if (chunk.kind == kEntry && readByClass) {
      ++account_.entries;
      if (!account_.entriesOf.empty()) ++account_.entriesOf.back();
    }
  }

  uint64_t announcedBy(const Chunk &chunk) {
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
      if (chunk.kind == kOther && counts.size() >= kKnownKinds + kMostOtherTags) {
        i = counts.size() - 1;
      } else {
        counts.push_back(
            {std::string(tag), std::string(chunk.kind == kOther ? "other" : meaningOf(chunk.kind)), 0, 0});
      }
    }
    if (chunk.kind != kOther) lastOf_[chunk.kind] = i;
    ++counts[i].chunks;
    counts[i].bytes += bytes;
  }

  FileWindow window_;
  FileAccount account_;
  std::vector<Open> open_;
  uint64_t at_ = 0;
  uint32_t setType_ = 0;
  Chunk record_;  // whose objects are counted
  bool recordOpen_ = false;
  uint64_t objects_ = 0;
  std::array<size_t, kKnownKinds> lastOf_{};  // where each known tag was counted last
};

}  // namespace

FileAccount walkChunks(int file) { return Walk(file).run(); }

}  // namespace player
