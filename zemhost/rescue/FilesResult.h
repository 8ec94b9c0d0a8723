#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zemhost {

// What came of writing pictures or lists.
struct FilesResult {
  uint64_t written = 0;
  uint64_t alreadyThere = 0;
  uint64_t without = 0;               // albums and songs without one
  uint64_t evaded = 0;                // names that another file has
  std::vector<std::string> problems;  // what could not be written, and why
};

}  // namespace zemhost
