// Makes a failing case small.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/property/Case.h"
#include "tests/property/Runner.h"

namespace property {

// What FindDifference says, asked in a process of its own, so that a crash or a case that hangs is an answer
// too.
std::optional<std::string> FindDifferenceApart(const Case &what, const Distortion &distort = {});

// A case that still fails, with as few steps, chunks and bytes as could be found in a bounded number of
// tries. `fails` must hold for `what`.
Case Shrink(Case what, const std::function<bool(const Case &)> &fails);

}  // namespace property
