#include "host/text/TextEncoding.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <utility>

#include "host/runtime/Names.h"
#include "host/text/EncodingTable.h"
#include "host/text/IconvCodec.h"
#include "platform/carbon/UnicodeForms.h"

namespace zemhost {
namespace {

static_assert(std::is_sorted(std::begin(kEncodings), std::end(kEncodings),
                             [](const EncodingRow &a, const EncodingRow &b) { return a.code < b.code; }));

constexpr char32_t kByteOrderMark = 0xFEFF;

const EncodingRow *findRow(uint32_t code) {
  const auto *row = std::lower_bound(std::begin(kEncodings), std::end(kEncodings), code,
                                     [](const EncodingRow &r, uint32_t c) { return r.code < c; });
  return row != std::end(kEncodings) && row->code == code ? row : nullptr;
}

// The codec of a row that is left to the C library, opened on first use.
IconvCodec &codecOf(const EncodingRow &row) {
  static std::array<std::unique_ptr<IconvCodec>, std::size(kEncodings)> opened;
  std::unique_ptr<IconvCodec> &codec = opened[static_cast<size_t>(&row - kEncodings)];
  if (codec == nullptr) codec = std::make_unique<IconvCodec>(row);
  return *codec;
}

// The row of an encoding that can be used here; null for any other code.
const EncodingRow *findUsableRow(uint32_t code) {
  const EncodingRow *row = findRow(code);
  return row != nullptr && (row->form != Form::Iconv || codecOf(*row).isOpen()) ? row : nullptr;
}

// Takes a byte-order mark off the bytes where one may stand; true when the high byte comes first.
bool takeMark(const EncodingRow &row, std::string_view &bytes) {
  using namespace std::string_view_literals;
  if (row.order != ByteOrder::Marked) return row.order == ByteOrder::HighFirst;
  const auto take = [&bytes](std::string_view mark) {
    if (!bytes.starts_with(mark)) return false;
    bytes.remove_prefix(mark.size());
    return true;
  };
  if (take(row.form == Form::Utf16 ? "\xFF\xFE"sv : "\xFF\xFE\0\0"sv)) return false;
  take(row.form == Form::Utf16 ? "\xFE\xFF"sv : "\0\0\xFE\xFF"sv);
  return true;
}

// Hands each character to `sink`, and a replacement for what is none. Returns how many replacements.
template <auto read, typename Sink>
size_t readAll(std::string_view bytes, Sink sink) {
  size_t replacements = 0;
  for (size_t at = 0; at < bytes.size();) {
    const char32_t c = read(bytes, at);
    if (c == unicode::kNoCharacter) ++replacements;
    sink(c == unicode::kNoCharacter ? unicode::kReplacement : c);
  }
  return replacements;
}

template <typename Sink>
size_t readText(const EncodingRow &row, std::string_view bytes, Sink sink) {
  const bool highFirst = takeMark(row, bytes);
  size_t replacements = 0;
  switch (row.form) {
    case Form::Utf8:
      return readAll<unicode::readUtf8>(bytes, sink);
    case Form::Utf16:
      return highFirst ? readAll<unicode::readUtf16<true>>(bytes, sink)
                       : readAll<unicode::readUtf16<false>>(bytes, sink);
    case Form::Utf32:
      return highFirst ? readAll<unicode::readUtf32<true>>(bytes, sink)
                       : readAll<unicode::readUtf32<false>>(bytes, sink);
    case Form::Iconv:
      for (const char32_t c : codecOf(row).decode(bytes, replacements)) sink(c);
  }
  return replacements;
}

// Reads the text with `read`, which hands characters to what it is given, and writes each in the row's form.
template <typename Reader>
size_t writeText(const EncodingRow &row, std::string &out, Reader read) {
  const bool highFirst = row.order != ByteOrder::LowFirst;
  // A reader takes a mark at the start for a mark: a character of that kind needs one before it.
  const auto escape = [&out, &row](char32_t c) {
    return out.empty() && c == kByteOrderMark && row.order == ByteOrder::Marked;
  };
  size_t replacements = 0;
  std::u32string text;
  switch (row.form) {
    case Form::Utf8:
      return read([&](char32_t c) { unicode::appendUtf8(out, c); });
    case Form::Utf16:
      return read([&](char32_t c) {
        if (escape(c)) unicode::appendUtf16(out, kByteOrderMark, highFirst);
        unicode::appendUtf16(out, c, highFirst);
      });
    case Form::Utf32:
      return read([&](char32_t c) {
        if (escape(c)) unicode::appendUtf32(out, kByteOrderMark, highFirst);
        unicode::appendUtf32(out, c, highFirst);
      });
    case Form::Iconv:
      replacements = read([&](char32_t c) { text += c; });
      out = codecOf(row).encode(std::move(text), replacements);
  }
  return replacements;
}

}  // namespace

Conversion convertText(std::string_view bytes, uint32_t from, uint32_t to) {
  const EncodingRow *source = findUsableRow(from);
  const EncodingRow *target = findUsableRow(to);
  if (source == nullptr || target == nullptr) return {std::string(bytes), 0, false};
  Conversion result;
  result.bytes.reserve(bytes.size());
  result.replacements =
      writeText(*target, result.bytes, [&](auto sink) { return readText(*source, bytes, sink); });
  return result;
}

bool isValidUtf8(std::string_view bytes) {
  for (size_t at = 0; at < bytes.size();)
    if (unicode::readUtf8(bytes, at) == unicode::kNoCharacter) return false;
  return true;
}

bool isKnownEncoding(uint32_t code) { return findUsableRow(code) != nullptr; }

std::string encodingName(uint32_t code) {
  const EncodingRow *row = findRow(code);
  return row != nullptr ? row->name : "encoding " + std::to_string(code);
}

std::optional<uint32_t> encodingFromName(std::string_view name) {
  for (const EncodingRow &row : kEncodings)
    if (sameName(row.name, name)) return row.code;
  for (const EncodingRow &row : kEncodings)
    if (row.iconvName != nullptr && sameName(row.iconvName, name)) return row.code;
  return std::nullopt;
}

}  // namespace zemhost
