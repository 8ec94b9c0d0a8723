#pragma once

// What the readers make of a player's files as JSON, for readers of another making to compare. A path of a
// file that does not exist, and for some readers one that is not what it should be, throws.

#include <string>

#include "tests/player/FactsJson.h"

namespace player {

// Names in lists need not be valid text: their bytes.
inline std::string hexOf(const std::string &bytes) {
  constexpr const char *kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    text += kDigits[number >> 4];
    text += kDigits[number & 15];
  }
  return text;
}

// The lists of pictures and the pictures. "list FILE" asks for a list; "picture FORMAT OFFSET BYTES VERTICAL
// HORIZONTAL HEIGHT WIDTH FILE [STATED]" for a picture in a file, with what a list says of it and the file in
// which a player states its formats.
Json imagesJson(const std::string &question);

// The playlists of a database, and the player that it lies on.
Json listsJson(const std::string &path);

// The songs and lists of a newest nano, by its Library.itdb; null for one that is refused.
Json nanoJson(const std::string &path);

// A file of a shuffle read as a list of songs, and as counts of plays.
Json shufflesJson(const std::string &path);

// The songs of a database.
Json songsJson(const std::string &path);

}  // namespace player
