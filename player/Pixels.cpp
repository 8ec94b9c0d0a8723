#include "player/Pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace player {

namespace {

using enum PixelForm;

uint32_t partAt(std::string_view bytes, size_t at) { return static_cast<unsigned char>(bytes[at]); }

// Five or six bits as eight, so that all of them set become all set.
uint32_t widened5(uint32_t bits) { return bits << 3 | bits >> 2; }
uint32_t widened6(uint32_t bits) { return bits << 2 | bits >> 4; }

// A slot being made into a picture.
class Decoder {
 public:
  Decoder(std::string_view bytes, const PictureFormat &format) : bytes_(bytes), format_(format) {
    picture_.width = format.width;
    picture_.height = format.height;
    picture_.rgb.resize(size_t{3} * format.width * format.height);
  }

  Picture run() {
    for (uint32_t y = 0; y < format_.height; ++y) {
      for (uint32_t x = 0; x < format_.width; ++x) takePixel(x, y);
    }
    return std::move(picture_);
  }

 private:
  void takePixel(uint32_t x, uint32_t y) {
    switch (format_.pixels) {
      case Rgb565:
        return put565(x, y, half(rowAt(y) + 2 * size_t{x}));
      case Rgb565Swapped:
        return put565(x, y, swappedHalf(rowAt(y) + 2 * size_t{x}));
      case Rgb565Turned:
        return put565(x, y, swappedHalf(2 * (size_t{format_.width - 1 - x} * format_.height + y)));
      case Rgb555:
        return put555(x, y, half(rowAt(y) + 2 * size_t{x}));
      case Rgb555Quarters:
        return put555(x, y, half(2 * placeInQuarters(x, y)));
      case Uyvy:
        return putUyvy(x, y);
      case I420:
        return putI420(x, y);
      case Jpeg:
        return;
    }
  }

  size_t rowAt(uint32_t y) const {
    return size_t{y} * (format_.rowBytes != 0 ? format_.rowBytes : size_t{2} * format_.width);
  }
  uint32_t half(size_t at) const { return partAt(bytes_, at) | partAt(bytes_, at + 1) << 8; }
  uint32_t swappedHalf(size_t at) const { return partAt(bytes_, at) << 8 | partAt(bytes_, at + 1); }

  // Of the bits of the place, from the lowest on, y has the even ones and x the odd ones.
  static size_t placeInQuarters(uint32_t x, uint32_t y) {
    size_t place = 0;
    for (unsigned bit = 0; bit < 16; ++bit) {
      place |= size_t{y >> bit & 1} << (2 * bit);
      place |= size_t{x >> bit & 1} << (2 * bit + 1);
    }
    return place;
  }

  void put(uint32_t x, uint32_t y, uint32_t red, uint32_t green, uint32_t blue) {
    char *const pixel = &picture_.rgb[3 * (size_t{y} * format_.width + x)];
    pixel[0] = static_cast<char>(red);
    pixel[1] = static_cast<char>(green);
    pixel[2] = static_cast<char>(blue);
  }
  void put565(uint32_t x, uint32_t y, uint32_t value) {
    put(x, y, widened5(value >> 11), widened6(value >> 5 & 63), widened5(value & 31));
  }
  void put555(uint32_t x, uint32_t y, uint32_t value) {
    put(x, y, widened5(value >> 10 & 31), widened5(value >> 5 & 31), widened5(value & 31));
  }

  // In thousandths, rounded; brightness begins at 16, colours have their middle at 128.
  void putYuv(uint32_t x, uint32_t y, uint32_t brightness, uint32_t u, uint32_t v) {
    const auto luma = 1164 * (static_cast<int32_t>(brightness) - 16);
    const auto blueness = static_cast<int32_t>(u) - 128;
    const auto redness = static_cast<int32_t>(v) - 128;
    const auto level = [](int32_t thousandths) {
      return static_cast<uint32_t>(std::clamp((thousandths + 500) / 1000, 0, 255));
    };
    put(x, y, level(luma + 1596 * redness), level(luma - 813 * redness - 391 * blueness),
        level(luma + 2018 * blueness));
  }
  void putUyvy(uint32_t x, uint32_t y) {
    const size_t row = y / 2 + (y % 2 == 0 ? 0 : format_.height / 2);
    const size_t pair = 2 * (row * format_.width + (size_t{x} & ~size_t{1}));
    putYuv(x, y, partAt(bytes_, pair + (x % 2 == 0 ? 1 : 3)), partAt(bytes_, pair), partAt(bytes_, pair + 2));
  }
  void putI420(uint32_t x, uint32_t y) {
    const size_t pixels = size_t{format_.width} * format_.height;
    const size_t colour = size_t{y / 2} * (format_.width / 2) + x / 2;
    putYuv(x, y, partAt(bytes_, size_t{y} * format_.width + x), partAt(bytes_, pixels + colour),
           partAt(bytes_, pixels + pixels / 4 + colour));
  }

  std::string_view bytes_;
  const PictureFormat &format_;
  Picture picture_;
};

struct Range {
  uint32_t from = 0;
  uint32_t to = 0;
};

// The rows or columns of a slot that are to be seen. A picture with a padding stands in the middle, and its
// size and the padding add up to the slot, but for one that is lost in rounding; one without stands at the
// beginning.
Range visibleRange(uint32_t slot, uint32_t size, int32_t padding) {
  const Range all{0, slot};
  if (padding < 0 || size == 0) return all;
  const auto before = static_cast<uint32_t>(padding);
  if (before == 0) return {0, std::min(size, slot)};
  const bool isCentred = size + before + 1 >= slot && size + before <= slot + 1;
  if (isCentred) return 2 * before < slot ? Range{before, slot - before} : all;
  return before < size && size <= slot ? Range{before, size} : all;
}

}  // namespace

Picture decodedSlot(std::string_view bytes, const PictureFormat &format) {
  const uint64_t needed = pixelBytes(format);
  if (format.pixels == Jpeg || needed == 0 || bytes.size() < needed) return {};
  return Decoder(bytes, format).run();
}

Picture visiblePart(Picture slot, const VisiblePart &part) {
  const Range rows = visibleRange(slot.height, part.height, part.verticalPadding);
  const Range columns = visibleRange(slot.width, part.width, part.horizontalPadding);
  Picture seen{columns.to - columns.from, rows.to - rows.from, {}};
  if (seen.width == slot.width && seen.height == slot.height) return slot;
  seen.rgb.reserve(size_t{3} * seen.width * seen.height);
  for (uint32_t y = rows.from; y < rows.to; ++y)
    seen.rgb.append(slot.rgb, 3 * (size_t{y} * slot.width + columns.from), size_t{3} * seen.width);
  return seen;
}

std::string_view jpegIn(std::string_view bytes) {
  const size_t from = bytes.find("\xFF\xD8");
  const size_t to = bytes.rfind("\xFF\xD9");
  if (from == std::string_view::npos || to == std::string_view::npos || to < from + 2) return {};
  return bytes.substr(from, to + 2 - from);
}

}  // namespace player
