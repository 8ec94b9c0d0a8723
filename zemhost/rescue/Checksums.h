#pragma once

// The sums of the files in a folder: SHA256SUMS beside them, in the form that `sha256sum -c` reads.
//
//   ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad  A/B/01 T.mp3

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "zemhost/rescue/DestinationFolder.h"

namespace zemhost {

class Checksums {
 public:
  // No sums.
  Checksums() = default;

  // Those that a text states, of the last line for each file; nothing when a line of it is none of them.
  static std::optional<Checksums> read(std::string_view text);
  // A line for each file, in the order of their names. A backslash and an end of a line in a name are
  // escaped, and such a line begins with a backslash.
  std::string text() const;

  // By the names of the files, as they stand on the disk.
  const std::map<std::string, std::string> &sums() const { return sums_; }
  void set(const std::string &file, const std::string &sha256) {
    sums_.insert_or_assign(sums_.end(), file, sha256);  // mostly they come in order
  }

 private:
  std::map<std::string, std::string> sums_;
};

// The name of that file.
constexpr const char *kChecksumFile = "SHA256SUMS";

// The sums that stand in a folder; nothing when there is no such file or it holds something else. Throws
// CopyFailure when it cannot be read.
std::optional<Checksums> checksumsIn(const DestinationFolder &folder, const std::string &name);

// Adds sums to those of the folder. A file of the name that holds something else stays, and the sums get a
// number. Throws HostError, naming the file, or CopyFailure when it cannot be read or written.
void extendChecksums(const DestinationFolder &folder, const Checksums &more);

}  // namespace zemhost
