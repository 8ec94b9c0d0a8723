#pragma once

// Conversion between code points and the encodings that are left to the C library's iconv.

#include <cstddef>
#include <iconv.h>
#include <string>
#include <string_view>

#include "host/text/EncodingTable.h"

namespace zemhost {

// Both directions of one encoding. Keeps no state from one text to the next.
class IconvCodec {
 public:
  explicit IconvCodec(const EncodingRow &row);

  // False when the C library does not have the encoding; nothing else may be called then.
  bool isOpen() const { return decoder_.isOpen() && encoder_.isOpen(); }

  // The characters of the bytes. Each byte that belongs to none, or the incomplete rest, is U+FFFD and
  // counted.
  std::u32string decode(std::string_view bytes, size_t &replacements);

  // The text in this encoding. Each character that does not come back from it is a '?' and counted, but for
  // U+FFFD, which stands for a loss already.
  std::string encode(std::u32string text, size_t &replacements);

 private:
  // One descriptor of iconv.
  class Direction {
   public:
    Direction(const char *to, const char *from) : descriptor_(iconv_open(to, from)) {}
    Direction(const Direction &) = delete;
    Direction &operator=(const Direction &) = delete;
    ~Direction();

    bool isOpen() const;
    void reset();
    // Converts as much of `in` as it can, appends the result to `out`, and leaves `in` at what stopped it.
    // Returns 0 when all of it went through, else EILSEQ (no text, or no place in the target) or EINVAL
    // (cut).
    int append(std::string_view &in, std::string &out);
    // Appends what brings an encoding with shift states back to its first one.
    void finish(std::string &out);

   private:
    iconv_t descriptor_;
  };

  char32_t published(char32_t c) const;
  std::string write(std::u32string text);
  bool survives(std::u32string_view text);
  size_t replaceForeign(std::u32string &text);

  const EncodingRow &row_;
  Direction decoder_;
  Direction encoder_;
};

}  // namespace zemhost
