// Pictures of a real kind, decoded, against those that another program made of the same slots.

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <png.h>
#include <set>
#include <sstream>
#include <string>

#include "player/ImageDatabase.h"
#include "tests/support/Folders.h"

namespace player {
namespace {

namespace fs = std::filesystem;

fs::path collection() { return support::SharedFolder() / "data" / "players" / "classic-covers"; }

std::string contentOf(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Picture pictureIn(const fs::path &file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, file.c_str()) == 0) return {};
  image.format = PNG_FORMAT_RGB;
  Picture picture{image.width, image.height, std::string(PNG_IMAGE_SIZE(image), '\0')};
  if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) == 0) return {};
  return picture;
}

TEST(ReferencePictures, AreEqualPixelForPixel) {
  if (!exists(collection())) GTEST_SKIP() << "the collection of players is not there";
  const ImageDatabase database = readImageDatabase(contentOf(collection() / "ArtworkDB"));
  EXPECT_EQ(database.brokenAt, std::nullopt);
  EXPECT_EQ(database.images.size(), 10U);
  std::set<std::string> compared;
  for (const Image &image : database.images) {
    for (const StoredPicture &stored : image.pictures) {
      const auto format = pictureFormat(stored.format, stored.bytes, {});
      ASSERT_TRUE(format) << stored.format;
      const std::string content = contentOf(collection() / stored.file.substr(1));
      const Picture slot =
          decodedSlot(std::string_view(content).substr(stored.offset, stored.bytes), *format);
      std::ostringstream name;
      name << stored.file.substr(1, stored.file.find('.') - 1) << "_off" << stored.offset << "_decl"
           << stored.visible.width << 'x' << stored.visible.height << "_slot" << slot.width << 'x'
           << slot.height << ".png";
      EXPECT_EQ(pictureIn(collection() / name.str()), slot) << name.str();
      compared.insert(name.str());
      const Picture seen = visiblePart(slot, stored.visible);
      EXPECT_EQ(seen.width, stored.visible.width);
      EXPECT_EQ(seen.height, stored.visible.height);
    }
  }
  EXPECT_EQ(compared.size(), 30U);
}

}  // namespace
}  // namespace player
