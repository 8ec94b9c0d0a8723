#include "fuzz/Target.h"

namespace fuzz {

std::map<std::string_view, Target> &targets() {
  static std::map<std::string_view, Target> all;
  return all;
}

}  // namespace fuzz
