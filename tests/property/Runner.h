// Does what a case says with the built plug-in and with the model, side by side.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "tests/property/Case.h"
#include "tests/support/AnyCall.h"

namespace property {

// Changes what the plug-in answered to a step, to see whether that would be noticed.
using Distortion = std::function<void(const Step &step, support::Answer &answer)>;

// The first thing in which plug-in and model differ, or that the plug-in does wrong by its host; nothing
// when there is none.
std::optional<std::string> FindDifference(const Case &what, const Distortion &distort = {});

}  // namespace property
