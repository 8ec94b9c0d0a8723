// The 130 methods by their declarations, in the order in which the class registers them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/model/Object.h"

namespace model {

struct FolderItem {
  std::optional<std::string> description{};  // as Host::ItemOfPath gives it; missing is nil

  friend bool operator==(const FolderItem &, const FolderItem &) = default;
};

using Argument = std::variant<int32_t, std::optional<HostText>, std::optional<HostFile>>;
// Nothing, an Integer or Boolean, a String or a FolderItem.
using Result = std::variant<std::monostate, int32_t, std::optional<HostText>, FolderItem>;

// One call: the object and what follows it.
struct Call {
  Object &object;
  const std::vector<Argument> &arguments;

  [[nodiscard]] int32_t Integer(size_t argument) const;
  [[nodiscard]] const std::optional<HostText> &String(size_t argument) const;
  [[nodiscard]] const std::optional<HostFile> &File(size_t argument) const;
  // The string's bytes and code; no bytes, and the host's code for it, for the null string.
  [[nodiscard]] HostText Text(size_t argument) const;
};

struct Method {
  std::string declaration;
  std::function<Result(const Call &)> call;
};

const std::vector<Method> &Methods();

}  // namespace model
