#pragma once

#include "platform/carbon/CarbonFiles.h"

namespace carbon {

// Thrown inside the library and turned into its result code where a call returns to C.
struct Failure {
  OSErr code;
};

}  // namespace carbon
