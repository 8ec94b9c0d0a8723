// What the reader of pictures makes of them. The first byte chooses: 0 is followed by a list of pictures, 1
// by a picture, 2 by the file in which a player states its formats.

#include <string>
#include <string_view>

#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "player/Error.h"
#include "player/Fields.h"
#include "player/ImageDatabase.h"
#include "player/StatedFormats.h"

namespace {

using fuzz::Require;

void ReadList(std::string_view bytes) {
  try {
    const player::ImageDatabase found = player::readImageDatabase(bytes);
    Require(!found.brokenAt || *found.brokenAt <= bytes.size(), "broken behind the end");
    size_t pictures = 0;
    size_t texts = 0;
    for (const player::Image &image : found.images) {
      pictures += image.pictures.size();
      for (const player::StoredPicture &picture : image.pictures) texts += picture.file.size();
      const player::Image *const same = found.withId(image.id);
      Require(same != nullptr && same->id == image.id && same <= &image, "an image is not found by its id");
      const player::Image *const ofSong = found.ofSong(image.song);
      Require(ofSong != nullptr && ofSong->song == image.song && ofSong <= &image, "nor by its song");
    }
    for (const player::PhotoAlbum &album : found.albums) {
      texts += album.name.size();
      pictures += album.images.size();
    }
    // No byte belongs to two records, and a unit of two bytes becomes three at most.
    constexpr size_t kShortestRecord = 12;
    Require((pictures + found.images.size() + found.albums.size()) * kShortestRecord <= bytes.size(),
            "more records than bytes");
    Require(texts <= bytes.size() / 2 * 3, "the texts are longer than the file");
  } catch (const player::PlayerError &) {
    return;  // one line about what is wrong
  }
}

// A format of the player's own, what is to be seen, a number, and the slot.
void DecodePicture(std::string_view bytes) {
  constexpr size_t kBefore = 20;
  if (bytes.size() < kBefore) return;
  const player::Fields fields(bytes);
  const auto half = [&](size_t at) { return *fields.half(at); };
  player::PictureFormat stated{half(0), half(2), half(4), {}, half(6), half(8)};
  stated.pixels = static_cast<player::PixelForm>(half(10) % 8);
  const player::VisiblePart part{static_cast<int16_t>(half(12)), static_cast<int16_t>(half(14)), half(16),
                                 half(18)};
  const std::string_view slot = bytes.substr(kBefore);
  const auto format = player::pictureFormat(half(0), slot.size(), {stated});
  if (!format) return;
  if (format->pixels == player::PixelForm::Jpeg) {
    Require(player::jpegIn(slot).size() <= slot.size(), "a JPEG longer than its slot");
    return;
  }
  Require(player::pixelBytes(*format) <= slot.size(), "a format that does not fit the bytes");
  const player::Picture whole = player::decodedSlot(slot, *format);
  Require(whole.width == format->width && whole.height == format->height, "not the size of its format");
  Require(whole.rgb.size() == size_t{3} * whole.width * whole.height, "not three bytes a pixel");
  const player::Picture seen = player::visiblePart(whole, part);
  Require(seen.width >= 1 && seen.width <= whole.width && seen.height >= 1 && seen.height <= whole.height,
          "a part that is not in the whole");
  Require(seen.rgb.size() == size_t{3} * seen.width * seen.height, "not three bytes a pixel that is seen");
}

void ReadFormats(std::string_view xml) {
  const auto formats = player::statedFormats(xml);
  constexpr size_t kShortestFormat = 100;  // of a dictionary with its four keys
  Require(formats.size() * kShortestFormat <= xml.size(), "more formats than the file can state");
  for (const player::PictureFormat &format : formats)
    Require(player::pixelBytes(format) != 0, "a format in which no picture can be");
}

}  // namespace

FUZZ_TARGET(pictures) {
  if (size == 0) return;
  const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  switch (data[0]) {
    case 0:
      ReadList(bytes);
      break;
    case 1:
      DecodePicture(bytes);
      break;
    case 2:
      ReadFormats(bytes);
      break;
    default:
      break;
  }
}
