// Two players' volumes on disk, for the whole run.
#pragma once

#include <cstddef>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"
#include "tests/property/Case.h"

namespace property {

// Writes the file where it belongs on volume `number` (0 or 1), in place of what was there, and gives its
// specification.
FSSpec PutOnVolume(const DatabaseFile &file, size_t number);

}  // namespace property
