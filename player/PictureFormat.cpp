#include "player/PictureFormat.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace player {

namespace {

using enum PixelForm;

// By the player's own numbers; of one number the meanings differ in their bytes.
constexpr PictureFormat kKnown[] = {{1005, 80, 80},
                                    {1007, 480, 864},
                                    {1009, 42, 30},
                                    {1010, 240, 240},
                                    {1013, 220, 176, Rgb565Turned},
                                    {1013, 50, 50},
                                    {1015, 130, 88},
                                    {1015, 58, 58},
                                    {1016, 140, 140},
                                    {1016, 57, 57, Rgb565, 116},
                                    {1017, 56, 56},
                                    {1019, 720, 480, Uyvy},
                                    {1020, 176, 220, Rgb565Turned},
                                    {1023, 176, 132, Rgb565Swapped},
                                    {1024, 320, 240},
                                    {1027, 100, 100},
                                    {1028, 100, 100},
                                    {1029, 200, 200},
                                    {1031, 42, 42},
                                    {1032, 42, 37},
                                    {1036, 50, 41},
                                    {1055, 128, 128},
                                    {1056, 128, 128},
                                    {1060, 320, 320},
                                    {1061, 56, 55},
                                    {1061, 56, 56},
                                    {1066, 64, 64},
                                    {1067, 720, 480, I420, 0, 691200},
                                    {1068, 128, 128},
                                    {1071, 240, 240},
                                    {1073, 240, 240},
                                    {1074, 50, 50},
                                    {1078, 80, 80},
                                    {1079, 80, 80},
                                    {1081, 640, 480, Jpeg},
                                    {1083, 240, 320},
                                    {1084, 240, 240},
                                    {1085, 88, 88},
                                    {1087, 384, 384},
                                    {1089, 58, 58},
                                    {1092, 80, 80},
                                    {1093, 512, 512},
                                    {2002, 50, 50, Rgb565Swapped},
                                    {2003, 150, 150, Rgb565Swapped},
                                    {3001, 256, 256, Rgb555Quarters},
                                    {3002, 128, 128, Rgb555Quarters},
                                    {3003, 64, 64, Rgb555Quarters},
                                    {3004, 56, 55, Rgb555},
                                    {3005, 320, 320, Rgb555},
                                    {3006, 56, 56, Rgb555, 0, 8192},
                                    {3007, 88, 88, Rgb555, 0, 16384},
                                    {3008, 640, 480, Rgb555},
                                    {3009, 160, 120, Rgb555},
                                    {3011, 80, 79, Rgb555}};

bool isPowerOfTwo(uint32_t number) { return number != 0 && (number & (number - 1)) == 0; }

// Whether rows of this form can have this size.
bool isPossible(const PictureFormat &format) {
  switch (format.pixels) {
    case Uyvy:
    case I420:
      return format.width % 2 == 0 && format.height % 2 == 0 && format.rowBytes == 0;
    case Rgb555Quarters:
      return format.width == format.height && isPowerOfTwo(format.width) && format.rowBytes == 0;
    case Rgb565Turned:
      return format.rowBytes == 0;
    case Jpeg:
      return true;
    case Rgb565:
    case Rgb565Swapped:
    case Rgb555:
      break;
  }
  return format.rowBytes == 0 || format.rowBytes >= format.width * uint64_t{2};
}

bool fits(const PictureFormat &format, uint64_t bytes) {
  if (format.pixels == Jpeg) return bytes >= 1 && bytes <= kMostPictureBytes;
  const uint64_t pixels = pixelBytes(format);
  return pixels != 0 && (bytes == pixels || (bytes == format.slotBytes && bytes > pixels));
}

}  // namespace

uint64_t pixelBytes(const PictureFormat &format) {
  if (format.width == 0 || format.height == 0 || !isPossible(format)) return 0;
  if (format.pixels == Jpeg) return 1;
  const uint64_t row = format.rowBytes != 0 ? format.rowBytes : format.width * uint64_t{2};
  if (row > kMostPictureBytes || format.height > kMostPictureBytes / row) return 0;
  return format.pixels == I420 ? row * format.height / 4 * 3 : row * format.height;
}

std::optional<PictureFormat> pictureFormat(uint32_t number, uint64_t bytes,
                                           const std::vector<PictureFormat> &stated) {
  const auto isIt = [&](const PictureFormat &format) {
    return format.number == number && fits(format, bytes);
  };
  const auto own = std::find_if(stated.begin(), stated.end(), isIt);
  if (own != stated.end()) return *own;
  const auto *const known = std::find_if(std::begin(kKnown), std::end(kKnown), isIt);
  if (known != std::end(kKnown)) return *known;
  if (bytes % 2 != 0 || bytes > kMostPictureBytes) return std::nullopt;
  const uint64_t pixels = bytes / 2;
  const auto side = static_cast<uint32_t>(std::lround(std::sqrt(static_cast<double>(pixels))));
  const PictureFormat square{number, side, side};
  return fits(square, bytes) ? std::optional(square) : std::nullopt;
}

}  // namespace player
