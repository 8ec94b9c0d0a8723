// Everything that the plug-in answers about one database file, as text to read.
#pragma once

#include <string>
#include <vector>

#include "tests/golden/Samples.h"
#include "tests/property/Case.h"

namespace golden {

struct Listing {
  std::string text{};
  std::vector<property::Step> steps{};  // all that was asked, in order
};

// Asks the built plug-in.
Listing List(const Sample &sample);

}  // namespace golden
