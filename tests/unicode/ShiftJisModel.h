#pragma once

#include <cstdint>
#include <string>

// The conversion of a stored string to Shift_JIS done the slow, literal way: one byte at a time into a buffer
// that really grows. It shares the page tables' data with the product and no code. `a` and `encode` as for
// ConvSJIS.
std::string ModelConvSJIS(std::string a, std::int32_t encode);
