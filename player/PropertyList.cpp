#include "player/PropertyList.h"

#include <cstddef>
#include <utility>

#include "player/PropertyXml.h"

namespace player {

namespace {

constexpr size_t kOutermost = 3;  // the depth of what stands in the dictionary in <plist>
constexpr size_t kLongestValue = 1024;

class PropertyReader : public PropertyXml {
 public:
  std::map<std::string, std::string> takeProperties() { return std::move(properties_); }

 private:
  void begin(std::string_view name) override {
    if (depth() == kOutermost - 1) isInside_ = name == "dict";
    text_.clear();
  }

  void add(std::string_view text) override {
    if (isInside_ && depth() == kOutermost) text_.append(text.substr(0, kLongestValue - text_.size()));
  }

  void end(std::string_view name) override {
    if (isInside_ && depth() == kOutermost) {
      if (name == "key") {
        key_ = text_;
      } else {
        if (name == "true" || name == "false") text_ = name;
        if (name != "dict" && name != "array" && !key_.empty()) properties_.try_emplace(key_, text_);
        key_.clear();
      }
    }
  }

  std::map<std::string, std::string> properties_;
  bool isInside_ = false;
  std::string key_;
  std::string text_;
};

}  // namespace

std::map<std::string, std::string> propertiesOf(std::string_view xml) {
  PropertyReader reader;
  reader.read(xml);
  return reader.takeProperties();
}

}  // namespace player
