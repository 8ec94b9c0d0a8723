#include "zemhost/output/JsonText.h"

#include "zemhost/output/DisplayText.h"

namespace zemhost {

std::string jsonText(const nlohmann::ordered_json &value, int indent) {
  using Json = nlohmann::ordered_json;
  return escapedJson(value.dump(indent, ' ', false, Json::error_handler_t::replace));
}

}  // namespace zemhost
