#pragma once

// How a song's file is to be called: '{artist}/{album}/{track:02} {title}'.

#include <string>
#include <string_view>
#include <vector>

#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

// The default.
constexpr std::string_view kUsualPattern = "{artist}/{album}/{track:02} {title}";

// The fields of a pattern, "{title}, {artist}, ...", for help and messages.
std::string patternFields();

class NamePattern {
 public:
  // Reads a pattern: text, fields in braces, '/' between folders, "{{" and "}}" for the braces themselves.
  // Numbers may have a width, with zeros in front (":02") or blanks (":2"). Throws HostError, which says what
  // is wrong and where, and the known fields when one is not known.
  explicit NamePattern(std::string_view text);

  // The folders and, last, the file's name without extension, of a song: each safe as a part of a path. A
  // text that is empty becomes "Unknown Artist" and the like, a number that is 0 nothing.
  std::vector<std::string> names(const Song &song) const;
  // The last one with a suffix and an extension, within the length that names may have.
  std::string fileName(const Song &song, std::string_view suffix, std::string_view extension) const;

 private:
  struct Part {
    std::string literal;  // stands before the field
    int field = -1;       // in the table of fields; -1: none
    size_t width = 0;
    char fill = ' ';
  };
  using Component = std::vector<Part>;

  static std::string textOf(const Component &component, const Song &song);

  std::vector<Component> components_;
};

}  // namespace zemhost
