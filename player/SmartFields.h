#pragma once

// What the rules of smart playlists can ask of a song.

#include <cstdint>
#include <optional>
#include <string_view>

#include "player/SongFacts.h"

namespace player {

enum class FieldKind {
  Text,
  Number,
  Date,
  Duration,
  Size,
  BitRate,
  SampleRate,
  Rating,
  Flag,
  MediaKind,
  Playlist
};

struct SmartField {
  uint32_t number = 0;
  FieldKind kind = FieldKind::Number;
  std::string_view name;  // "Artist"
  uint32_t text = 0;      // of a text, its number in a song; 0: no song holds it
  // Of all others but playlists, what the song says; nullptr: no song says it.
  std::optional<int64_t> (*of)(const SongFacts &song) = nullptr;
};

// The field of a number; nullptr for one that is not known.
const SmartField *smartField(uint32_t number);

}  // namespace player
