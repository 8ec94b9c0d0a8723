#include "player/PropertyList.h"

#include <expat.h>
#include <memory>
#include <new>
#include <utility>

namespace player {

namespace {

constexpr int kOutermost = 3;  // the depth of what stands in the dictionary in <plist>
constexpr size_t kLongestValue = 1024;

class PropertyReader {
 public:
  PropertyReader() : parser_(XML_ParserCreate(nullptr), &XML_ParserFree) {
    if (!parser_) throw std::bad_alloc();
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(
        parser_.get(), [](void *self, const XML_Char *name, const XML_Char **) { of(self).begin(name); },
        [](void *self, const XML_Char *name) { of(self).end(name); });
    XML_SetCharacterDataHandler(parser_.get(), [](void *self, const XML_Char *text, int length) {
      of(self).add({text, static_cast<size_t>(length)});
    });
    // No property list needs one, and one could stand for more text than any memory holds.
    XML_SetEntityDeclHandler(
        parser_.get(),
        [](void *self, const XML_Char *, int, const XML_Char *, int, const XML_Char *, const XML_Char *,
           const XML_Char *, const XML_Char *) { XML_StopParser(of(self).parser_.get(), XML_FALSE); });
  }

  std::map<std::string, std::string> read(std::string_view xml) {
    XML_Parse(parser_.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
    return std::move(properties_);
  }

 private:
  static PropertyReader &of(void *self) { return *static_cast<PropertyReader *>(self); }

  void begin(std::string_view name) {
    ++depth_;
    if (depth_ == kOutermost - 1) isInside_ = name == "dict";
    text_.clear();
  }

  void add(std::string_view text) {
    if (isInside_ && depth_ == kOutermost) text_.append(text.substr(0, kLongestValue - text_.size()));
  }

  void end(std::string_view name) {
    if (isInside_ && depth_ == kOutermost) {
      if (name == "key") {
        key_ = text_;
      } else {
        if (name == "true" || name == "false") text_ = name;
        if (name != "dict" && name != "array" && !key_.empty()) properties_.try_emplace(key_, text_);
        key_.clear();
      }
    }
    --depth_;
  }

  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser_;
  std::map<std::string, std::string> properties_;
  int depth_ = 0;
  bool isInside_ = false;
  std::string key_;
  std::string text_;
};

}  // namespace

std::map<std::string, std::string> propertiesOf(std::string_view xml) { return PropertyReader().read(xml); }

}  // namespace player
