#pragma once

// The objects (mhod, hohm) that follow the header of a song, a playlist or an entry.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/FileWindow.h"

namespace player {

constexpr uint32_t kHeaderOfObject = 0x18;  // the bytes before its body
constexpr uint32_t kUtf16Text = 1;          // at 0x18 of a text

struct StoredObject {
  uint32_t type = 0;
  uint64_t at = 0;      // where it begins in the file
  uint64_t length = 0;  // in bytes, its header included
  bool isText = false;  // in UTF-16
};

// Where the objects of the record at an offset stand, in the order of the file: as many as its header
// announces, to where they end at `end` or break off. Takes what the window holds and leaves it where it is,
// as the others do. Throws std::system_error when the file cannot be read.
std::vector<StoredObject> objectsOf(FileWindow &file, bool bigEndian, uint64_t record, uint64_t end);

// The bytes of an object behind the first 0x18, fewer where the file ends; none when they are more than a
// mebibyte.
std::string bodyOf(FileWindow &file, const StoredObject &object);

// The text of an object in UTF-8; what is no character has become U+FFFD. Nothing when it is no text, or one
// of more than a mebibyte.
std::optional<std::string> textOf(FileWindow &file, bool bigEndian, const StoredObject &object);

}  // namespace player
