#pragma once

// Text of a command in the encoding that a person asked for.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/Host.h"

namespace zemhost {

// True for every way to write UTF-8.
bool isUtf8Name(std::string_view name);

class TextEncoder {
 public:
  // Of a name, without regard to case: UTF-8, UTF-16 and UTF-32 in their forms, Shift_JIS (by the plug-in's
  // own table), or what the C library's iconv knows. Throws HostError for any other name, and for an encoding
  // that puts a byte-order mark before every text.
  TextEncoder(const std::string &name, const Host &host);
  ~TextEncoder();

  // True for UTF-8, in which every text is left as it is.
  bool isUtf8() const;

  // What stands before the first text: the byte-order mark of UTF-16 and UTF-32, written low byte first.
  std::string mark() const;

  // A text of the library (UTF-8) with '?' for each character that has no place in the encoding, neither as
  // it is nor, where it is spelled in several parts, composed. These are counted, and the texts that hold
  // them.
  std::string fit(std::string_view text);

  // UTF-8 in the encoding's bytes; what has no place is '?', and not counted. Texts may be encoded piece by
  // piece, each of whole characters.
  std::string encode(std::string_view text);

  // "12 characters in 4 texts have no place in ISO-8859-1 and are shown as '?'"; nothing when all had one.
  std::optional<std::string> lossReport() const;

 private:
  class Codec;
  class UnicodeCodec;
  class ShiftJisCodec;
  class SystemCodec;

  using Conversion = std::string (Codec::*)(std::string_view utf8, uint64_t &lost);

  std::string convert(Conversion conversion, std::string_view text, uint64_t &lost);
  static std::unique_ptr<Codec> makeCodec(const std::string &name, const Host &host);

  std::string name_;
  std::unique_ptr<Codec> codec_;
  uint64_t lostCharacters_ = 0;
  uint64_t textsWithLoss_ = 0;
};

}  // namespace zemhost
