#pragma once

// The forms in which players store pictures. A number names one, but newer players use numbers again, so the
// bytes that a picture takes decide between the meanings.

#include <cstdint>
#include <optional>
#include <vector>

namespace player {

// How the pixels of a picture stand in its slot.
enum class PixelForm {
  Rgb565,          // 16 bits, low byte first
  Rgb565Swapped,   // high byte first
  Rgb565Turned,    // likewise, and the picture lies on its side
  Rgb555,          // 15 bits, low byte first
  Rgb555Quarters,  // likewise, a square as its four quarters, these as theirs, down to the pixel
  Uyvy,            // two pixels in four bytes, the even rows before the odd ones
  I420,            // brightness, then both colours at half the size
  Jpeg             // as it is
};

struct PictureFormat {
  uint32_t number = 0;
  uint32_t width = 0;  // pixels of the whole slot, as it is shown
  uint32_t height = 0;
  PixelForm pixels = PixelForm::Rgb565;
  uint32_t rowBytes = 0;   // from one row to the next; 0: without a gap
  uint32_t slotBytes = 0;  // that a picture may be said to take; 0: just what its pixels do

  bool operator==(const PictureFormat &) const = default;
};

// A picture of more is none.
constexpr uint64_t kMostPictureBytes = 16ULL << 20;

// The bytes that a picture's pixels take in its slot; 0 for a format in which none can be: without pixels, of
// more than kMostPictureBytes, or with rows that do not fit its form. A picture in JPEG takes 1 or more.
uint64_t pixelBytes(const PictureFormat &format);

// The meaning of a format's number for a picture of so many bytes: of the formats that the player itself
// states, else of those that are known of players, else a square in 565. Nothing when no meaning fits.
std::optional<PictureFormat> pictureFormat(uint32_t number, uint64_t bytes,
                                           const std::vector<PictureFormat> &stated);

}  // namespace player
