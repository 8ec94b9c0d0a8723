#pragma once

// A class as a plug-in registered it.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/basic/Declaration.h"
#include "sdk/HostTypes.h"

namespace zemhost {

struct MethodInfo {
  std::string text;  // the declaration exactly as registered
  Declaration declaration;
  REALproc function = nullptr;
};

struct PropertyInfo {
  std::string group;  // empty when there is none
  std::string name;
  Kind kind = Kind::None;
  REALproc getter = nullptr;  // null: cannot be read
  REALproc setter = nullptr;  // null: read only
  intptr_t parameter = 0;
};

struct ClassInfo {
  std::string name;
  std::string superName;  // empty when there is none
  intptr_t version = 0;
  size_t dataSize = 0;
  REALproc constructor = nullptr;
  REALproc destructor = nullptr;
  std::vector<PropertyInfo> properties;  // in registration order
  std::vector<MethodInfo> methods;       // in registration order
};

}  // namespace zemhost
