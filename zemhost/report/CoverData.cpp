#include "zemhost/report/CoverData.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <nettle/base64.h>
#include <string_view>

#include "host/Error.h"
#include "zemhost/output/Jpeg.h"

namespace zemhost {

namespace {

constexpr uint32_t kWidest = 320;  // pixels; players keep no larger ones for their own screens
constexpr std::array<int, 3> kQualities = {85, 75, 60};

// The picture in this many pixels, each the mean of those that it covers. It is never made larger.
player::Picture scaled(const player::Picture &picture, uint32_t width, uint32_t height) {
  player::Picture small{width, height, {}};
  small.rgb.reserve(size_t{3} * width * height);
  for (uint32_t y = 0; y < height; ++y) {
    const auto top = static_cast<uint32_t>(uint64_t{y} * picture.height / height);
    const auto bottom = static_cast<uint32_t>(uint64_t{y + 1} * picture.height / height);
    for (uint32_t x = 0; x < width; ++x) {
      const auto left = static_cast<uint32_t>(uint64_t{x} * picture.width / width);
      const auto right = static_cast<uint32_t>(uint64_t{x + 1} * picture.width / width);
      std::array<uint64_t, 3> sums{};
      for (uint32_t row = top; row < bottom; ++row) {
        const char *pixel = &picture.rgb[(size_t{row} * picture.width + left) * 3];
        for (uint32_t column = left; column < right; ++column) {
          for (uint64_t &sum : sums) sum += static_cast<unsigned char>(*pixel++);
        }
      }
      // There is one at least, since no more are wanted than there are.
      const uint64_t pixels = std::max(uint64_t{1}, uint64_t{bottom - top} * (right - left));
      for (const uint64_t sum : sums) small.rgb += static_cast<char>((sum + pixels / 2) / pixels);
    }
  }
  return small;
}

std::string addressOf(std::string_view jpeg) {
  std::string address = "data:image/jpeg;base64,";
  const size_t start = address.size();
  address.resize(start + BASE64_ENCODE_RAW_LENGTH(jpeg.size()));
  base64_encode_raw(&address[start], jpeg.size(), reinterpret_cast<const uint8_t *>(jpeg.data()));
  return address;
}

}  // namespace

std::string coverAddress(const KeptPicture &picture) {
  const player::Picture whole = picture.jpeg.empty() ? picture.pixels : pixelsOfJpeg(picture.jpeg);
  if (whole.width == 0 || whole.height == 0) throw HostError("the picture has no pixels");
  const uint32_t longer = std::max(whole.width, whole.height);
  for (uint32_t side = std::min(longer, kWidest);; side = side * 3 / 4) {
    const auto part = [&](uint32_t length) {
      return std::max(1U, static_cast<uint32_t>(uint64_t{length} * side / longer));
    };
    const player::Picture fitting = scaled(whole, part(whole.width), part(whole.height));
    for (const int quality : kQualities) {
      std::string address = addressOf(jpegOf(fitting, quality));
      if (address.size() <= kMostCoverBytes) return address;
    }
  }
}

std::optional<size_t> CoverData::add(const std::set<size_t> &images) {
  if (images.empty()) return std::nullopt;
  const auto [known, isNew] = known_.try_emplace(images);
  if (isNew) known->second = load(images);
  if (!known->second) ++unreadable_;
  return known->second;
}

std::optional<size_t> CoverData::load(const std::set<size_t> &images) {
  try {
    const auto [place, isNew] =
        places_.try_emplace(coverAddress(covers_.largestKept(images)), addresses_.size());
    if (isNew) addresses_.push_back(place->first);
    return place->second;
  } catch (const HostError &) {
    return std::nullopt;
  }
}

}  // namespace zemhost
