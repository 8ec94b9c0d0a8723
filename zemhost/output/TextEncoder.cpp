#include "zemhost/output/TextEncoder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utf8proc.h>
#include <utility>
#include <vector>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "host/text/EncodingTable.h"
#include "host/text/IconvCodec.h"
#include "host/text/TextEncoding.h"
#include "platform/carbon/UnicodeForms.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/output/ShiftJisTable.h"
#include "zemhost/output/Units.h"

namespace zemhost {

namespace {

std::u32string charactersOf(std::string_view utf8) {
  std::u32string characters;
  for (size_t at = 0; at < utf8.size();) {
    const char32_t c = unicode::readUtf8(utf8, at);
    characters += c == unicode::kNoCharacter ? U'\uFFFD' : c;
  }
  return characters;
}

// The text in pieces of one character each as a person sees it: a letter with its accents, a syllable.
std::vector<std::string> charactersInParts(std::string_view utf8) {
  std::vector<std::string> pieces;
  utf8proc_int32_t state = 0;
  utf8proc_int32_t previous = 0;
  for (const char32_t c : charactersOf(utf8)) {
    const auto next = static_cast<utf8proc_int32_t>(c);
    if (pieces.empty() || utf8proc_grapheme_break_stateful(previous, next, &state)) pieces.emplace_back();
    unicode::appendUtf8(pieces.back(), c);
    previous = next;
  }
  return pieces;
}

// "Shift-JIS", "shift_jis" and "ShiftJIS" are one name.
std::string plainName(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0)
      plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return plain;
}

// The letters, digits and marks of iconv's names; a '/' begins options that change what is lost.
bool isIconvName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view("-_.:()+").find(c) != std::string_view::npos;
  });
}

struct UnicodeName {
  std::string_view plain;
  uint32_t code;
  std::string_view mark;
};

constexpr uint32_t kUtf16Le = 0x14000100;
constexpr uint32_t kUtf32Le = 0x1C000100;

constexpr std::array kUnicodeNames = {
    UnicodeName{"utf8", kUtf8, {}},
    UnicodeName{"utf16", kUtf16Le, "\xFF\xFE"},
    UnicodeName{"utf16le", kUtf16Le, {}},
    UnicodeName{"utf16be", 0x10000100, {}},
    UnicodeName{"utf32", kUtf32Le, std::string_view("\xFF\xFE\0\0", 4)},
    UnicodeName{"utf32le", kUtf32Le, {}},
    UnicodeName{"utf32be", 0x18000100, {}},
};

}  // namespace

// One encoding. `lost` grows by one for each character that has no place.
class TextEncoder::Codec {
 public:
  Codec() = default;
  Codec(const Codec &) = delete;
  Codec &operator=(const Codec &) = delete;
  virtual ~Codec() = default;

  virtual std::string encode(std::string_view utf8, uint64_t &lost) = 0;
  // The text as a reader of the encoding will see it.
  virtual std::string fit(std::string_view utf8, uint64_t &lost) = 0;
  virtual std::string_view mark() const { return {}; }
  virtual bool isUtf8() const { return false; }
};

class TextEncoder::UnicodeCodec final : public Codec {
 public:
  explicit UnicodeCodec(const UnicodeName &name) : name_(name) {}
  std::string encode(std::string_view utf8, uint64_t & /*lost*/) override {
    return isUtf8() ? std::string(utf8) : convertText(utf8, kUtf8, name_.code).bytes;
  }
  std::string fit(std::string_view utf8, uint64_t & /*lost*/) override { return std::string(utf8); }
  std::string_view mark() const override { return name_.mark; }
  bool isUtf8() const override { return name_.code == kUtf8; }

 private:
  UnicodeName name_;
};

class TextEncoder::ShiftJisCodec final : public Codec {
 public:
  explicit ShiftJisCodec(const Host &host) : table_(host) {}
  std::string encode(std::string_view utf8, uint64_t &lost) override {
    std::string bytes;
    for (const char32_t c : charactersOf(utf8)) bytes += hasPlace(c, lost) ? table_.bytesOf(c) : "?";
    return bytes;
  }
  std::string fit(std::string_view utf8, uint64_t &lost) override {
    std::string text;
    for (const char32_t c : charactersOf(utf8)) unicode::appendUtf8(text, hasPlace(c, lost) ? c : U'?');
    return text;
  }

 private:
  bool hasPlace(char32_t c, uint64_t &lost) {
    if (!table_.bytesOf(c).empty()) return true;
    if (c != U'\uFFFD') ++lost;  // that one stands for a loss already
    return false;
  }

  ShiftJisTable table_;
};

class TextEncoder::SystemCodec final : public Codec {
 public:
  explicit SystemCodec(std::string name)
      : name_(std::move(name)),
        row_{.code = kNoCode, .name = name_.c_str(), .iconvName = name_.c_str()},
        codec_(row_) {}
  bool isOpen() const { return codec_.isOpen(); }

  std::string encode(std::string_view utf8, uint64_t &lost) override {
    size_t replacements = 0;
    std::string bytes = codec_.encode(charactersOf(utf8), replacements);
    lost += replacements;
    return bytes;
  }
  std::string fit(std::string_view utf8, uint64_t &lost) override {
    uint64_t here = 0;
    const std::string bytes = encode(utf8, here);
    constexpr std::string_view kEarlierLoss = "\uFFFD";
    if (here == 0 && utf8.find(kEarlierLoss) == std::string_view::npos) return std::string(utf8);
    lost += here;
    size_t ignored = 0;
    std::string text;
    for (const char32_t c : codec_.decode(bytes, ignored)) unicode::appendUtf8(text, c);
    return text;
  }

 private:
  static constexpr uint32_t kNoCode = 0xFFFFFFFF;

  std::string name_;
  EncodingRow row_;
  IconvCodec codec_;
};

std::unique_ptr<TextEncoder::Codec> TextEncoder::makeCodec(const std::string &name, const Host &host) {
  const std::string plain = plainName(name);
  for (const UnicodeName &unicodeName : kUnicodeNames) {
    if (unicodeName.plain == plain) return std::make_unique<UnicodeCodec>(unicodeName);
  }
  if (plain == "shiftjis" || plain == "sjis") return std::make_unique<ShiftJisCodec>(host);
  auto codec = isIconvName(name) ? std::make_unique<SystemCodec>(name) : nullptr;
  if (codec == nullptr || !codec->isOpen()) {
    throw HostError("no encoding is named " + inQuotes(name) +
                    "; there are UTF-8, UTF-16, UTF-16LE, UTF-16BE, Shift_JIS and those that \"iconv "
                    "--list\" names");
  }
  uint64_t ignored = 0;
  if (codec->encode("aa", ignored).size() != 2 * codec->encode("a", ignored).size())
    throw HostError("the encoding " + name + " puts a byte-order mark before every text; use UTF-16");
  return codec;
}

bool isUtf8Name(std::string_view name) { return plainName(name) == "utf8"; }

TextEncoder::TextEncoder(const std::string &name, const Host &host)
    : name_(name), codec_(makeCodec(name, host)) {}

TextEncoder::~TextEncoder() = default;

bool TextEncoder::isUtf8() const { return codec_->isUtf8(); }

std::string TextEncoder::mark() const { return std::string(codec_->mark()); }

// A text that loses nothing stays as it is: there are encodings with a place for the parts of a character,
// and characters without one that are composed of them.
std::string TextEncoder::convert(Conversion conversion, std::string_view text, uint64_t &lost) {
  std::string converted = (*codec_.*conversion)(text, lost);
  if (lost == 0) return converted;
  const auto lostOf = [&](const std::string &character) {
    uint64_t count = 0;
    codec_->encode(character, count);
    return count;
  };
  std::string joined;
  for (const std::string &character : charactersInParts(text)) {
    const std::string composed = composedText(character);
    joined += lostOf(composed) < lostOf(character) ? composed : character;
  }
  lost = 0;
  return (*codec_.*conversion)(joined, lost);
}

std::string TextEncoder::fit(std::string_view text) {
  uint64_t lost = 0;
  std::string fitted = convert(&Codec::fit, text, lost);
  lostCharacters_ += lost;
  textsWithLoss_ += lost != 0 ? 1 : 0;
  return fitted;
}

std::string TextEncoder::encode(std::string_view text) {
  uint64_t ignored = 0;
  return convert(&Codec::encode, text, ignored);
}

std::optional<std::string> TextEncoder::lossReport() const {
  if (lostCharacters_ == 0) return std::nullopt;
  return countText(lostCharacters_, "character", "characters") + " in " +
         countText(textsWithLoss_, "text", "texts") + (lostCharacters_ == 1 ? " has" : " have") +
         " no place in " + name_ + " and " + (lostCharacters_ == 1 ? "is" : "are") + " shown as '?'";
}

}  // namespace zemhost
