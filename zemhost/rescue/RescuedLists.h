#pragma once

// The playlists beside the copied music.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "zemhost/library/MusicLibrary.h"
#include "zemhost/output/ListFormat.h"
#include "zemhost/rescue/DestinationFolder.h"
#include "zemhost/rescue/Rescue.h"
#include "zemhost/rescue/RescuePlan.h"

namespace zemhost {

class RescuedLists {
 public:
  // `copyOf` gives a song's copy below the destination, or an empty name. What is written, and what could not
  // be, goes into `result`.
  RescuedLists(const MusicLibrary &library, const ListFormat &format, RescuePlan &plan,
               const DestinationFolder &destination, std::function<std::string(int32_t)> copyOf,
               RescueResult &result);

  // Writes a list for each playlist. A list of an earlier run is written anew as long as it loses none of its
  // entries; else it stays, and the new one gets a number and a remark. Other files are never replaced.
  void write(const std::vector<int32_t> &playlists);

 private:
  std::string textOf(int32_t playlist, const std::string &name);
  std::string contentOf(const std::string &file) const;
  bool isOthers(const std::string &file) const;
  bool takesNothingAway(const std::string &file, const std::string &text) const;
  void writeOne(int32_t playlist, const std::string &name, std::string file);

  const MusicLibrary &library_;
  const ListFormat &format_;
  RescuePlan &plan_;
  const DestinationFolder &destination_;
  std::function<std::string(int32_t)> copyOf_;
  RescueResult &result_;
};

}  // namespace zemhost
