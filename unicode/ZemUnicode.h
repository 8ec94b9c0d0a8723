#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

// UTF-16 to Shift_JIS by this library's own tables: the Unicode Consortium's SHIFTJIS.TXT, not code page 932.
//
// A code unit without a mapping repeats the result of the unit before it in the same conversion (nothing at
// the start of a conversion). One byte-order mark reads the other way round than usual: after FE FF the units
// are taken low byte first, after FF FE (and without a mark) high byte first. Both are the contract, not
// accidents.
//
// Nothing here throws. Calls come from one thread.

// The bytes of a converted text. Those of a title stand in the object itself: handing out a thousand titles
// asks for no memory.
class SJISText {
 public:
  // Left as they are, the bytes of the object cost nothing.
  SJISText() {}  // NOLINT(modernize-use-equals-default)
  // The text that write(char *out) puts into `room` bytes; it returns how many of them count. Without memory
  // for the room the text is empty and says so.
  template <typename Write>
  SJISText(std::size_t room, Write write) {
    char *out = room > sizeof near_ ? Far(room) : near_;
    if (out != nullptr) size_ = write(out);
  }
  SJISText(const SJISText &) = delete;
  SJISText &operator=(const SJISText &) = delete;

  // Valid as long as this object.
  std::string_view View() const { return {far_ ? far_.get() : near_, size_}; }
  bool OutOfMemory() const { return outOfMemory_; }

 private:
  // Room in memory; null without it. Apart: a title does not wait until what a call needs is put aside.
  [[gnu::noinline, gnu::cold]] char *Far(std::size_t room) {
    far_.reset(new (std::nothrow) char[room]);
    outOfMemory_ = far_ == nullptr;
    return far_.get();
  }

  std::size_t size_ = 0;
  bool outOfMemory_ = false;
  std::unique_ptr<char[]> far_;
  char near_[488];  // not written to before it is used
};

// Returns the Shift_JIS code of the UTF-16 code unit with high byte c1 and low byte c2: a double-byte code
// with its lead byte high, a single-byte code below 0x100, or 0 for nothing to write. An unmapped unit gives
// the result of the call before it. lUnicode2SJIS calls this for each of its units and starts anew with
// nothing to repeat, as UTSchangeOneChar(0, 0) does.
std::uint16_t UTSchangeOneChar(std::uint8_t c1, std::uint8_t c2);

// Returns the Shift_JIS text of the strSize bytes of UTF-16 at in_con; empty when strSize is 0 or less, and
// when memory runs out. An odd last byte is paired with the byte after it, which must then be readable.
SJISText lUnicode2SJIS(const char *in_con, std::int32_t strSize);

// Returns the Shift_JIS text of a stored string `a` whose encoding code is `encode`; empty when memory runs
// out. 3: the bytes as they are. 1: UTF-16. Any other: text made only of units 00 01 to 00 FF gives their
// second bytes as they stand, all other text is converted as UTF-16. An odd last byte is paired with a zero.
SJISText ConvSJIS(std::string_view a, std::int32_t encode);
