#pragma once

// Shift_JIS by the plug-in's own table, asked through the class: a text is set on a song of an object of its
// own and read back with UseSJIS.

#include <string>
#include <unordered_map>

#include "host/Host.h"

namespace zemhost {

class ShiftJisTable {
 public:
  // Loads a database of one song into a new object, by way of a short-lived file in the folder for temporary
  // files. Throws HostError when that cannot be written or loaded.
  explicit ShiftJisTable(const Host &host);

  // The bytes of a character; empty when it has no place in the table. ASCII stands for itself.
  const std::string &bytesOf(char32_t character);

 private:
  Object object_;
  Method set_;
  Method get_;
  std::unordered_map<char32_t, std::string> known_;
};

}  // namespace zemhost
