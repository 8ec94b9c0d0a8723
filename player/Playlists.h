#pragma once

// The playlists of a database: what is known of each beside its name and its songs.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "player/ChunkWalk.h"
#include "player/SmartRules.h"

namespace player {

enum class PlaylistKind { Library, Ordinary, Smart, Folder, Podcasts, OnTheGo };

// What is not known has no value, never 0. Dates are as those of songs.
struct PlaylistFacts {
  PlaylistKind kind = PlaylistKind::Ordinary;
  std::optional<uint32_t> created;
  std::optional<uint32_t> modified;
  std::optional<uint32_t> sortOrder;  // 1 by hand, 3 title, 4 album, 5 artist, ...
  std::optional<uint64_t> persistentId;
  std::optional<uint64_t> folder;   // the persistent ID of the folder it lies in
  std::optional<SmartRules> rules;  // of a smart playlist
};

// Episodes of one podcast, by the IDs of their songs, in the order of the list.
struct PodcastGroup {
  std::string name;  // UTF-8; empty for episodes under no heading
  std::vector<uint32_t> songs;
};

class PlaylistReader {
 public:
  // `file` must stay open; `account` is what a walk over it found.
  PlaylistReader(int file, const FileAccount &account);

  // The playlists of the set that the class reads, in their order. The position must be below count(). All
  // throw std::system_error when the file cannot be read.
  size_t count() const { return lists_.size(); }
  PlaylistFacts facts(size_t list) const;

  // The IDs of its songs, in their order; memory grows with the entries that the file holds.
  std::vector<uint32_t> songIds(size_t list) const;

  // The episodes of a list of podcasts in groups, as the file holds them beside the flat list; empty when it
  // does not.
  std::vector<PodcastGroup> podcastGroups(size_t list) const;

 private:
  int file_;
  bool bigEndian_;
  uint64_t endOf(uint64_t at) const;

  std::vector<uint64_t> lists_;
  std::vector<uint64_t> starts_;          // of the lists in either form, ascending
  std::map<size_t, uint64_t> groupedAt_;  // where the form of a list begins that has its podcasts in groups
};

}  // namespace player
