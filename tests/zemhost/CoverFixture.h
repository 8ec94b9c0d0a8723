#pragma once

// A player of a few songs with covers of one colour each, and what the program makes of them.

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <png.h>
#include <string>
#include <vector>

#include "player/Pixels.h"
#include "samples/DatabaseWriter.h"
#include "samples/ImageDatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"
#include "tests/zemhost/RescueFixture.h"

namespace zemhost {

// The picture in a PNG file; an empty one when there is none.
inline player::Picture pngIn(const fs::path &file) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, file.c_str()) == 0) return {};
  image.format = PNG_FORMAT_RGB;
  player::Picture picture{image.width, image.height, std::string(PNG_IMAGE_SIZE(image), '\0')};
  if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) == 0) return {};
  return picture;
}

struct CoveredSong {
  std::u16string title;
  std::u16string artist;
  std::u16string album;
  uint32_t image = 0;  // its id
  uint64_t persistentId = 0;
  uint8_t mark = 0;  // 1 has a picture, 2 none
};

class CoverFixture : public testing::Test {
 protected:
  static constexpr uint32_t kSmallBytes = 2 * 100 * 100;
  static constexpr uint32_t kLargeBytes = 2 * 200 * 200;

  // Writes the songs, and an image of each of these ids in the usual two sizes, small and large. The list of
  // all songs holds those of `order`; without any there is none.
  void makePlayer(const std::vector<CoveredSong> &songs, const std::vector<uint32_t> &images = {},
                  const std::vector<uint32_t> &order = {}) const {
    std::vector<samples::Track> tracks;
    for (size_t i = 0; i < songs.size(); ++i) {
      const std::string name = std::to_string(i) + ".mp3";
      folder_.write("iPod/iPod_Control/Music/F00/" + name, "song " + std::to_string(i));
      samples::Track track;
      track.id = static_cast<uint32_t>(52 + i);
      track.objects = samples::SongObjects(
          samples::Variant::LittleEndian,
          {.title = songs[i].title,
           .path = u":iPod_Control:Music:F00:" + std::u16string(name.begin(), name.end()),
           .album = songs[i].album,
           .artist = songs[i].artist});
      track.words = {{0x70, static_cast<uint32_t>(songs[i].persistentId)},
                     {0x74, static_cast<uint32_t>(songs[i].persistentId >> 32)},
                     {0xa4, songs[i].mark},
                     {0x160, songs[i].image}};
      tracks.push_back(std::move(track));
    }
    std::vector<samples::Playlist> lists;
    if (!order.empty()) lists.push_back({.name = u"iPod", .master = true});
    for (const uint32_t song : order) lists.front().entries.push_back({.ref = 52 + song});
    folder_.write("iPod/iPod_Control/iTunes/iTunesDB",
                  samples::WriteLibrary(samples::OrdinaryLibrary(std::move(tracks), std::move(lists)),
                                        samples::Variant::LittleEndian));
    if (!images.empty()) writeArtwork(images);
  }

  void writeArtwork(const std::vector<uint32_t> &ids) const {
    std::vector<samples::StoredImage> images;
    std::string small;
    std::string large;
    for (const uint32_t id : ids) {
      const auto place = static_cast<uint32_t>(images.size());
      images.push_back({id,
                        1000 + id,
                        {{1028, place * kSmallBytes, kSmallBytes, 0, 0, 100, 100, ":F1028_1.ithmb"},
                         {1029, place * kLargeBytes, kLargeBytes, 0, 0, 200, 200, ":F1029_1.ithmb"}}});
      small += std::string(kSmallBytes, static_cast<char>(id));
      large += std::string(kLargeBytes, static_cast<char>(id));
    }
    folder_.write(artwork("ArtworkDB"), samples::WriteImageDatabase(images));
    folder_.write(artwork("F1028_1.ithmb"), small);
    folder_.write(artwork("F1029_1.ithmb"), large);
  }

  static fs::path artwork(const std::string &name) { return fs::path("iPod/iPod_Control/Artwork") / name; }
  fs::path player() const { return folder_.path() / "iPod"; }
  fs::path destination() const { return folder_.path() / "out"; }

  Outcome covers() const { return runZemhost({"covers", player(), destination()}); }
  Outcome rescue(const std::vector<std::string> &more = {}) const {
    std::vector<std::string> arguments = {"rescue", player(), destination(), "--covers"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runZemhost(arguments);
  }

  // The id of the image that a file shows, by its colour; 0 when it shows none.
  uint32_t shown(const std::string &name) const {
    const player::Picture picture = pngIn(destination() / name);
    if (picture.rgb.empty()) return 0;
    const uint32_t red = static_cast<unsigned char>(picture.rgb[0]);
    const uint32_t green = static_cast<unsigned char>(picture.rgb[1]);
    return red >> 3 << 3 | green >> 5;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const auto &[name, content] : filesBelow(destination())) names.push_back(name);
    return names;
  }

  support::TemporaryFolder folder_;
};

}  // namespace zemhost
