#pragma once

// The header of a chunk, and the tags by which chunks are known.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace player {

constexpr uint64_t kCommonHeader = 16;  // bytes that every header has, but for
constexpr uint64_t kListHeader = 12;    // those of lists, which some programs write short

// Where a chunk may stand: each level holds those after it.
enum class Level { File, DataSet, List, Record, Entry, Object };

// The kinds of chunks that are known, by the order of their tags.
constexpr size_t kKnownKinds = 10;
constexpr size_t kTrackList = 2, kTrack = 3, kPlaylistList = 4, kPlaylist = 5, kEntry = 6;
constexpr size_t kOther = kKnownKinds;

// What a header says.
struct Chunk {
  uint64_t at = 0;
  std::array<char, 4> tag{};
  size_t kind = kOther;  // one of the above
  Level level = Level::Record;
  uint64_t jump = 0;    // bytes of the header
  uint64_t length = 0;  // bytes in all, or the number of children of a list
  uint32_t count = 0;   // what the header's fourth word says: objects of a record, the type of a data set

  std::string_view tagText() const { return {tag.data(), tag.size()}; }
  uint64_t contentAt() const { return at + jump; }
};

// The kind of a tag of either byte order; kOther for one that is not known.
size_t kindOf(std::string_view tag);

// The level of a kind; the third letter of a tag that is not known says whether it stands for a list.
Level levelOf(size_t kind, std::string_view tag);

// "track"; "chunk" for kOther.
std::string_view meaningOf(size_t kind);

// "0x1f".
std::string hex(uint64_t number);

// "the track (mhit) at 0x1f", as findings name a chunk.
std::string described(const Chunk &chunk);

// Whether the four bytes can be a tag.
bool isTag(std::string_view tag);

}  // namespace player
