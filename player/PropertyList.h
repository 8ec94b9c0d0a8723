#pragma once

#include <map>
#include <string>
#include <string_view>

namespace player {

// The texts, numbers and truths of the outermost dictionary of a property list in XML, as they are written,
// by their keys: "true" and "false" for truths. Lists and dictionaries inside it are passed over. What ends
// the reading is in PropertyXml.h; what stands before counts. The bytes must be fewer than 2 GB.
std::map<std::string, std::string> propertiesOf(std::string_view xml);

}  // namespace player
