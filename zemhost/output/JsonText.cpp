#include "zemhost/output/JsonText.h"

#include "zemhost/output/DisplayText.h"

namespace zemhost {

std::string jsonText(const Json &value, int indent) {
  return escapedJson(value.dump(indent, ' ', false, Json::error_handler_t::replace));
}

}  // namespace zemhost
