#pragma once

#include <string>

#include "player/Pixels.h"

namespace zemhost {

// The bytes of a PNG file with the pixels of a picture, which must have some; the same for the same picture.
// Throws HostError when the library that makes them says so.
std::string pngOf(const player::Picture &picture);

}  // namespace zemhost
