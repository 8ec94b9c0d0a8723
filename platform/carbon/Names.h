#pragma once

// Which Mac names can stand on disk, and which are alike.

#include <string>
#include <string_view>

namespace carbon {

// True for a Mac name that can stand on disk: 1 to 63 bytes, no NUL, no colon, not "." and not "..".
bool isValidName(std::string_view macName);

// The name's code points with capital letters made small, for comparisons without regard to case. Bytes that
// are not UTF-8 stand for themselves. Names that are alike in this form take the same number of bytes.
std::u32string folded(std::string_view name);

}  // namespace carbon
