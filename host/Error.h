#pragma once

#include <stdexcept>

namespace zemhost {

// What the host throws: one line in plain words that names the file, class, method or text concerned.
class HostError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace zemhost
