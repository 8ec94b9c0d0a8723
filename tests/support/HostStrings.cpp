#include "tests/support/HostStrings.h"

#include <algorithm>
#include <iomanip>

namespace support {
namespace {

std::u32string Characters(std::string_view bytes, uint32_t encoding) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(i < bytes.size() ? bytes[i] : 0); };
  std::u32string characters;
  for (size_t i = 0; i < bytes.size();) {
    char32_t c = byte(i);
    size_t used = 1;
    if (encoding == kUtf16) {
      c = c << 8 | byte(i + 1);
      used = 2;
      if (c >= 0xd800 && c < 0xdc00 && i + 3 < bytes.size()) {
        const auto low = static_cast<char32_t>(byte(i + 2) << 8 | byte(i + 3));
        c = 0x10000 + ((c - 0xd800) << 10) + (low - 0xdc00);
        used = 4;
      }
    } else if (encoding == kUtf8 && c >= 0xc0) {
      used = c >= 0xf0 ? 4 : c >= 0xe0 ? 3 : 2;
      c &= 0xffU >> (used + 1);
      for (size_t k = 1; k < used; ++k) c = c << 6 | (byte(i + k) & 0x3fU);
    }
    characters += c;
    i += used;
  }
  return characters;
}

std::string Bytes(std::u32string_view characters, uint32_t encoding) {
  std::string bytes;
  const auto add = [&bytes](char32_t value) { bytes += static_cast<char>(value & 0xff); };
  for (const char32_t c : characters) {
    if (encoding == kUtf16) {
      if (c >= 0x10000) {
        const char32_t high = 0xd800 + ((c - 0x10000) >> 10);
        const char32_t low = 0xdc00 + ((c - 0x10000) & 0x3ff);
        for (const char32_t unit : {high, low}) {
          add(unit >> 8);
          add(unit);
        }
      } else {
        add(c >> 8);
        add(c);
      }
    } else if (encoding == kAscii) {
      add(c < 0x100 ? c : U'?');
    } else if (c < 0x80) {
      add(c);
    } else if (c < 0x800) {
      add(0xc0 | c >> 6);
      add(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
      add(0xe0 | c >> 12);
      add(0x80 | (c >> 6 & 0x3f));
      add(0x80 | (c & 0x3f));
    } else {
      add(0xf0 | c >> 18);
      add(0x80 | (c >> 12 & 0x3f));
      add(0x80 | (c >> 6 & 0x3f));
      add(0x80 | (c & 0x3f));
    }
  }
  return bytes;
}

bool IsConverted(uint32_t encoding) { return encoding == kUtf16 || encoding == kAscii || encoding == kUtf8; }

}  // namespace

std::string Convert(std::string_view bytes, uint32_t from, uint32_t to) {
  if (!IsConverted(from) || !IsConverted(to)) return std::string(bytes);
  return Bytes(Characters(bytes, from), to);
}

void PrintTo(const HostText &text, std::ostream *out) {
  if (text.isNull) {
    *out << "the null string";
    return;
  }
  *out << '"';
  for (const char c : text.bytes) {
    if (c >= 0x20 && c < 0x7f) {
      *out << c;
    } else {
      *out << "\\x" << std::hex << std::setw(2) << std::setfill('0') << (static_cast<unsigned>(c) & 0xffU)
           << std::dec;
    }
  }
  *out << "\" in encoding 0x" << std::hex << text.encoding << std::dec;
}

REALstring HostStrings::Make(std::string_view bytes, uint32_t encoding) {
  auto stored = std::make_unique<Stored>();
  stored->bytes = std::string(1, static_cast<char>(std::min<size_t>(bytes.size(), 255))).append(bytes);
  stored->record = {1, reinterpret_cast<uint8_t *>(stored->bytes.data()),
                    static_cast<int32_t>(stored->bytes.size()), static_cast<int32_t>(bytes.size()), encoding};
  const REALstring string = &stored->record;
  known_.emplace(string, stored.get());
  strings_.push_back(std::move(stored));
  return string;
}

bool HostStrings::Check(REALstring string, const char *use) {
  const auto found = known_.find(string);
  if (found == known_.end()) {
    faults_.push_back(std::string(use) + " of what is no string");
    return false;
  }
  if (found->second->record.mPrivateUsageCount <= 0) {
    faults_.push_back(std::string(use) + " of a released string");
    return false;
  }
  return true;
}

void HostStrings::Release(REALstring string) {
  if (!Check(string, "release") || --string->mPrivateUsageCount > 0) return;
  Stored &stored = *known_.at(string);
  std::fill(stored.bytes.begin(), stored.bytes.end(), '\xdd');
}

HostText HostStrings::Read(REALstring string) {
  if (string == nullptr || !Check(string, "read")) return {};
  const auto length = static_cast<size_t>(REALstringStruct::Length(string));
  return Text({REALstringStruct::CString(string), length}, string->mEncoding);
}

size_t HostStrings::Live() const { return LiveTexts().size(); }

std::vector<std::string> HostStrings::LiveTexts() const {
  std::vector<std::string> texts;
  for (const std::unique_ptr<Stored> &stored : strings_) {
    if (stored->record.mPrivateUsageCount > 0) texts.push_back(stored->bytes.substr(1));
  }
  return texts;
}

REALstring HostStrings::LastLive() const {
  const auto found = std::find_if(strings_.rbegin(), strings_.rend(),
                                  [](const auto &stored) { return stored->record.mPrivateUsageCount > 0; });
  return found == strings_.rend() ? nullptr : &(*found)->record;
}

}  // namespace support
