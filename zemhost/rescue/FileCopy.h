#pragma once

// Copying the content of one file, and finding out whether it is there already.

#include <cstdint>
#include <ctime>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "zemhost/library/PatientReader.h"

namespace zemhost {

// What to advise where copying had to stop, for the end of a message.
constexpr const char *kContinue = "run the same command again to continue";

// Why a file was not copied.
class CopyFailure : public std::runtime_error {
 public:
  enum class Reach {
    ThisFile,     // others may still be copied
    Destination,  // nothing more can be written: the disk is full or broken
  };

  CopyFailure(Reach reach, int error);
  CopyFailure(Reach reach, int error, const std::string &what);

  Reach reach() const { return reach_; }
  int error() const { return error_; }

 private:
  Reach reach_;
  int error_;
};

// Whether the open files hold the same bytes. Throws CopyFailure (ThisFile) when one of them cannot be read.
bool sameContent(const carbon::Descriptor &one, const carbon::Descriptor &other);

// Whether a file system that was given one time may have kept the other: it drops what is finer than it
// knows, down to the two seconds of FAT.
bool isKeptTime(const timespec &kept, const timespec &given);

// What came of copying a file's bytes.
struct CopiedContent {
  std::string sha256;       // of the copy: of what was read from the source, with zeros in the gaps
  std::vector<Gap> gaps;    // what could not be read, in the order of the file; none for nearly all
  uint64_t taggedSize = 0;  // of the copy, where tags were written into it since
};

// Copies the bytes of `source` to `copy`, which is empty, and gives it the source's times; they need not be
// on the disk yet. What cannot be read at first is tried again, at last when all else has been read.
// `onBytes` gets the number of bytes that came through, again and again. Throws CopyFailure, also when
// nothing can be read.
CopiedContent copyContent(const carbon::Descriptor &source, const carbon::Descriptor &copy,
                          const std::function<void(uint64_t)> &onBytes);

// The SHA-256 of an open file, read from its disk as far as the system lets go of what it has in memory.
// Throws CopyFailure (ThisFile) when it cannot be read.
std::string sha256OnDisk(const carbon::Descriptor &file);

// Throws the CopyFailure for an error of writing. A name that this file system cannot hold, or a file in the
// way of a folder, says nothing of other files.
[[noreturn]] void failTarget(int error);

}  // namespace zemhost
