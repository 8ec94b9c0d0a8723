#pragma once

// The formats of an export, by the names that options call them.

#include <filesystem>
#include <string>
#include <vector>

namespace zemhost {

const std::vector<std::string> &exportFormats();

// The format that the ending of a file's name stands for, whatever its case; empty for an ending that stands
// for none.
std::string formatOfEnding(const std::filesystem::path &file);

}  // namespace zemhost
