#pragma once

// What a library and its player say of themselves, as a list for people.

#include <string>
#include <vector>

#include "player/Device.h"
#include "zemhost/library/MusicLibrary.h"

namespace zemhost {

struct Fact {
  std::string label;  // "Model"
  std::string text;   // UTF-8 as it was found, not made safe; never empty
  // Whether it says whose player it is or where that person is: names, numbers of the device, places on this
  // machine.
  bool isPersonal = false;
};

struct LibraryFacts {
  std::vector<Fact> facts;  // what is known, in the order in which people read it
  player::Device device;    // nothing for a library that is on no player; its warnings are for the caller
};

// Looks at every song and playlist for the totals, and at the small files of the player.
LibraryFacts libraryFacts(const MusicLibrary &library);

// What the player is called: the name that its owner gave it, else that of its list of all songs; empty when
// it has none.
std::string playerName(const MusicLibrary &library, const player::Device &device);

// "iPod (generation 5), 30 GB, white, number MA002": as far as it is known.
std::string modelText(const player::Device &device);

}  // namespace zemhost
