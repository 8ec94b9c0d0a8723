// Asks the model of the class what the plug-in is asked, in the same form.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/model/Object.h"
#include "tests/support/AnyCall.h"

namespace support {

// The test host as the model sees it: the same services, with the conversions noted.
class ModelHost : public model::Host {
 public:
  std::optional<model::HostText> Build(const std::string &bytes) override;
  std::optional<model::HostText> Convert(const model::HostText &text, uint32_t encoding) override;
  uint32_t EncodingOfNoString() override { return 0; }
  std::optional<std::string> ItemOfPath(const std::string &path) override;
  std::optional<model::HostText> PathOfItemOfPath(const std::string &path) override;

  bool buildFails = false;
  bool convertFails = false;
  std::vector<Conversion> conversions;
};

// The model's text as the test host shows it; the null string for a missing one.
HostText TextOf(const std::optional<model::HostText> &text);

// The arguments, as for CallAny; a missing text is the null string, a missing file is nil.
struct ModelArguments {
  std::array<int32_t, 3> numbers{};
  std::optional<model::HostText> text{};
  std::optional<model::HostFile> file{};
};

// What the model's method of exactly this declaration answers. Throws std::logic_error when there is none.
Answer AskModel(model::Object &object, std::string_view declaration, const ModelArguments &arguments);

}  // namespace support
