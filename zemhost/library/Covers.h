#pragma once

// Which songs of a player have a cover, and the covers. The player's list of them is read when it is first
// asked for.

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "player/SongFacts.h"
#include "zemhost/library/PictureList.h"

namespace zemhost {

class Covers {
 public:
  // `files` must outlive this. A library that is on no player has no covers that are known.
  Covers(SongFiles &files, bool isOnPlayer) : files_(files), isOnPlayer_(isOnPlayer) {}

  // Whether there is a list of covers at all.
  bool areKnown() const { return list() != nullptr; }

  // Whether a song has an image; no value without a list of covers, or for a song that says too little of
  // itself.
  std::optional<bool> has(const player::SongFacts &song) const;

  // Its image, a position in the list; no value when it has none.
  std::optional<size_t> imageOf(const player::SongFacts &song) const;

  // The largest picture of these images that can be read. Throws HostError when there is none.
  KeptPicture largestKept(const std::set<size_t> &images) const { return list()->largestKept(images); }
  // The same as a file.
  PictureFile largest(const std::set<size_t> &images) const { return list()->largest(images); }

  // One line about what is left out of the list; empty when nothing is, and until it was asked for.
  std::string warning() const { return list_ ? list_->warning() : std::string(); }

 private:
  const PictureList *list() const;

  SongFiles &files_;
  bool isOnPlayer_;
  mutable std::unique_ptr<const PictureList> list_;  // read once
};

}  // namespace zemhost
