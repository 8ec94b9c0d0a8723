// Every method of the class, as a host has them registered: its function and the kinds of its arguments.
// Calls that way cost little beside the method itself, so that a fuzzer gets through many files.
#pragma once

#include <string>
#include <vector>

#include "tests/support/AnyCall.h"
#include "tests/support/TestHost.h"

namespace fuzz {

class MethodCalls {
 public:
  explicit MethodCalls(const support::TestHost &host);

  // How many methods there are beside "Constructor" and "Load".
  [[nodiscard]] size_t Count() const { return methods_.size(); }

  // Calls method i. A string or item that it returns is read and released.
  void Call(support::TestHost &host, size_t i, REALobject object, const support::Arguments &arguments) const;

  // Calls "Load"; whether it answers that the file was read.
  bool Load(REALobject object, REALfolderItem item) const;

 private:
  struct Method {
    std::string shape;
    REALproc function;
  };
  std::vector<Method> methods_;
  REALproc load_ = nullptr;
};

}  // namespace fuzz
