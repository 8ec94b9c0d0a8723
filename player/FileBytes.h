#pragma once

// Reading and writing bytes of open files.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace player {

// Reads up to `size` bytes at an offset into `bytes` and returns how many there were: fewer only at the end
// of the file. Throws std::system_error on a read error.
size_t readAt(int file, uint64_t offset, char *bytes, size_t size);
std::string readAt(int file, uint64_t offset, size_t size);

// Writes all of the bytes, in as many steps as it takes. Throws std::system_error on a write error.
void writeAll(int file, std::string_view bytes);

}  // namespace player
