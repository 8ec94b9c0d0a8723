#pragma once

// Directories as POSIX has them: opened relative to each other, so that no path ever has to fit the system's
// limit, and told apart by what they are instead of by their names.

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/carbon/Descriptor.h"

namespace carbon {

// What tells one directory from any other, also from a later one that took its name or its inode number.
// Holds the inode and generation numbers where the file system keeps them, and always the time of birth if
// known. On file systems that number their inodes anew whenever these leave the cache (FAT is one), the
// directory's name stands in for the number.
struct Identity {
  uint64_t device = 0;
  uint64_t inode = 0;
  int64_t bornSeconds = 0;
  uint32_t bornNanoseconds = 0;
  std::string label;

  auto operator<=>(const Identity &) const =
      default;  // NOLINT(modernize-use-nullptr): no pointer is compared
};

// Opens a directory, for looking things up in it only; symbolic links are followed. No descriptor when it is
// missing, not a directory or out of reach.
Descriptor openDirectory(const std::string &path);
Descriptor openDirectory(const Descriptor &parent, const std::string &name);

// The identity of an open directory that was found under this name.
Identity identify(const Descriptor &directory, const std::string &name);

// True when the file system with this type number (statfs f_type) keeps an inode's number for good.
bool keepsInodeNumbers(uint64_t fileSystemType);

// True when the name leads to something: a symbolic link to nothing does not count.
bool exists(const Descriptor &directory, const std::string &name);

// Calls back with the name of each entry but "." and "..", in no order, until the callback returns false.
// An unreadable directory has no entries.
void forEachEntry(const Descriptor &directory, const std::function<bool(const std::string &name)> &callback);

// The disk's own spelling of a name that is asked for: the name itself if an entry has it, else the first in
// byte order of those that differ in case only.
std::optional<std::string> findEntry(const Descriptor &directory, const std::string &name);

// The absolute path without symbolic links, "." and ".."; empty when it is missing, out of reach or longer
// than the system takes, with the reason in errno.
std::string realPath(const std::string &path);

}  // namespace carbon
