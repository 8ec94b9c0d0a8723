#pragma once

// What is wrong with a library, collected.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace player {

enum class FindingKind {
  UnexplainedBytes,  // that belong to no chunk
  WrongLength,       // a chunk's length does not fit what it holds or what holds it
  WrongCount,        // a header announces another number than follows
  ClassDiffers,      // the class answers otherwise than the file holds
  EntryWithoutSong,  // a playlist entry with a track ID that no song has
  LossyText,         // a text that Unicode cannot hold whole
  MissingFile,       // a song whose file is not on the volume
  UnnamedFile,       // a file in the music folder that no song names
  UnusedFile,        // a file beside the database that does not fit it
  UnresolvedId,      // a table names by its ID what is not there
  ShortFile,         // a song's file is empty, or shorter than the database states
  Unreadable,        // a song's file, or a folder of the player, that is there and cannot be read
  AbsentFile,        // a file that belongs to the database and is not there
  DamagedFile,       // a file of the database, or a part of it, that cannot be read
};
constexpr size_t kFindingKinds = 14;

// "unexplained-bytes": the kind's name in reports that programs read.
std::string_view kindName(FindingKind kind);

struct Finding {
  FindingKind kind{};
  std::string text;                // in plain words
  std::optional<uint64_t> offset;  // where in the (inflated) file, when it is about bytes
  std::optional<uint64_t> size;    // how many of them
};

// Keeps the findings in order, and counts those that are too many to keep.
class Findings {
 public:
  // Of each kind this many are kept, so that a hostile file cannot fill the memory with them.
  static constexpr uint64_t kKept = 10'000;

  void add(Finding finding);
  void add(FindingKind kind, std::string text) { add({kind, std::move(text), {}, {}}); }

  const std::vector<Finding> &kept() const { return kept_; }
  uint64_t count(FindingKind kind) const { return counts_[static_cast<size_t>(kind)]; }
  uint64_t total() const;

 private:
  std::vector<Finding> kept_;
  std::array<uint64_t, kFindingKinds> counts_{};
};

}  // namespace player
