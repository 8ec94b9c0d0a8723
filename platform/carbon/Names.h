#pragma once

// Names of files and volumes, as the Mac writes them and as the disk has them.

#include <cstddef>
#include <string>
#include <string_view>

namespace carbon {

constexpr size_t kLongestName = 63;

// True for a Mac name that can stand on disk: 1 to 63 bytes, no NUL, no colon, not "." and not "..".
bool isValidName(std::string_view macName);

// The name with every '/' and ':' exchanged, which turns a Mac name into the disk's and back. Whole paths
// may be given, since the separators are the two characters that change places.
std::string exchanged(std::string name);

// The name's code points with capital letters made small, for comparisons without regard to case. Bytes that
// are not UTF-8 stand for themselves. Names that are alike in this form take the same number of bytes.
std::u32string folded(std::string_view name);

}  // namespace carbon
