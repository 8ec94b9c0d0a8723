// A small host for tests, independent of zemhost: it answers the plug-in's look-ups, notes every look-up and
// call, counts the references of strings and folder items, can leave any service out or make it fail, and
// calls the registered functions directly.
//
// Hosts live one at a time. What the plug-in does wrong (a string released twice, a data block overrun) is
// kept as a fault; a test ends with `EXPECT_THAT(host.Faults(), IsEmpty())`.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/carbon/FileRecords.h"
#include "sdk/HostTypes.h"
#include "tests/support/HostStrings.h"

// Host and plug-in call each other through plain function slots, across a library boundary that keeps the
// types' run-time descriptions apart.
#if defined(__clang__)
#define SUPPORT_CALLS_SLOTS __attribute__((no_sanitize("function")))
#else
#define SUPPORT_CALLS_SLOTS
#endif

namespace support {

using EntryPoint = void (*)(REALresolver);

// One conversion that the plug-in asked for.
struct Conversion {
  std::string bytes{};
  uint32_t from = 0;
  uint32_t to = 0;

  friend bool operator==(const Conversion &, const Conversion &) = default;
};

void PrintTo(const Conversion &conversion, std::ostream *out);

// A property as the class record shows it.
struct PropertySlots {
  std::string name{};
  std::string type{};
  REALproc getter = nullptr;
  REALproc setter = nullptr;
};

class TestHost {
 public:
  struct Setup {
    double version = 5.9;
    std::set<std::string> missing{};  // look-up names that the host does not know
    size_t dataOffset = 48;           // of the plug-in's data inside an object
    EntryPoint entryPoint = nullptr;  // null: the built plug-in, freshly loaded
  };

  // Loads the plug-in and calls its entry point. Throws std::runtime_error when there is no plug-in.
  TestHost() : TestHost(Setup{}) {}
  explicit TestHost(const Setup &setup);
  // Ends the objects that are left, and unloads the plug-in.
  ~TestHost();
  TestHost(const TestHost &) = delete;
  TestHost &operator=(const TestHost &) = delete;

  // What may change while the host runs.
  double version;
  std::set<std::string> missing;
  uint32_t encodingOfNoString = 0;  // what REALGetStringEncoding answers for the null string
  bool buildFails = false;          // REALBuildString answers null
  bool convertFails = false;        // REALConvertString answers null
  int32_t specAnswer = 1;           // what REALFSSpecFromFolderItem answers for an item
  // What REALpathFromFolderItem answers instead of the item's own path; an empty optional is the null string.
  std::function<std::optional<std::string>()> pathOfItems{};

  // Called with false each time that a method, a property's accessor or the destructor starts or goes on to
  // run, and with true each time that the host does.
  std::function<void(bool)> crossing{};

  // The class, once registered; the methods with three or four words each, as the version has it.
  [[nodiscard]] const REALclassDefinition *Class() const { return class_; }
  [[nodiscard]] std::vector<std::string> Declarations() const;
  [[nodiscard]] REALmethodDefinition MethodAt(size_t i) const;
  [[nodiscard]] PropertySlots PropertyNamed(std::string_view name) const;

  // Look-ups ("? name") and calls of services ("name", with its number if it has one) since Forget.
  [[nodiscard]] const std::vector<std::string> &Events() const { return events_; }
  [[nodiscard]] size_t Count(std::string_view event) const;
  [[nodiscard]] const std::vector<Conversion> &Conversions() const { return conversions_; }
  [[nodiscard]] const FSSpec &LastSpec() const { return lastSpec_; }  // given to FolderItemFromFSSpec
  void Forget();

  // Calls the entry point once more.
  void EnterAgain();

  // A new object. Raw: its data block is zero and the constructor has not run.
  REALobject New();
  REALobject NewRaw();
  // Runs the destructor alone, after which the object can be constructed once more.
  void Destruct(REALobject object);
  // Runs the destructor and ends the object.
  void Delete(REALobject object);

  // Calls the method of exactly this declaration. Throws std::logic_error when there is none, or when the
  // argument types or the result are not those declared. Integers and Booleans are int32_t.
  template <typename Result, typename... Arguments>
  SUPPORT_CALLS_SLOTS Result Call(REALobject object, std::string_view declaration, Arguments... arguments) {
    const REALproc function = Method(declaration, {KindOf<Arguments>()...}, KindOf<Result>());
    const InPlugin here(*this);
    return reinterpret_cast<Result (*)(REALobject, Arguments...)>(function)(object, arguments...);
  }
  template <typename Value>
  SUPPORT_CALLS_SLOTS Value Get(REALobject object, std::string_view property) {
    const PropertySlots slots = PropertyNamed(property);
    if (slots.getter == nullptr || !Fits(slots.type, KindOf<Value>())) throw std::logic_error(slots.name);
    const InPlugin here(*this);
    return reinterpret_cast<Value (*)(REALobject, intptr_t)>(slots.getter)(object, 0);
  }
  template <typename Value>
  SUPPORT_CALLS_SLOTS void Set(REALobject object, std::string_view property, Value value) {
    const PropertySlots slots = PropertyNamed(property);
    if (slots.setter == nullptr || !Fits(slots.type, KindOf<Value>())) throw std::logic_error(slots.name);
    const InPlugin here(*this);
    reinterpret_cast<void (*)(REALobject, intptr_t, Value)>(slots.setter)(object, 0, value);
  }

  // Calls a method that returns a string, reads the string and releases it.
  template <typename... Arguments>
  HostText CallText(REALobject object, std::string_view declaration, Arguments... arguments) {
    return Take(Call<REALstring>(object, declaration, arguments...));
  }
  HostText GetText(REALobject object, std::string_view property) {
    return Take(Get<REALstring>(object, property));
  }
  // The declarations called so far.
  [[nodiscard]] const std::set<std::string, std::less<>> &Called() const { return called_; }

  REALstring MakeString(std::string_view bytes, uint32_t encoding = kUtf8) {
    return strings_.Make(bytes, encoding);
  }
  void Release(REALstring string) { strings_.Release(string); }
  HostText Take(REALstring string);

  // A folder item of a file, with one reference.
  REALfolderItem MakeItem(const FSSpec &spec);
  REALfolderItem MakeItem(const std::string &posixPath);
  [[nodiscard]] FSSpec SpecOf(REALfolderItem item);
  void Release(REALfolderItem item);

  [[nodiscard]] size_t LiveStrings() const { return strings_.Live(); }
  [[nodiscard]] std::vector<std::string> LiveTexts() const { return strings_.LiveTexts(); }
  [[nodiscard]] size_t LiveItems() const;
  // The ones made last of those that still have references; null when there are none.
  [[nodiscard]] REALstring LastLiveString() const { return strings_.LastLive(); }
  [[nodiscard]] REALfolderItem LastLiveItem() const;
  [[nodiscard]] std::vector<std::string> Faults();

  // The plug-in's data block inside an object.
  [[nodiscard]] void *Data(REALobject object) const;

 private:
  struct Item;
  struct Services;
  struct ObjectBlock;

  // While a method runs.
  class InPlugin {
   public:
    explicit InPlugin(TestHost &host) : host_(host) { Cross(false); }
    InPlugin(const InPlugin &) = delete;
    InPlugin &operator=(const InPlugin &) = delete;
    ~InPlugin() { Cross(true); }

   private:
    void Cross(bool inHost) const {
      if (host_.crossing) host_.crossing(inHost);
    }
    TestHost &host_;
  };

  template <typename T>
  static constexpr char KindOf() {
    if constexpr (std::is_same_v<T, int32_t>) return 'i';
    if constexpr (std::is_same_v<T, REALstring>) return 's';
    if constexpr (std::is_same_v<T, REALfolderItem>) return 'f';
    if constexpr (std::is_void_v<T>) return 'v';
    static_assert(std::is_same_v<T, int32_t> || std::is_same_v<T, REALstring> ||
                  std::is_same_v<T, REALfolderItem> || std::is_void_v<T>);
    return '?';
  }
  static bool Fits(std::string_view typeName, char kind);
  REALproc Method(std::string_view declaration, std::initializer_list<char> arguments, char result);
  REALfolderItem NewItem(const FSSpec &spec);
  Item *Find(REALfolderItem item) const;
  bool CheckItem(REALfolderItem item, const char *use);
  void Load(EntryPoint entryPoint);

  std::vector<std::string> events_;
  std::vector<Conversion> conversions_;
  FSSpec lastSpec_{};
  HostStrings strings_;
  std::vector<std::unique_ptr<Item>> items_;
  std::map<REALobject, std::unique_ptr<ObjectBlock>> objects_;
  std::vector<std::string> faults_;
  std::set<std::string, std::less<>> called_;
  REALclassDefinition *class_ = nullptr;
  size_t dataOffset_;
  EntryPoint entryPoint_ = nullptr;
  void *library_ = nullptr;
  void *convertedMethods_ = nullptr;
};

}  // namespace support
