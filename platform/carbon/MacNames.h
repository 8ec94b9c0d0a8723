#pragma once

// What every user of Mac names has to know of them. All of it stands in this header, since the shared library
// exports the Mac's calls alone.

#include <cstddef>
#include <string>

#include "platform/carbon/FileRecords.h"

namespace carbon {

// The most bytes of a Mac name, 63: what a file specification holds after the length byte.
constexpr size_t kLongestName = sizeof(FSSpec::name) - 1;

// The name with every '/' and ':' exchanged, which turns a Mac name into the disk's and back. Whole paths
// may be given, since the separators are the two characters that change places.
inline std::string exchanged(std::string name) {
  for (char &c : name) {
    if (c == '/') {
      c = ':';
    } else if (c == ':') {
      c = '/';
    }
  }
  return name;
}

}  // namespace carbon
