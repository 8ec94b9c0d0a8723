#pragma once

// A player's lists of pictures: ArtworkDB, the covers of songs, and Photo Database. They use the tags of the
// music database for other things.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "player/Pixels.h"

namespace player {

// One size of an image, and where it stands.
struct StoredPicture {
  uint32_t format = 0;
  uint32_t offset = 0;  // in its file
  uint32_t bytes = 0;
  VisiblePart visible;
  std::string file;      // as the list names it, UTF-8: ":F1028_1.ithmb"; empty when it names none
  bool isWhole = false;  // the photo itself, and no smaller copy

  bool operator==(const StoredPicture &) const = default;
};

struct Image {
  uint32_t id = 0;
  uint64_t song = 0;                    // persistent id of the song it belongs to; 0 for photos
  std::vector<StoredPicture> pictures;  // in the order of the list
};

struct PhotoAlbum {
  std::string name;              // UTF-8
  bool isAll = false;            // holds every photo
  std::vector<uint32_t> images;  // ids, in order
};

struct ImageDatabase {
  std::vector<Image> images;
  std::vector<PhotoAlbum> albums;
  std::optional<uint64_t> brokenAt;  // where the first chunk stands that is none, or too long

  // The image of this id, or of the song with this persistent id: the first one by its place in the list;
  // nullptr when there is none. Takes about log2(images) steps.
  const Image *withId(uint32_t id) const;
  const Image *ofSong(uint64_t persistentId) const;

  // Both by id, for the look-ups; positions in images.
  std::vector<std::pair<uint64_t, size_t>> byId;
  std::vector<std::pair<uint64_t, size_t>> bySong;
};

// Longer files are refused; that of 100,000 images in three sizes takes 80 MB.
constexpr uint64_t kMostImageDatabaseBytes = 128ULL << 20;

// What the list of pictures in an open file says. Chunks are followed by their lengths, each checked against
// what holds it; what stands behind a broken one up to the end of its list is left out. Throws PlayerError,
// without the file's name, when it is none of these lists or too long, and std::system_error when it cannot
// be read.
ImageDatabase readImageDatabase(int file);

// The same of its bytes.
ImageDatabase readImageDatabase(std::string_view bytes);

}  // namespace player
