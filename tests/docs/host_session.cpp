// host_session PLUGIN [NAME=FOLDER]...: a host for programs in other languages. Mounts the folders as
// volumes, loads the plug-in, then answers each line of standard input with a line, both JSON:
//
//   ["class", CLASS]                        {"methods": [[NAME, NUMBER OF ARGUMENTS]...],
//                                            "properties": [[NAME, WHETHER IT CAN BE WRITTEN]...]}
//   ["new", CLASS]                          the number of a new object
//   ["call", OBJECT, METHOD, ARGUMENTS]     what the method returns
//   ["get", OBJECT, PROPERTY]               what the property holds
//   ["set", OBJECT, PROPERTY, VALUE]        null
//   ["convert", STRING, ENCODING]           the string in another encoding
//
// A request that fails is answered with {"error": TEXT}. A String is {"text": BYTES IN HEXADECIMAL,
// "encoding": CODE}, a FolderItem {"path": PATH OF THIS MACHINE, "macPath": COLON-SEPARATED PATH}; nil is
// null, and as a String the empty text.

#include <cstdint>
#include <exception>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/Host.h"

namespace {

using nlohmann::json;
using zemhost::FolderItem;
using zemhost::HostString;
using zemhost::Kind;
using zemhost::Value;

std::string toHex(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string hex;
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    hex += {digits[byte >> 4], digits[byte & 15]};
  }
  return hex;
}

std::string fromHex(const std::string &hex) {
  std::string bytes;
  for (size_t i = 0; i + 1 < hex.size(); i += 2)
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  return bytes;
}

json toJson(const HostString &string) {
  return {{"text", toHex(string.bytes())}, {"encoding", string.encoding()}};
}

json toJson(const FolderItem &item) { return {{"path", item.path().string()}, {"macPath", item.macPath()}}; }

json toJson(const Value &value) {
  switch (value.kind()) {
    case Kind::None:
      return nullptr;
    case Kind::Integer:
      return value.integer();
    case Kind::Boolean:
      return value.boolean();
    case Kind::String:
      return toJson(value.string());
    case Kind::FolderItem:
      return value.isNil() ? json() : toJson(value.folderItem());
  }
  throw std::logic_error("a value of no kind");
}

HostString stringFrom(const json &value) {
  return HostString::fromBytes(fromHex(value.at("text")), value.at("encoding").get<uint32_t>());
}

Value valueFrom(const json &value) {
  if (value.is_null()) return FolderItem();
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number_integer()) return value.get<int32_t>();
  if (value.contains("path")) return FolderItem::fromPath(value.at("path").get<std::string>());
  return stringFrom(value);
}

json describe(const zemhost::ClassInfo &info) {
  json methods = json::array();
  for (const zemhost::MethodInfo &method : info.methods)
    methods.push_back({method.declaration.name, method.declaration.arguments.size()});
  json properties = json::array();
  for (const zemhost::PropertyInfo &property : info.properties)
    properties.push_back({property.name, property.setter != nullptr});
  return {{"methods", methods}, {"properties", properties}};
}

class Session {
 public:
  explicit Session(const char *plugin) : host_(zemhost::Host::load({plugin, 5.9, {}})) {}

  json answer(const json &request) {
    const std::string what = request.at(0);
    if (what == "class") return describe(host_.classInfo(request.at(1).get<std::string>()));
    if (what == "convert")
      return toJson(stringFrom(request.at(1)).convertedTo(request.at(2).get<uint32_t>()));
    if (what == "new") {
      objects_.push_back(host_.make(request.at(1).get<std::string>()));
      return objects_.size() - 1;
    }
    const zemhost::Object &object = objects_.at(request.at(1).get<size_t>());
    const std::string member = request.at(2);
    if (what == "get") return toJson(object.get(member));
    if (what == "set") {
      object.set(member, valueFrom(request.at(3)));
      return nullptr;
    }
    if (what != "call") throw std::invalid_argument("no such request: " + what);
    std::vector<Value> arguments;
    for (const json &argument : request.at(3)) arguments.push_back(valueFrom(argument));
    return toJson(object.call(member, arguments));
  }

 private:
  zemhost::Host host_;
  std::vector<zemhost::Object> objects_;
};

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    std::cerr << "usage: host_session PLUGIN [NAME=FOLDER]...\n";
    return 2;
  }
  try {
    for (int i = 2; i < argc; ++i) {
      const std::string volume = argv[i];
      const size_t end = volume.find('=');
      zemhost::mountVolume(volume.substr(0, end), volume.substr(end + 1));
    }
    Session session(argv[1]);
    for (std::string line; std::getline(std::cin, line);) {
      json answer;
      try {
        answer = session.answer(json::parse(line));
      } catch (const std::exception &error) {
        answer = {{"error", error.what()}};
      }
      // A path of this machine need not be UTF-8.
      std::cout << answer.dump(-1, ' ', false, json::error_handler_t::replace) << std::endl;
    }
    return 0;
  } catch (const std::exception &error) {
    std::cerr << "host_session: " << error.what() << '\n';
    return 1;
  }
}
