#pragma once

// The numbers of a song in a person's units. Zero means "not known" in the database and shows as no text,
// except in the totals.

#include <cstdint>
#include <string>

namespace zemhost {

// "3:05", "1:02:03": whole minutes and seconds of milliseconds, the rest cut off.
std::string durationText(uint32_t milliseconds);

// As durationText, with days in front from 24 hours on: "2 days 3:04:05". "0:00" for nothing.
std::string totalTimeText(uint64_t milliseconds);

// "512 B", "48.1 kB", "3.4 MB", "1.25 GB", in powers of 1000.
std::string sizeText(uint64_t bytes);

// As sizeText, but "0 B" for nothing.
std::string totalSizeText(uint64_t bytes);

// "128 kbit/s".
std::string bitRateText(uint32_t kilobitsPerSecond);

// "44.1 kHz", with as many decimals as the rate needs.
std::string sampleRateText(uint32_t hertz);

// "2004-08-09 10:11:12", the date and time on the clock of whoever stored it: seconds since the start of
// 1904, in no time zone.
std::string dateText(uint32_t secondsSince1904);

// "music", "music, film": what the bits of a media type mean, those without a name as their number; empty for
// 0.
std::string mediaKindText(uint32_t bits);

// A star for each 20 of a rating of 0 to 100, and a half for 10 more: "****", "***½".
std::string ratingText(uint32_t rating);

// The number in decimal.
std::string numberText(uint32_t number);

// "1181 songs", "1 song".
std::string countText(uint64_t count, const std::string &singular, const std::string &plural);

}  // namespace zemhost
