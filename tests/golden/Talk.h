// A conversation with one object of the built plug-in, in which every question is noted.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/golden/Samples.h"
#include "tests/property/Case.h"
#include "tests/support/AnyCall.h"

namespace golden {

using Numbers = std::array<int32_t, 3>;

class Talk {
 public:
  // Loads the sample into a new object.
  explicit Talk(const Sample &sample);
  ~Talk();
  Talk(const Talk &) = delete;
  Talk &operator=(const Talk &) = delete;

  support::Answer Call(const std::string &declaration, const Numbers &numbers = {});
  void SetText(const std::string &declaration, int32_t index, const std::string &utf8);
  support::Answer AbsolutePath(const std::string &path);
  support::Answer Get(const std::string &property);
  void Set(const std::string &property, int32_t value);

  [[nodiscard]] const std::vector<property::Step> &Steps() const { return steps_; }

 private:
  std::vector<property::Step> steps_;
  support::TestHost host_;
  REALfolderItem item_;
  REALobject object_;
};

// The answer of a declaration's kind, as a person reads it: a number, True or False, a text in quotes, a path
// in angle brackets; "no text" and "no item" for null and nil.
std::string Show(const std::string &declaration, const support::Answer &answer);
std::string ShowText(const support::HostText &text);

}  // namespace golden
