#include "host/basic/CallText.h"

#include <limits>
#include <utility>

#include "host/basic/Scanner.h"
#include "host/runtime/Names.h"

namespace zemhost {
namespace {

int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  const char lower = lowerCase(c);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

class CallReader {
 public:
  explicit CallReader(std::string_view line) : in_(line) {}

  Parsed<CallText> read() {
    call_.name = in_.takeName();
    if (call_.name.empty()) return in_.expected("the name of a method or property");
    if (in_.take('(')) {
      call_.form = CallText::Form::Call;
      if (!in_.take(')') && !readArguments()) return error_;
    } else if (in_.take('=')) {
      call_.form = CallText::Form::Assign;
      if (!readValue()) return error_;
    }
    if (!in_.atEnd()) return in_.expected(call_.form == CallText::Form::Name ? R"("(" or "=")" : "the end");
    return std::move(call_);
  }

 private:
  bool fail(ParseError error) {
    error_ = std::move(error);
    return false;
  }

  bool readArguments() {
    do {
      if (!readValue()) return false;
    } while (in_.take(','));
    return in_.take(')') || fail(in_.expected("\",\" or \")\""));
  }

  bool readValue() {
    const ParseError missing = in_.expected("a number, a text in quotes, True, False or nil");
    if (in_.peek() == '"') return readText();
    if (const std::string_view word = in_.takeName(); !word.empty()) return readWord(word) || fail(missing);
    return readNumber(missing);
  }

  bool readWord(std::string_view word) {
    if (sameName(word, "True")) {
      call_.arguments.emplace_back(true);
    } else if (sameName(word, "False")) {
      call_.arguments.emplace_back(false);
    } else if (sameName(word, "nil")) {
      call_.arguments.emplace_back(FolderItem());
    } else {
      return false;
    }
    return true;
  }

  bool readText() {
    const size_t start = in_.position();
    std::string text;
    in_.takeRaw();
    for (;;) {
      if (in_.atEnd()) return fail({start, "the text has no closing quote; it begins"});
      const char c = in_.takeRaw();
      if (c == '"') {
        if (in_.peek() != '"') break;
        in_.takeRaw();
      }
      text += c;
    }
    in_.skipBlanks();
    if (!isValidUtf8(text)) return fail({start, "the text is not valid UTF-8; it begins"});
    call_.arguments.emplace_back(text);
    return true;
  }

  bool readNumber(const ParseError &missing) {
    const size_t start = in_.position();
    const bool negative = in_.peek() == '-';
    if (negative || in_.peek() == '+') in_.takeRaw();
    int base = 10;
    if (in_.peek() == '&') {
      in_.takeRaw();
      base = readBase();
      if (base == 0) return fail(in_.expected("h, o or b after \"&\""));
    }
    constexpr uint64_t kTooMuch = uint64_t{1} << 32;
    uint64_t number = 0;
    bool any = false;
    for (; digitValue(in_.peek()) < base; any = true) {
      number = number * static_cast<unsigned>(base) + static_cast<unsigned>(digitValue(in_.takeRaw()));
      if (number >= kTooMuch) number = kTooMuch;
    }
    if (!any) return fail(in_.position() == start ? missing : in_.expected("a digit"));
    if (in_.peek() == '.') return fail({start, "only whole numbers can be read; another kind begins"});
    in_.skipBlanks();
    const uint64_t most =
        base != 10 ? kTooMuch - 1 : uint64_t{std::numeric_limits<int32_t>::max()} + negative;
    if (number > most) return fail({start, "the number does not fit into 32 bits; it begins"});
    const auto bits = static_cast<uint32_t>(number);
    call_.arguments.emplace_back(negative ? 0 - bits : bits);
    return true;
  }

  // Takes the letter that says how the digits count; 0 for any other.
  int readBase() {
    const char letter = lowerCase(in_.peek());
    const int base = letter == 'h' ? 16 : letter == 'o' ? 8 : letter == 'b' ? 2 : 0;
    if (base != 0) in_.takeRaw();
    return base;
  }

  Scanner in_;
  CallText call_;
  ParseError error_{};
};

}  // namespace

Parsed<CallText> parseCallText(std::string_view line) { return CallReader(line).read(); }

}  // namespace zemhost
