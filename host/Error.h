#pragma once

#include <stdexcept>
#include <string>
#include <system_error>

namespace zemhost {

// What the host throws: one line in plain words that names the file, class, method or text concerned.
class HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  // "FILE: No such file or directory": the name, and the system's words for the error number.
  HostError(const std::string &name, int error)
      : std::runtime_error(name + ": " + std::generic_category().message(error)) {}
};

}  // namespace zemhost
