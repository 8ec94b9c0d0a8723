#pragma once

// What can still be read of a damaged database. Where a chunk makes no sense, the search goes on at the next
// record that does, so that what is lost is what was overwritten.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace player {

// Bytes of the file.
struct Span {
  uint64_t at = 0;
  uint64_t size = 0;
};

// A song, a playlist or an entry with a plausible header, and those of its objects that are whole.
struct SalvagedRecord {
  uint64_t at = 0;       // where it begins in the file
  uint32_t header = 0;   // bytes of its header
  uint32_t objects = 0;  // how many there are
  size_t firstSpan = 0;  // where they stand: in Salvage::spans from here on,
  uint32_t spans = 0;    // this many
  uint64_t size = 0;     // bytes of the header and of the objects
  bool isWhole = true;   // all that its header announces is there
};

struct SalvagedList : SalvagedRecord {
  uint32_t set = 0;  // the type of the data set it stands in; 0 where that is not known
  bool isLibrary = false;
  uint64_t announced = 0;  // entries, by its header
  size_t firstEntry = 0;   // in Salvage::entries
  size_t entries = 0;
};

struct Salvage {
  bool bigEndian = false;
  uint32_t fileHeader = 0;                          // bytes of the file's own header; 0 when it is damaged
  uint64_t announcedSongs = 0, announcedLists = 0;  // by the headers of lists that are left; 0 when none is
  bool isBroken = false;  // records stand behind bytes that make no sense, or hold such
  std::vector<Span> spans;
  std::vector<SalvagedRecord> songs;  // these three in the order of the file
  std::vector<SalvagedRecord> entries;
  std::vector<SalvagedList> lists;
};

// Reads the bytes of a database, plain or inflated, in time and memory that grow with their number alone. A
// song needs a plausible header, and all the objects that it announces or at least a text. An entry needs a
// list whose bytes lead to it or that states to reach so far. Objects that are cut, and texts with a zero
// among their characters, are left out. What has neither byte order's header is read in the one that gives
// more songs.
Salvage salvage(std::string_view bytes);

// The whole content of an open file. What the disk does not give any more is zero, in blocks of 512 bytes.
// Throws std::system_error when the file has no size, std::bad_alloc without memory.
std::string readWhatCanBeRead(int file);

}  // namespace player
