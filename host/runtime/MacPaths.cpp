#include "host/runtime/MacPaths.h"

#include <algorithm>

#include "platform/carbon/UnicodeForms.h"

namespace zemhost {

std::string volumeName(const std::filesystem::path &root) {
  if (!root.empty() && !root.has_filename()) return "System";
  std::string name = carbon::exchanged(root.filename().string());
  const size_t whole = unicode::wholeCharacters(name, kLongestMacName);
  name.resize(whole == 0 ? std::min(name.size(), kLongestMacName) : whole);
  return name;
}

}  // namespace zemhost
