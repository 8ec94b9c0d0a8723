#include "player/RecordObjects.h"

#include <algorithm>
#include <string_view>

#include "player/FileWord.h"
#include "player/Utf16.h"

namespace player {

namespace {

constexpr size_t kTextHeader = 0x28;  // of a text, as far as the text
constexpr uint64_t kLongestObject = 1U << 20;
constexpr uint32_t kUsualObjects = 16;  // of a record; what more it announces need not be true

// Valid until something else of the file is read.
std::string_view bytesFrom(FileWindow &file, const StoredObject &object, size_t start) {
  if (object.length < start || object.length > kLongestObject) return {};
  return file.ahead(object.at + start, static_cast<size_t>(object.length) - start);
}

}  // namespace

std::vector<StoredObject> objectsOf(FileWindow &file, bool bigEndian, uint64_t record, uint64_t end) {
  std::vector<StoredObject> objects;
  const std::string_view header = file.ahead(record, 16);
  if (header.size() < 16) return objects;
  const uint32_t announced = wordAt(header, 12, bigEndian);
  uint64_t at = record + wordAt(header, 4, bigEndian);
  objects.reserve(std::min(announced, kUsualObjects));
  while (objects.size() < announced) {
    const std::string_view head = file.ahead(at, kTextHeader);
    if (head.size() < kHeaderOfObject || !head.starts_with(bigEndian ? "hohm" : "mhod")) break;
    const uint64_t length = wordAt(head, 8, bigEndian);
    if (length < kHeaderOfObject || at + length > end) break;
    const bool isText = length >= kTextHeader && head.size() == kTextHeader &&
                        wordAt(head, 0x14, bigEndian) == 0 && wordAt(head, 0x18, bigEndian) == kUtf16Text;
    objects.push_back({wordAt(head, 12, bigEndian), at, length, isText});
    at += length;
  }
  return objects;
}

std::string bodyOf(FileWindow &file, const StoredObject &object) {
  return std::string(bytesFrom(file, object, kHeaderOfObject));
}

std::optional<std::string> textOf(FileWindow &file, bool bigEndian, const StoredObject &object) {
  if (!object.isText || object.length > kLongestObject) return std::nullopt;
  return utf8OfUtf16(bytesFrom(file, object, kTextHeader), bigEndian);
}

}  // namespace player
