// A plug-in of a toy class, written against the host interface alone: every kind of argument and result,
// overloads, properties, two constructors and a destructor that counts.

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"

namespace {

REALresolver gServices = nullptr;
int32_t gDestructorsRun = 0;

template <typename Function>
Function *service(const char *name) {
  return reinterpret_cast<Function *>(gServices(name));
}

struct Toy {
  int32_t count;
  int32_t flag;
  int32_t slots[2];
  REALstring name;  // no reference: only compared
};

extern REALclassDefinition gToyClass;

Toy &toyOf(REALobject object) {
  return *reinterpret_cast<Toy *>(reinterpret_cast<char *>(object) + gToyClass.dataOffset);
}

REALstring build(const std::string &text) {
  return service<REALstring(const char *, int32_t)>("REALBuildString")(text.data(),
                                                                       static_cast<int32_t>(text.size()));
}

std::string textOf(REALstring string) {
  return {REALstringStruct::CString(string), static_cast<size_t>(REALstringStruct::Length(string))};
}

REALstring pathOf(REALfolderItem item) {
  return service<REALstring(REALfolderItem)>("REALpathFromFolderItem")(item);
}

void construct(REALobject object) { toyOf(object).count += 100; }
void constructWith(REALobject object, int32_t start) { toyOf(object).count += start; }
void slotConstructor(REALobject object) { toyOf(object).count = 1000; }
void destroy(REALobject) { ++gDestructorsRun; }

int32_t next(REALobject object) { return ++toyOf(object).count; }
int32_t add(REALobject, int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
int32_t opposite(REALobject, int32_t b) { return b == 0 ? 1 : 0; }
int32_t rawOf(REALobject, int32_t b) { return b; }
int32_t truthOf(REALobject, int32_t n) { return n; }
void remember(REALobject object, int32_t n) { toyOf(object).count = n; }
REALstring nothing(REALobject) { return nullptr; }
REALfolderItem noItem(REALobject) { return nullptr; }
int32_t isNull(REALobject, REALstring s) { return s == nullptr ? 1 : 0; }

REALstring echo(REALobject, REALstring s) {
  REALstring copy = build(textOf(s));
  service<void(REALstring, uint32_t)>("REALSetStringEncoding")(
      copy, service<uint32_t(REALstring)>("REALGetStringEncoding")(s));
  return copy;
}

REALfolderItem sameItem(REALobject, REALfolderItem f) {
  FSSpec spec = {};
  if (service<int32_t(FSSpec *, REALfolderItem)>("REALFSSpecFromFolderItem")(&spec, f) == 0) return nullptr;
  return service<REALfolderItem(const FSSpec *)>("FolderItemFromFSSpec")(&spec);
}

REALstring mix(REALobject object, int32_t a, int32_t b, REALstring c, REALfolderItem d, int32_t e,
               REALstring f) {
  REALstring path = pathOf(d);
  const std::string whole = std::to_string(a) + '|' + std::to_string(b) + '|' + textOf(c) + '|' +
                            textOf(path) + '|' + std::to_string(e) + '|' + textOf(f) + '|' +
                            std::to_string(toyOf(object).count);
  service<void(REALstring)>("RuntimeUnlockString")(path);
  return build(whole);
}

REALstring whichInteger(REALobject, int32_t) { return build("Integer"); }
REALstring whichBoolean(REALobject, int32_t) { return build("Boolean"); }
REALstring whichString(REALobject, REALstring) { return build("String"); }
REALstring whichTwo(REALobject, int32_t, int32_t) { return build("Integer, Integer"); }
REALstring whichItem(REALobject, REALfolderItem f) {
  REALstring path = pathOf(f);
  REALstring text = build("FolderItem " + textOf(path));
  service<void(REALstring)>("RuntimeUnlockString")(path);
  return text;
}
REALstring eitherText(REALobject, REALstring, int32_t) { return build("String, Integer"); }
REALstring eitherItem(REALobject, REALfolderItem, int32_t) { return build("FolderItem, Integer"); }

int32_t destructorsRun() { return gDestructorsRun; }

int32_t getSlot(REALobject object, intptr_t parameter) { return toyOf(object).slots[parameter]; }
void setSlot(REALobject object, intptr_t parameter, int32_t value) { toyOf(object).slots[parameter] = value; }
int32_t getFlag(REALobject object, intptr_t) { return toyOf(object).flag; }
void setFlag(REALobject object, intptr_t, int32_t value) { toyOf(object).flag = value; }
REALstring getName(REALobject object, intptr_t) {
  return build(toyOf(object).name == nullptr ? "none" : "some");
}
void setName(REALobject object, intptr_t, REALstring value) { toyOf(object).name = value; }
REALfolderItem getFile(REALobject, intptr_t) { return nullptr; }

template <typename Function>
REALproc slot(Function *function) {
  return reinterpret_cast<REALproc>(function);
}

REALmethodDefinition gMethods[] = {
    {slot(construct), nullptr, "Constructor", 0},
    {slot(constructWith), nullptr, "Constructor(start As Integer)", 0},
    {slot(next), nullptr, "Next As Integer", 0},
    {slot(add), nullptr, "Add(a As Integer, b As Integer) As Integer", 0},
    {slot(opposite), nullptr, "Opposite(b As Boolean) As Boolean", 0},
    {slot(rawOf), nullptr, "RawOf(b As Boolean) As Integer", 0},
    {slot(truthOf), nullptr, "TruthOf(n As Integer) As Boolean", 0},
    {slot(remember), nullptr, "Remember(n As Integer)", 0},
    {slot(nothing), nullptr, "Nothing As String", 0},
    {slot(noItem), nullptr, "NoItem As FolderItem", 0},
    {slot(isNull), nullptr, "IsNull(s As String) As Boolean", 0},
    {slot(echo), nullptr, "Echo(s As String) As String", 0},
    {slot(sameItem), nullptr, "SameItem(f As FolderItem) As FolderItem", 0},
    {slot(mix), nullptr,
     "Mix(a As Integer, b As Boolean, c As String, d As FolderItem, e As Integer, f As String) As String", 0},
    {slot(whichInteger), nullptr, "Which(n As Integer) As String", 0},
    {slot(whichBoolean), nullptr, "Which(b As Boolean) As String", 0},
    {slot(whichString), nullptr, "Which(s As String) As String", 0},
    {slot(whichTwo), nullptr, "which(n As Integer, m As Integer) As String", 0},
    {slot(whichItem), nullptr, "ItemOnly(f As FolderItem) As String", 0},
    {slot(eitherText), nullptr, "Either(s As String, n As Integer) As String", 0},
    {slot(eitherItem), nullptr, "Either(f As FolderItem, n As Integer) As String", 0},
};
constexpr intptr_t kMethodCount = sizeof gMethods / sizeof *gMethods;

REALproperty gProperties[] = {
    {"Slots", "First", "Integer", 1, slot(getSlot), slot(setSlot), 0, nullptr},
    {"Slots", "Second", "Integer", 1, slot(getSlot), slot(setSlot), 1, nullptr},
    {nullptr, "Flag", "Boolean", 1, slot(getFlag), slot(setFlag), 0, nullptr},
    {nullptr, "Name", "String", 1, slot(getName), slot(setName), 0, nullptr},
    {nullptr, "File", "FolderItem", 1, slot(getFile), nullptr, 0, nullptr},
    {nullptr, "WriteOnly", "Boolean", 1, nullptr, slot(setFlag), 0, nullptr},
};

REALclassDefinition gToyClass = {9,
                                 "Toy",
                                 nullptr,
                                 sizeof(Toy),
                                 0,
                                 slot(slotConstructor),
                                 slot(destroy),
                                 gProperties,
                                 sizeof gProperties / sizeof *gProperties,
                                 gMethods,
                                 kMethodCount,
                                 nullptr,
                                 0,
                                 nullptr,
                                 0};

REALclassDefinition gPlainClass = {};
REALmethodDefinition gGlobal = {slot(destructorsRun), nullptr, "ToyDestructorsRun As Integer", 0};

// The list as hosts before version 5.9 read it.
void shortenMethods() {
  static REALmethodDefinitionV6 rows[kMethodCount];
  for (intptr_t i = 0; i < kMethodCount; ++i)
    rows[i] = {gMethods[i].function, gMethods[i].setter, gMethods[i].declaration};
  gToyClass.methods = reinterpret_cast<REALmethodDefinition *>(rows);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(REALresolver resolver) {
  gServices = reinterpret_cast<REALresolver>(resolver("ResolverPPC"));
  service<void(int32_t)>("RegisterPluginVersion")(9);
  auto *version = service<double()>("REALGetRBVersion");
  gToyClass.methods = gMethods;
  if (version == nullptr || version() < 5.9) shortenMethods();
  const char *fault = std::getenv("TOY_FAULT");
  gMethods[2].declaration = fault != nullptr ? fault : "Next As Integer";
  service<void(REALclassDefinition *)>("PluginRegisterClass")(&gToyClass);
  gPlainClass.name = fault != nullptr && std::strcmp(fault, "Next") == 0 ? "TOY" : "Plain";
  service<void(REALclassDefinition *)>("PluginRegisterClass")(&gPlainClass);
  service<void(REALmethodDefinition *)>("PluginRegisterMethod")(&gGlobal);
}
