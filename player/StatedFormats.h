#pragma once

// The forms of pictures that a player states itself, in its file SysInfoExtended.

#include <string_view>
#include <vector>

#include "player/PictureFormat.h"

namespace player {

// The formats that stand under "AlbumArt" and "ImageSpecifications" of a property list in XML, in its order.
// Those whose pixels are of no known form are left out. What ends the reading is in PropertyXml.h; what
// stands before counts.
std::vector<PictureFormat> statedFormats(std::string_view xml);

// A file of more bytes states none.
constexpr size_t kMostStatedBytes = size_t{1} << 20;

}  // namespace player
