#pragma once

#include <memory>

#include "platform/carbon/CarbonFiles.h"

// Owns one CoreFoundation string and the last C string that was read from it.
class cfstring {
 public:
  // Makes the string from NUL-terminated bytes in a CoreFoundation encoding. Bytes that are not valid in the
  // encoding, and null, give the string without a reference: its C string is empty.
  cfstring(const char *str, unsigned long encoding);
  virtual ~cfstring();

  cfstring(const cfstring &) = delete;
  cfstring &operator=(const cfstring &) = delete;

  // The text as NUL-terminated bytes in an 8-bit encoding, owned by this object and valid until the next call
  // or the end of the object. Empty when the text has no form in the encoding, or fills the most room that a
  // text of its length can take to the last byte. Null when there is no memory; the previous result then
  // stays valid.
  const char *cString(unsigned long encoding);

  // Drops the string and the C string; afterwards the C string is empty. May be called again.
  void release();

 private:
  CFStringRef mString;
  std::unique_ptr<char[]> mCString;
};
