// Prints what the reader makes of lists of pictures and of pictures, for a reader of another making to
// compare: for each line of standard input one line of JSON. "list FILE" names a list of pictures; "picture
// FORMAT OFFSET BYTES VERTICAL HORIZONTAL HEIGHT WIDTH FILE [STATED]" a picture in a file, with what a list
// says of it and the file in which a player states its formats.

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "player/Error.h"
#include "player/ImageDatabase.h"
#include "player/StatedFormats.h"

namespace {

using Json = nlohmann::ordered_json;

std::string contentOf(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// Names in lists need not be valid text: their bytes.
std::string hexOf(const std::string &bytes) {
  constexpr const char *kDigits = "0123456789abcdef";
  std::string text;
  for (const char byte : bytes) {
    const auto number = static_cast<unsigned char>(byte);
    text += kDigits[number >> 4];
    text += kDigits[number & 15];
  }
  return text;
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
                            hexOf(one.file), one.isWhole});
      }
      json["images"].push_back({image.id, image.song, pictures});
    }
    for (const player::PhotoAlbum &album : found.albums)
      json["albums"].push_back({hexOf(album.name), album.isAll, album.images});
    return json;
  } catch (const player::PlayerError &) {
    return nullptr;
  }
}

Json jsonOf(const player::Picture &picture) { return {picture.width, picture.height, hexOf(picture.rgb)}; }

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
  if (format->pixels == player::PixelForm::Jpeg) return {{"jpeg", hexOf(std::string(player::jpegIn(slot)))}};
  const player::Picture whole = player::decodedSlot(slot, *format);
  return {{"slot", jsonOf(whole)}, {"seen", jsonOf(player::visiblePart(whole, part))}};
}

}  // namespace

int main() {
  try {
    for (std::string line; std::getline(std::cin, line);) {
      std::istringstream words(line);
      std::string what;
      words >> what;
      std::string path;
      const Json json = what == "list" && words >> path ? listOf(path) : pictureOf(words);
      std::cout << json.dump() << '\n';
    }
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
