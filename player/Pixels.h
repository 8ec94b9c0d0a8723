#pragma once

// From the bytes of a slot to a picture.

#include <cstdint>
#include <string>
#include <string_view>

#include "player/PictureFormat.h"

namespace player {

struct Picture {
  uint32_t width = 0;
  uint32_t height = 0;
  std::string rgb;  // three bytes a pixel, row by row from the top

  bool operator==(const Picture &) const = default;
};

// The part of a slot that is to be seen, as a list of pictures states it.
struct VisiblePart {
  int16_t verticalPadding = 0;
  int16_t horizontalPadding = 0;
  uint16_t height = 0;
  uint16_t width = 0;

  bool operator==(const VisiblePart &) const = default;
};

// All of a slot, whose first bytes are these. An empty picture when they are fewer than pixelBytes() says,
// and for a format in JPEG. Takes time and memory in proportion to the pixels.
Picture decodedSlot(std::string_view bytes, const PictureFormat &format);

// What is to be seen of a slot; all of it when the part says nothing that can be.
Picture visiblePart(Picture slot, const VisiblePart &part);

// The JPEG file in a slot, from its first mark to its last; empty when there is none.
std::string_view jpegIn(std::string_view bytes);

}  // namespace player
