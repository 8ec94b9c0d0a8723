#include "player/Chapters.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "player/FileWord.h"
#include "player/Utf16.h"

namespace player {

namespace {

constexpr size_t kBeforeAtoms = 12;  // three words that are 0
constexpr size_t kAtomHeader = 20;   // size, name, a word, the number of children, a word
constexpr size_t kTextLength = 2;    // of a text, in characters
constexpr size_t kBeforeAddress = 4;

struct Atom {
  std::string_view name;
  uint32_t word = 0;
  std::string_view content;  // its data, or its children
};

// Takes the first atom off the bytes; nothing when they hold no whole one.
std::optional<Atom> takeAtom(std::string_view &bytes) {
  if (bytes.size() < kAtomHeader) return std::nullopt;
  const size_t size = wordAt(bytes, 0, true);
  if (size < kAtomHeader || size > bytes.size()) return std::nullopt;
  const Atom atom{bytes.substr(4, 4), wordAt(bytes, 8, true), bytes.substr(kAtomHeader, size - kAtomHeader)};
  bytes.remove_prefix(size);
  return atom;
}

std::string nameIn(std::string_view content) {
  if (content.size() < kTextLength) return {};
  const size_t characters =
      size_t{static_cast<unsigned char>(content[0])} << 8 | static_cast<unsigned char>(content[1]);
  return utf8OfUtf16(content.substr(kTextLength, characters * 2), true);
}

Chapter chapterOf(const Atom &chapter) {
  // The first chapter begins at 1, which stands for the beginning.
  Chapter found{chapter.word == 1 ? 0 : chapter.word, {}, {}};
  std::string_view children = chapter.content;
  while (const auto child = takeAtom(children)) {
    if (child->name == "name") found.title = nameIn(child->content);
    if (child->name == "url " && child->content.size() > kBeforeAddress)
      found.url = child->content.substr(kBeforeAddress);
  }
  return found;
}

}  // namespace

std::string_view chapterAtoms(std::string_view body) {
  return body.substr(std::min(body.size(), kBeforeAtoms));
}

std::vector<Chapter> readChapters(std::string_view atoms) {
  std::vector<Chapter> chapters;
  while (const auto list = takeAtom(atoms)) {
    if (list->name != "sean") continue;
    std::string_view children = list->content;
    while (const auto chapter = takeAtom(children)) {
      if (chapter->name == "chap") chapters.push_back(chapterOf(*chapter));
    }
  }
  return chapters;
}

}  // namespace player
