#include "host/text/IconvCodec.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/carbon/UnicodeForms.h"

namespace zemhost {
namespace {

// Code points of this machine's byte order; the C library has them built in.
constexpr const char *kCodePoints = "WCHAR_T";
static_assert(sizeof(wchar_t) == sizeof(char32_t));

// Runs one step of iconv over and over, with more room each time, until it stops for another reason.
template <typename Step>
int feed(std::string_view &in, std::string &out, size_t room, Step step) {
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

std::string_view asBytes(std::u32string_view text) {
  return {reinterpret_cast<const char *>(text.data()), text.size() * sizeof(char32_t)};
}

char32_t readCodePoint(std::string_view codePoints, size_t at) {
  char32_t c = 0;
  std::copy_n(codePoints.data() + at, sizeof c, reinterpret_cast<char *>(&c));
  return c;
}

}  // namespace

IconvCodec::Direction::~Direction() {
  if (isOpen()) iconv_close(descriptor_);
}

bool IconvCodec::Direction::isOpen() const {
  // NOLINTNEXTLINE(performance-no-int-to-ptr): this is how iconv_open says that it failed
  return descriptor_ != reinterpret_cast<iconv_t>(-1);
}

void IconvCodec::Direction::reset() { iconv(descriptor_, nullptr, nullptr, nullptr, nullptr); }

int IconvCodec::Direction::append(std::string_view &in, std::string &out) {
  return feed(in, out, in.size() * 4 + 16, [this](char **from, size_t *left, char **to, size_t *room) {
    return iconv(descriptor_, from, left, to, room);
  });
}

void IconvCodec::Direction::finish(std::string &out) {
  std::string_view nothing;
  feed(nothing, out, 16, [this](char **, size_t *, char **to, size_t *room) {
    return iconv(descriptor_, nullptr, nullptr, to, room);
  });
}

IconvCodec::IconvCodec(const EncodingRow &row)
    : row_(row), decoder_(kCodePoints, row.iconvName), encoder_(row.iconvName, kCodePoints) {}

std::u32string IconvCodec::decode(std::string_view bytes, size_t &replacements) {
  std::string raw;
  std::u32string text;
  decoder_.reset();
  while (!bytes.empty()) {
    raw.clear();
    const int reason = decoder_.append(bytes, raw);
    for (size_t at = 0; at < raw.size(); at += sizeof(char32_t)) text += published(readCodePoint(raw, at));
    if (reason == 0) break;
    text += unicode::kReplacement;
    ++replacements;
    bytes.remove_prefix(reason == EINVAL ? bytes.size() : 1);
  }
  return text;
}

std::string IconvCodec::encode(std::u32string text, size_t &replacements) {
  if (!survives(text)) replacements += replaceForeign(text);
  return write(std::move(text));
}

char32_t IconvCodec::published(char32_t c) const {
  for (const MappingDifference &d : kMappingDifferences)
    if (d.code == row_.code && d.iconvHas == c) return d.published;
  return c;
}

std::string IconvCodec::write(std::u32string text) {
  for (const MappingDifference &d : kMappingDifferences)
    if (d.code == row_.code) std::replace(text.begin(), text.end(), d.published, d.iconvHas);
  std::string bytes;
  std::string_view rest = asBytes(text);
  encoder_.reset();
  encoder_.append(rest, bytes);
  encoder_.finish(bytes);
  return bytes;
}

// Whether the text reads back as it was. An iconv result alone does not say so: the C library drops some
// characters and folds others without a word.
bool IconvCodec::survives(std::u32string_view text) {
  size_t replacements = 0;
  return decode(write(std::u32string(text)), replacements) == text;
}

size_t IconvCodec::replaceForeign(std::u32string &text) {
  size_t count = 0;
  for (char32_t &c : text) {
    if (survives({&c, 1})) continue;
    if (c != unicode::kReplacement) ++count;
    c = U'?';
  }
  return count;
}

}  // namespace zemhost
