#pragma once

#include <string>
#include <string_view>

#include "player/Pixels.h"

namespace zemhost {

// The bytes of a JPEG file with the pixels of a picture, which must have some. `quality` is 1 to 100; the
// colours have half the resolution. Throws HostError when the library that makes them says so.
std::string jpegOf(const player::Picture &picture, int quality);

// The pixels of a JPEG file. Throws HostError for what is no whole file that can be read, and for one of more
// than 16 million pixels, which no player keeps.
player::Picture pixelsOfJpeg(std::string_view bytes);

}  // namespace zemhost
