#pragma once

// A player's list of pictures, and the pictures in the files that it names.

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/carbon/Descriptor.h"
#include "player/ImageDatabase.h"
#include "player/PictureFormat.h"
#include "player/Pixels.h"
#include "zemhost/library/SongFiles.h"

namespace zemhost {

// A picture as the player keeps it: pixels, or a JPEG file. One of the two is empty.
struct KeptPicture {
  player::Picture pixels;
  std::string jpeg;
};

// A picture as a file that other programs read.
struct PictureFile {
  std::string bytes;
  std::string extension;  // ".png", or ".jpg" for a picture that the player keeps so
};

class PictureList {
 public:
  // Reads the list at a place of the player, colon-separated, and the forms of pictures that the player
  // states. Files are found through `files`, and so lie on the player. `pictures` is the folder that the
  // list's names of files start from.
  PictureList(SongFiles &files, const std::string &place, std::string pictures);

  // Whether there is such a list. One that is damaged or no such list at all counts as one without images.
  bool isThere() const { return isThere_; }
  // One line about what is wrong with it; empty when nothing is.
  const std::string &warning() const { return warning_; }
  const player::ImageDatabase &images() const { return images_; }

  // The largest of the pictures of some images (positions in the list) that can be read; of two that are as
  // large, the first. The whole photos are not looked at. Throws HostError, saying what is wrong
  // with the largest, when there is none.
  KeptPicture largestKept(const std::set<size_t> &images) const;
  // The same as a file.
  PictureFile largest(const std::set<size_t> &images) const;

  // The file of a photo itself, as the list names it; one that is not there when it names none.
  SongFile wholePhoto(const player::Image &image) const;
  // Opens such a file. Throws HostError, naming it.
  carbon::Descriptor open(const SongFile &photo) const;

 private:
  struct Candidate {
    const player::StoredPicture *picture = nullptr;
    player::PictureFormat format;
    uint64_t pixels = 0;
  };

  void read(const std::string &place);
  void readStatedFormats();
  std::vector<Candidate> candidates(const std::set<size_t> &images) const;
  KeptPicture load(const Candidate &candidate) const;

  SongFiles &files_;
  std::string pictures_;
  bool isThere_ = false;
  std::string warning_;
  player::ImageDatabase images_;
  std::vector<player::PictureFormat> stated_;
};

}  // namespace zemhost
