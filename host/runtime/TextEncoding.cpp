#include "host/runtime/TextEncoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <iconv.h>
#include <iterator>
#include <memory>
#include <utility>

#include "host/runtime/EncodingTable.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

static_assert(std::is_sorted(std::begin(kEncodings), std::end(kEncodings),
                             [](const EncodingRow &a, const EncodingRow &b) { return a.code < b.code; }));

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kByteOrderMark = 0xFEFF;
constexpr uint32_t kUtf16Le = 0x14000100;
constexpr uint32_t kUtf32Le = 0x1C000100;

constexpr const char *kCodePoints = std::endian::native == std::endian::big ? "UTF-32BE" : "UTF-32LE";

const EncodingRow *findRow(uint32_t code) {
  const auto *row = std::lower_bound(std::begin(kEncodings), std::end(kEncodings), code,
                                     [](const EncodingRow &r, uint32_t c) { return r.code < c; });
  return row != std::end(kEncodings) && row->code == code ? row : nullptr;
}

// One direction of iconv. The descriptor keeps no state from one text to the next.
class Direction {
 public:
  Direction(const char *to, const char *from) : descriptor_(iconv_open(to, from)) {}
  Direction(const Direction &) = delete;
  Direction &operator=(const Direction &) = delete;
  ~Direction() {
    if (isOpen()) iconv_close(descriptor_);
  }

  bool isOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  void reset() { iconv(descriptor_, nullptr, nullptr, nullptr, nullptr); }

  // Converts as much of `in` as it can, appends the result to `out`, and leaves `in` at what stopped it.
  // Returns 0 when all of it went through, else EILSEQ (no text, or no place in the target) or EINVAL (cut).
  int append(std::string_view &in, std::string &out) {
    return feed(in, out, in.size() * 4 + 16, [this](char **from, size_t *left, char **to, size_t *room) {
      return iconv(descriptor_, from, left, to, room);
    });
  }

  // Appends what brings an encoding with shift states back to its first one.
  void finish(std::string &out) {
    std::string_view nothing;
    feed(nothing, out, 16, [this](char **, size_t *, char **to, size_t *room) {
      return iconv(descriptor_, nullptr, nullptr, to, room);
    });
  }

 private:
  template <typename Step>
  static int feed(std::string_view &in, std::string &out, size_t room, Step step) {
    for (;;) {
      const size_t kept = out.size();
      out.resize(kept + room);
      char *from = const_cast<char *>(in.data());
      size_t left = in.size();
      char *to = out.data() + kept;
      size_t unused = room;
      const bool whole = step(&from, &left, &to, &unused) != static_cast<size_t>(-1);
      const int reason = whole ? 0 : errno;
      out.resize(kept + room - unused);
      in.remove_prefix(in.size() - left);
      if (reason != E2BIG) return reason;
    }
  }

  iconv_t descriptor_;
};

std::string_view asBytes(std::u32string_view text) {
  return {reinterpret_cast<const char *>(text.data()), text.size() * sizeof(char32_t)};
}

char32_t readCodePoint(std::string_view codePoints, size_t at) {
  char32_t c = 0;
  std::copy_n(codePoints.data() + at, sizeof c, reinterpret_cast<char *>(&c));
  return c;
}

// Both directions of one encoding, by way of code points.
class Codec {
 public:
  explicit Codec(const EncodingRow &row)
      : row_(row),
        decoder_(kCodePoints, row.iconvName),
        encoder_(row.iconvName, kCodePoints),
        toUtf8_("UTF-8", row.iconvName) {}

  bool isOpen() const { return decoder_.isOpen() && encoder_.isOpen() && toUtf8_.isOpen(); }

  // The bytes as UTF-8 in one step, which is what nearly all texts take; nothing when that would not tell
  // what was lost, or not give what the published mapping says.
  std::optional<std::string> validAsUtf8(std::string_view bytes) {
    if (row_.form == Form::Utf8)  // the C library passes numbers beyond the last character here
      return isValidUtf8(bytes) ? std::optional(std::string(bytes)) : std::nullopt;
    if (mappingDiffers()) return std::nullopt;
    std::string text;
    toUtf8_.reset();
    if (toUtf8_.append(bytes, text) != 0) return std::nullopt;
    return text;
  }

  std::u32string decode(std::string_view bytes, size_t &replacements) {
    std::string raw;
    std::u32string text;
    decoder_.reset();
    while (!bytes.empty()) {
      raw.clear();
      const int reason = decoder_.append(bytes, raw);
      for (size_t at = 0; at < raw.size(); at += sizeof(char32_t)) text += published(readCodePoint(raw, at));
      if (reason == 0) break;
      text += kReplacement;
      ++replacements;
      bytes.remove_prefix(reason == EINVAL ? bytes.size() : std::min(unitSize(), bytes.size()));
    }
    return text;
  }

  std::string encode(std::u32string text, size_t &replacements) {
    if (row_.form == Form::Bytes) {
      if (!survives(text)) replacements += replaceForeign(text);
    } else if (isMarked() && text.starts_with(kByteOrderMark)) {
      text.insert(text.begin(), kByteOrderMark);  // a reader takes the first one for the mark
    }
    return write(text);
  }

 private:
  bool isMarked() const { return row_.form == Form::Marked16 || row_.form == Form::Marked32; }

  size_t unitSize() const {
    switch (row_.form) {
      case Form::Wide16:
      case Form::Marked16:
        return 2;
      case Form::Wide32:
      case Form::Marked32:
        return 4;
      default:
        return 1;
    }
  }

  bool mappingDiffers() const {
    return std::any_of(std::begin(kMappingDifferences), std::end(kMappingDifferences),
                       [this](const MappingDifference &d) { return d.code == row_.code; });
  }

  char32_t published(char32_t c) const {
    for (const MappingDifference &d : kMappingDifferences)
      if (d.code == row_.code && d.libraryHas == c) return d.published;
    return c;
  }

  std::string write(std::u32string text) {
    for (const MappingDifference &d : kMappingDifferences)
      if (d.code == row_.code) std::replace(text.begin(), text.end(), d.published, d.libraryHas);
    std::string bytes;
    std::string_view rest = asBytes(text);
    encoder_.reset();
    encoder_.append(rest, bytes);
    encoder_.finish(bytes);
    return bytes;
  }

  // Whether the text reads back as it was. An iconv result alone does not say so: the C library drops some
  // characters and folds others without a word.
  bool survives(std::u32string_view text) {
    size_t replacements = 0;
    return decode(write(std::u32string(text)), replacements) == text;
  }

  size_t replaceForeign(std::u32string &text) {
    size_t count = 0;
    for (char32_t &c : text) {
      if (survives({&c, 1})) continue;
      if (c != kReplacement) ++count;  // that one stands for a loss already counted
      c = U'?';
    }
    return count;
  }

  const EncodingRow &row_;
  Direction decoder_;
  Direction encoder_;
  Direction toUtf8_;
};

// The codec of a row, opened on first use; null when the C library does not have it.
Codec *findCodec(const EncodingRow &row) {
  static std::array<std::unique_ptr<Codec>, std::size(kEncodings)> opened;
  std::unique_ptr<Codec> &codec = opened[static_cast<size_t>(&row - kEncodings)];
  if (codec == nullptr) codec = std::make_unique<Codec>(row);
  return codec->isOpen() ? codec.get() : nullptr;
}

Codec *findCodec(uint32_t code) {
  const EncodingRow *row = findRow(code);
  return row == nullptr ? nullptr : findCodec(*row);
}

// Takes a byte-order mark off the bytes and gives the code that says how to read the rest.
uint32_t followMark(std::string_view &bytes, uint32_t code) {
  using namespace std::string_view_literals;
  const EncodingRow *row = findRow(code);
  if (row == nullptr) return code;
  const auto take = [&bytes](std::string_view mark) {
    if (!bytes.starts_with(mark)) return false;
    bytes.remove_prefix(mark.size());
    return true;
  };
  if (row->form == Form::Marked16) {
    if (take("\xFF\xFE"sv)) return kUtf16Le;
    take("\xFE\xFF"sv);
  } else if (row->form == Form::Marked32) {
    if (take("\xFF\xFE\0\0"sv)) return kUtf32Le;
    take("\0\0\xFE\xFF"sv);
  }
  return code;
}

}  // namespace

Conversion convertText(std::string_view bytes, uint32_t from, uint32_t to) {
  Codec *target = findCodec(to);
  Codec *source = findCodec(from);
  if (target == nullptr || source == nullptr) return {std::string(bytes), 0, false};
  if (const uint32_t actual = followMark(bytes, from); actual != from) source = findCodec(actual);
  Conversion result;
  if (to == kUtf8) {
    if (std::optional<std::string> text = source->validAsUtf8(bytes)) {
      result.bytes = *std::move(text);
      return result;
    }
  }
  result.bytes = target->encode(source->decode(bytes, result.replacements), result.replacements);
  return result;
}

bool isKnownEncoding(uint32_t code) { return findCodec(code) != nullptr; }

bool isValidUtf8(std::string_view bytes) {
  for (size_t i = 0; i < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[i++]);
    if (lead < 0x80) continue;
    const size_t more = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() - i < more) return false;
    // The second byte has a shorter range after four leads: no long forms, surrogates or numbers past 10FFFF.
    const int second = static_cast<unsigned char>(bytes[i]);
    const int least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const int most = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (second < least || second > most) return false;
    for (size_t k = 1; k < more; ++k)
      if ((bytes[i + k] & 0xC0) != 0x80) return false;
    i += more;
  }
  return true;
}

std::string encodingName(uint32_t code) {
  const EncodingRow *row = findRow(code);
  return row != nullptr ? row->name : "encoding " + std::to_string(code);
}

std::optional<uint32_t> encodingFromName(std::string_view name) {
  for (const EncodingRow &row : kEncodings)
    if (sameName(row.name, name)) return row.code;
  for (const EncodingRow &row : kEncodings)
    if (sameName(row.iconvName, name)) return row.code;
  return std::nullopt;
}

}  // namespace zemhost
