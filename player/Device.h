#pragma once

// What a player says of itself, in its small files.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/ModelTable.h"

namespace player {

// What is not known is empty.
struct Device {
  std::string modelNumber;  // as the player states it, "MB598"
  std::string serialNumber;
  unsigned family = 0;               // of players, as it states it
  std::optional<PlayerModel> model;  // that the first of these stands for which is known
  std::string firmware;              // its version, "3.0.2"
  std::string guid;                  // of the player, as it states it
  std::string name;                  // that the owner gave it
  std::string user;                  // of the computer it was set up with
  std::string computer;
  std::optional<int32_t> syncZone;   // of the last synchronisation, in seconds east of UTC
  std::optional<int32_t> clockZone;  // of the player's clock, likewise
  std::vector<std::string>
      files;  // those of its known files that are there, from its root: "iPod_Control/iTunes/iTunesDB"
  std::vector<std::string> warnings;  // a line for each that is left out
};

// Reads the files of the player whose disk has this root. Never throws for what stands in them: what is wrong
// with one is a line of warnings.
Device readDevice(const std::filesystem::path &root);

// The zone that the header of an open database states.
std::optional<int32_t> syncZoneOf(int database);

// What the bytes of single files say, added to what is known; what is known already stays. False when they
// say nothing of a player.
bool addSysInfo(std::string_view bytes, Device &device);
bool addSysInfoExtended(std::string_view bytes, Device &device);
bool addDeviceInfo(std::string_view bytes, Device &device);
bool addPreferences(std::string_view bytes, Device &device);

// Sets the model from what is known by then.
void findModel(Device &device);

}  // namespace player
