// Writes lists of pictures as players keep them: ArtworkDB and Photo Database.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace samples {

// One size of an image, and where it stands.
struct StoredSize {
  uint32_t format = 0;
  uint32_t offset = 0;  // in the file
  uint32_t bytes = 0;
  int16_t verticalPadding = 0;
  int16_t horizontalPadding = 0;
  uint16_t height = 0;
  uint16_t width = 0;
  std::string file{};  // ASCII, ":F1028_1.ithmb"
  bool whole = false;  // a photo itself
};

struct StoredImage {
  uint32_t id = 0;
  uint64_t song = 0;  // persistent id
  std::vector<StoredSize> sizes{};
};

struct ImageAlbum {
  std::string name{};  // UTF-8
  uint8_t kind = 6;    // 1: of all photos
  std::vector<uint32_t> images{};
};

// The bytes of the whole file: images, albums, and an empty list of formats.
std::string WriteImageDatabase(const std::vector<StoredImage> &images,
                               const std::vector<ImageAlbum> &albums = {});

}  // namespace samples
