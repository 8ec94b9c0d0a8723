#include "player/PropertyXml.h"

#include <expat.h>
#include <memory>
#include <new>

namespace player {

namespace {

constexpr size_t kDeepest = 64;

}  // namespace

// What expat calls.
struct PropertyXml::Calls {
  PropertyXml &list;
  XML_Parser parser;

  static Calls &of(void *self) { return *static_cast<Calls *>(self); }

  static void begin(void *self, const XML_Char *name, const XML_Char ** /*attributes*/) {
    PropertyXml &list = of(self).list;
    if (++list.depth_ > kDeepest) {
      XML_StopParser(of(self).parser, XML_FALSE);
    } else {
      list.begin(name);
    }
  }

  static void add(void *self, const XML_Char *text, int length) {
    of(self).list.add({text, static_cast<size_t>(length)});
  }

  static void end(void *self, const XML_Char *name) {
    PropertyXml &list = of(self).list;
    list.end(name);
    --list.depth_;
  }

  // No property list needs an entity, and one could stand for more text than any memory holds. Those of other
  // files are never read.
  static void declareEntity(void *self, const XML_Char * /*name*/, int /*isParameter*/,
                            const XML_Char * /*value*/, int /*length*/, const XML_Char * /*base*/,
                            const XML_Char * /*systemId*/, const XML_Char * /*publicId*/,
                            const XML_Char * /*notation*/) {
    XML_StopParser(of(self).parser, XML_FALSE);
  }
};

void PropertyXml::read(std::string_view xml) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate(nullptr),
                                                                            &XML_ParserFree);
  if (!parser) throw std::bad_alloc();
  Calls calls{*this, parser.get()};
  XML_SetUserData(parser.get(), &calls);
  XML_SetElementHandler(parser.get(), &Calls::begin, &Calls::end);
  XML_SetCharacterDataHandler(parser.get(), &Calls::add);
  XML_SetEntityDeclHandler(parser.get(), &Calls::declareEntity);
  XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
}

}  // namespace player
