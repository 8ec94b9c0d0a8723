#pragma once

// How a song's file is to be called: '{artist}/{album}/{track:02} {title}'.

#include <string>
#include <string_view>
#include <vector>

#include "zemhost/export/Columns.h"

namespace zemhost {

// The default.
constexpr std::string_view kUsualPattern = "{albumartist}/{album}/[{albumdisc}-]{track:02} {title}";

// The fields of a pattern that an album's layout decides, beside those of an export: whose folder it lies in,
// and the disc where an album has several.
constexpr std::string_view kAlbumArtistField = "albumartist";
constexpr std::string_view kAlbumDiscField = "albumdisc";

// What stands for a part of a path of which nothing is left.
constexpr std::string_view kUnknownName = "Unknown";

class NamePattern {
 public:
  // Reads a pattern: text, fields in braces, '/' between folders. {a|b} is the first field that is not empty,
  // what stands in [] goes with its '/' when all fields in it are, and "{{", "}}", "[[" and "]]" are the
  // signs themselves. Numbers may have a width, with zeros in front (":02") or blanks (":2"). Throws
  // HostError, which says what is wrong and where, and the known fields when one is not known.
  explicit NamePattern(std::string_view text);

  // The fields that stand in it, each once: names of an export's columns, and the two above.
  const std::vector<std::string> &fields() const { return fields_; }

  struct Names {
    std::vector<std::string> folders;  // each safe as a part of a path
    std::string file;                  // the text that safeName() makes the file's name from
  };

  // What a song with these values, which stand beside fields(), is called. An empty text outside [] becomes
  // "Unknown Artist" and the like, or nothing. A number of which 0 says nothing is nothing then, a date is
  // its day, and what is true is the name of its field.
  Names names(const Row &values) const;

 private:
  enum class Sign { Literal, Field, Slash, Open, Close };
  struct Token {
    Sign sign = Sign::Literal;
    std::string literal;
    std::vector<size_t> fields;  // positions in fields_, the first that is not empty counts
    size_t width = 0;
    char fill = ' ';
  };
  class Reader;

  std::string textOf(const Token &token, const Row &values) const;
  std::vector<std::string> texts(const Row &values) const;

  std::vector<std::string> fields_;
  std::vector<Token> tokens_;
};

}  // namespace zemhost
