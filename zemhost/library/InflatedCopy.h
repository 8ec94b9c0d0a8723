#pragma once

#include <cstdint>
#include <string>

#include "platform/carbon/Descriptor.h"
#include "player/DatabaseLocation.h"
#include "zemhost/files/TemporaryPath.h"

namespace zemhost {

// A private file with the inflated content of a compressed database, gone when the object goes. The class
// takes a player's volume from the path of the file that it loads: for a player the copy therefore has the
// usual place under a root of its own, to be mounted by the player's name while it is loaded.
class InflatedCopy {
 public:
  // Inflates the file of the location. Throws HostError, naming the file and what is wrong.
  explicit InflatedCopy(const player::DatabaseLocation &location);

  // The directory that stands for the player's root.
  const std::filesystem::path &root() const { return root_.path(); }
  const std::filesystem::path &file() const { return file_.path(); }
  uint64_t size() const { return size_; }
  // Bytes of the compressed file after its stream.
  uint64_t bytesLeft() const { return bytesLeft_; }
  // Hands the open copy on, which can be read even when its name has gone.
  carbon::Descriptor takeContent() { return std::move(content_); }

 private:
  // Removed in the opposite order.
  TemporaryPath root_ = makeTemporaryDirectory();
  TemporaryPath control_;
  TemporaryPath folder_;
  TemporaryPath file_;
  carbon::Descriptor content_;
  uint64_t size_ = 0;
  uint64_t bytesLeft_ = 0;
};

}  // namespace zemhost
