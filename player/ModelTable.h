#pragma once

// Which player a model number or the end of a serial number stands for.

#include <optional>
#include <string>
#include <string_view>

namespace player {

struct PlayerModel {
  std::string player;      // "iPod nano"
  std::string generation;  // "4"; empty where the name says it
  std::string capacity;    // "8 GB"; empty when it is not known
  std::string colour;      // "silver"; likewise

  // "iPod nano (generation 4), 8 GB, silver".
  std::string text() const;
};

// Of a model number as players state it ("MB598", "xA005LL/A"): its first letter says how the player was
// sold.
std::optional<PlayerModel> modelOfNumber(std::string_view number);

// Of a serial number: its last three characters, or four of the longer ones, stand for the model.
std::optional<PlayerModel> modelOfSerial(std::string_view serial);

// Of the number of a family, which says least: neither capacity nor colour.
std::optional<PlayerModel> modelOfFamily(unsigned family);

}  // namespace player
