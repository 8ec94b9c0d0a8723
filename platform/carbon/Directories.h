#pragma once

// Directory identifiers: a number for each directory that was ever named, kept as its parent's number and its
// name, so that a tree may be deeper than any path the system takes.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/carbon/Disk.h"

namespace carbon {

constexpr int32_t kAboveRoot = 1;  // the parent of every volume's root
constexpr int32_t kRoot = 2;

// An open directory of a volume.
struct Directory {
  int16_t volume = 0;
  int32_t id = kRoot;
  Descriptor descriptor;
  std::string below;  // the path from the volume's root, "" or "/one/two", in the disk's bytes
};

class Directories {
 public:
  // The volume's root directory. Throws nsvErr when it has gone.
  static Directory openRoot(int16_t volume, const std::string &root);

  // The directory with this identifier, wherever within its parent it is now. Throws dirNFErr when the volume
  // has no such directory (any more).
  Directory open(int16_t volume, const std::string &root, int32_t id);

  // Goes into the directory of this name, in any case; it has an identifier from then on. Throws dirNFErr.
  void enter(Directory &directory, const std::string &name);

  // The identifier of a directory's parent; the root's is kAboveRoot.
  int32_t parentOf(const Directory &directory) const;

 private:
  struct Key {
    int16_t volume;
    int32_t parent;
    Identity identity;
    auto operator<=>(const Key &) const = default;  // NOLINT(modernize-use-nullptr): no pointer is compared
  };
  struct Record {
    int32_t id;
    std::string name;  // where it was seen last
  };
  using Known = std::map<Key, Record>;

  Known::value_type &known(int16_t volume, int32_t id) const;
  int32_t idOf(const Key &key, const std::string &name);

  Known known_;
  std::vector<Known::value_type *> byId_;  // from identifier kRoot + 1 on
};

}  // namespace carbon
