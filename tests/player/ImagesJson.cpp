#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "player/Error.h"
#include "player/ImageDatabase.h"
#include "player/StatedFormats.h"
#include "tests/player/Printers.h"

namespace {

using player::Json;

std::string contentOf(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Json listOf(const std::string &path) {
  try {
    const player::ImageDatabase found = player::readImageDatabase(contentOf(path));
    Json json = {
        {"images", Json::array()}, {"albums", Json::array()}, {"broken", found.brokenAt.has_value()}};
    for (const player::Image &image : found.images) {
      Json pictures = Json::array();
      for (const player::StoredPicture &one : image.pictures) {
        pictures.push_back({one.format, one.offset, one.bytes, one.visible.verticalPadding,
                            one.visible.horizontalPadding, one.visible.height, one.visible.width,
                            player::hexOf(one.file), one.isWhole});
      }
      json["images"].push_back({image.id, image.song, pictures});
    }
    for (const player::PhotoAlbum &album : found.albums)
      json["albums"].push_back({player::hexOf(album.name), album.isAll, album.images});
    return json;
  } catch (const player::PlayerError &) {
    return nullptr;
  }
}

Json jsonOf(const player::Picture &picture) {
  return {picture.width, picture.height, player::hexOf(picture.rgb)};
}

Json pictureOf(std::istream &words) {
  uint32_t number = 0;
  uint64_t offset = 0;
  uint64_t bytes = 0;
  player::VisiblePart part;
  std::string path;
  std::string stated;
  words >> number >> offset >> bytes >> part.verticalPadding >> part.horizontalPadding >> part.height >>
      part.width >> path >> stated;
  const auto format = player::pictureFormat(number, bytes, player::statedFormats(contentOf(stated)));
  if (!format) return nullptr;
  const std::string content = contentOf(path);
  const std::string_view slot =
      std::string_view(content).substr(std::min<size_t>(offset, content.size()), bytes);
  if (format->pixels == player::PixelForm::Jpeg)
    return {{"jpeg", player::hexOf(std::string(player::jpegIn(slot)))}};
  const player::Picture whole = player::decodedSlot(slot, *format);
  return {{"slot", jsonOf(whole)}, {"seen", jsonOf(player::visiblePart(whole, part))}};
}

}  // namespace

namespace player {

Json imagesJson(const std::string &question) {
  std::istringstream words(question);
  std::string what;
  std::string path;
  words >> what;
  return what == "list" && words >> path ? listOf(path) : pictureOf(words);
}

}  // namespace player
