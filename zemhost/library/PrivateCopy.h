#pragma once

#include <cstdint>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/DatabaseLocation.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

// A private file in place of a player's database, gone when the object goes. The class takes a player's
// volume from the path of the file that it loads: for a player the copy therefore has the usual place under a
// root of its own, to be mounted by the player's name while it is loaded.
class PrivateCopy {
 public:
  // An empty file for the database of this location. Throws HostError, naming what cannot be made.
  explicit PrivateCopy(const player::DatabaseLocation &location);

  // The directory that stands for the player's root.
  const std::filesystem::path &root() const { return root_.path(); }
  const std::filesystem::path &file() const { return file_.path(); }
  // The open copy, for reading and writing.
  int content() const { return content_.number(); }
  uint64_t size() const;
  // Hands the open copy on, which can be read even when its name has gone.
  carbon::Descriptor takeContent() { return std::move(content_); }

 private:
  // Removed in the opposite order.
  TemporaryPath root_ = makeTemporaryDirectory();
  TemporaryPath control_;
  TemporaryPath folder_;
  TemporaryPath file_;
  carbon::Descriptor content_;
};

// Inflates the compressed file of a location into an empty copy, and returns the number of bytes that stand
// after its stream. Throws HostError or PlayerError, naming the file and what is wrong; what was inflated
// until then is in the copy.
uint64_t inflateInto(PrivateCopy &copy, const player::DatabaseLocation &location);

}  // namespace zemhost
