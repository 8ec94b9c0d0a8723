#include "tests/unicode/ShiftJisModel.h"

#include <cstddef>
#include <vector>

#include "unicode/ShiftJISTables.h"

namespace {

class ModelConverter {
 public:
  std::string Convert(const std::string &text, std::size_t length) {
    std::vector<unsigned char> buffer(10240);
    std::size_t used = 0;
    bool swapped = false;
    for (std::size_t i = 0; i < length; i += 2) {
      if (used + 10 >= buffer.size()) {
        buffer.resize(buffer.size() + 1024);
        hasLast_ = false;
      }
      const int b0 = ByteAt(text, i);
      const int b1 = ByteAt(text, i + 1);
      if (b0 == 0xFF && b1 == 0xFE) {
        swapped = false;
      } else if (b0 == 0xFE && b1 == 0xFF) {
        swapped = true;
      } else {
        const int code = swapped ? OneUnit(b1, b0) : OneUnit(b0, b1);
        if (code > 0xFF) {
          buffer.at(used++) = static_cast<unsigned char>(code / 256);
          buffer.at(used++) = static_cast<unsigned char>(code % 256);
        } else if (code % 256 != 0) {
          buffer.at(used++) = static_cast<unsigned char>(code);
        }
      }
    }
    return {buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(used)};
  }

  // The byte after the end of a text is zero.
  static int ByteAt(const std::string &text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text.at(at)) : 0;
  }

 private:
  int OneUnit(int high, int low) {
    int code = 0;
    if (high == 0) {
      code = low <= 0x7C ? low : Repeat();
    } else if (!HasTable(high)) {
      code = Repeat();
    } else {
      const ShiftJISPage &page = shiftJISPages[high];
      const int last = page.first + page.count - 1;
      code = low < page.first || low > last ? 0 : page.codes[low - page.first];
    }
    last_ = code;
    hasLast_ = true;
    return code;
  }

  static bool HasTable(int high) {
    for (const int page : {0x03, 0x04, 0x20, 0x21, 0x22, 0x23, 0x25, 0x26, 0x30, 0xFF}) {
      if (high == page) return true;
    }
    return high >= 0x4E && high <= 0x9F;
  }

  int Repeat() const { return hasLast_ ? last_ : 0; }

  int last_ = 0;
  bool hasLast_ = false;
};

}  // namespace

std::string ModelConvSJIS(std::string a, std::int32_t encode) {
  if (a.empty() || encode == 3) return a;
  if (encode == 1) return ModelConverter().Convert(a, a.size());
  std::string collected;
  for (std::size_t i = 0; i < a.size(); i += 2) {
    const int b0 = ModelConverter::ByteAt(a, i);
    const int b1 = ModelConverter::ByteAt(a, i + 1);
    if (b0 != 0 || b1 == 0) return ModelConverter().Convert(a, a.size());
    collected += static_cast<char>(b1);
  }
  return collected;
}
