#pragma once

// Opening what lies below a folder, and nothing outside it, whatever its names and symbolic links say.

#include <string>

#include "platform/carbon/Descriptor.h"

namespace zemhost {

// Opens a path of names with '/' between them, below an open folder ("." is the folder itself). Links are
// followed as long as they stay below it; one that leads out, an absolute one, and a ".." too many give no
// descriptor and errno EXDEV. `flags` are those of open(), without O_CREAT; O_CLOEXEC is added. On any other
// failure errno is what open() gives.
carbon::Descriptor openBeneath(int folder, const std::string &path, int flags);

// The same, name by name: for systems that lack the call that does it in one step, or forbid it.
carbon::Descriptor openBeneathByHand(int folder, const std::string &path, int flags);

}  // namespace zemhost
