#pragma once

#include <string_view>

#include "zemhost/rescue/SongTags.h"

namespace zemhost {

// As writeTags(), in this process; never Broken. `file` stays open.
TagOutcome writeTagsHere(int file, std::string_view extension, const SongTags &tags, TagMode mode);

}  // namespace zemhost
