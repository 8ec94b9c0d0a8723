#include "tests/property/RandomCase.h"

#include <string_view>

#include "tests/model/Methods.h"
#include "tests/property/RandomFile.h"
#include "tests/support/AnyCall.h"

namespace property {
namespace {

using samples::Random;

constexpr size_t kLoad = 1;  // the methods before and with it make and fill an object

constexpr int32_t kEncodings[] = {0, 1, 3, -100, 0x0100, 0x0600, 0x0A01, 0x08000100, 0x01000000, 0x0FFF, -1};
constexpr int32_t kBooleans[] = {0, 1, 2, -1, 256, INT32_MIN, INT32_MAX};
constexpr int32_t kObjects[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 15, 50, 100, -1, -100};
constexpr int32_t kUnnamed[] = {0, 7, 8, 13, 100};
constexpr int32_t kExtremes[] = {INT32_MIN, INT32_MAX, -100, 1000, 65536};

class CaseMaker {
 public:
  explicit CaseMaker(uint64_t seed)
      : random_(seed),
        favouriteIndex_(static_cast<int32_t>(random_.Below(3))),
        favouriteID_(SomeTrackID(random_)),
        favouriteObject_(Pick(random_, kUnnamed)) {}

  Case Make() {
    for (size_t i = 0; i < 2; ++i) case_.files.push_back(File());
    for (size_t i = 0; i < 2; ++i) {
      if (random_.OneIn(4)) Any(i);
      if (!random_.OneIn(40)) Call(i, "Constructor");
      for (uint32_t more = random_.Below(3); more > 0; --more) Property(i);
      if (!random_.OneIn(15)) Load(i, i);
    }
    const uint32_t steps = 60 + random_.Below(100);
    for (uint32_t i = 0; i < steps; ++i) Any(random_.Below(2));
    return case_;
  }

 private:
  DatabaseFile File() {
    DatabaseFile file;
    file.pieces = SomeFile(random_);
    if (random_.OneIn(4)) file.place = DatabaseFile::Place::Folder;
    if (random_.OneIn(30)) file.place = DatabaseFile::Place::Missing;
    file.hasSpecification = !random_.OneIn(40);
    if (random_.OneIn(30)) file.path = DatabaseFile::Path::None;
    if (random_.OneIn(10)) {
      constexpr std::string_view kPaths[] = {"",
                                             ":iPod_Control",
                                             "Disk",
                                             "A:iPod_Control:iPod_Control:x",
                                             "A:iPod_Contro:iPod_Controls",
                                             "iPod::iPod_Control:iTunes:iTunesDB"};
      file.path = DatabaseFile::Path::Given;
      file.givenPath = random_.OneIn(8) ? std::string(300, 'v') : std::string(Pick(random_, kPaths));
    }
    return file;
  }

  Step &Add(Step::Kind kind, size_t object, const std::string &name) {
    case_.steps.push_back({.kind = kind, .object = object, .name = name});
    return case_.steps.back();
  }

  void Any(size_t object) {
    const uint32_t kind = random_.Below(100);
    if (kind < 10) {
      Property(object);
    } else if (kind < 11) {
      Load(object, random_.Below(3));
    } else if (kind < 12) {
      Step &step = Add(Step::Kind::Host, object, "");
      step.numbers = {random_.OneIn(3) ? 1 : 0, random_.OneIn(4) ? 1 : 0, 0};
    } else if (random_.OneIn(200)) {
      Call(object, "Constructor");
    } else {
      const auto &methods = model::Methods();
      Call(object,
           methods[kLoad + 1 + random_.Below(static_cast<uint32_t>(methods.size() - kLoad - 1))].declaration);
    }
  }

  // File 2 is nil.
  void Load(size_t object, size_t file) {
    Step &step = Add(Step::Kind::Call, object, model::Methods()[kLoad].declaration);
    if (file < case_.files.size()) step.file = file;
  }

  void Property(size_t object) {
    constexpr const char *kNames[] = {"UseSJIS", "ResultEncode", "ZerobasePlayerlist",
                                      "Error",   "LibType",      "VolumeName"};
    const uint32_t name = random_.Below(6);
    const bool writable = name < 3 && !random_.OneIn(3);
    Step &step = Add(writable ? Step::Kind::Set : Step::Kind::Get, object, kNames[name]);
    step.numbers[0] = name == 1 ? Encoding() : Pick(random_, kBooleans);
  }

  int32_t Encoding() {
    return random_.OneIn(10) ? static_cast<int32_t>(random_.Next()) : Pick(random_, kEncodings);
  }

  void Call(size_t object, const std::string &declaration) {
    Step &step = Add(Step::Kind::Call, object, declaration);
    const std::string shape = support::ShapeOf(declaration);
    std::string_view rest = declaration;
    size_t number = 0;
    for (size_t i = 0; shape[i] != '>'; ++i) {
      rest.remove_prefix(rest.find_first_of("(,") + 1);
      if (rest.front() == ' ') rest.remove_prefix(1);
      const std::string_view name = rest.substr(0, rest.find(" As "));
      if (shape[i] == 'i') step.numbers.at(number++) = Number(name);
      if (shape[i] == 's') step.text = Text();
    }
    if (declaration.starts_with("Set")) LookAfter(Step(step));
  }

  // Asks for what a setter may have changed: what it is named for, or something else of the same song or
  // entry.
  void LookAfter(const Step &setter) {
    const size_t open = setter.name.find('(');
    const bool ofEntry = setter.name.compare(open, 9, "(playlist") == 0;
    const size_t end = ofEntry ? setter.name.rfind(',') : setter.name.find(',');
    const std::string who = setter.name.substr(open, end - open) + ')';
    std::string named = setter.name.substr(0, end) + ')';
    named[0] = 'G';
    for (uint32_t more = random_.Below(4); more > 0; --more) {
      std::vector<std::string> questions;
      for (const model::Method &method : model::Methods()) {
        if (method.declaration.starts_with("Get") && method.declaration.find(who) != std::string::npos)
          questions.push_back(method.declaration);
        if (method.declaration.starts_with(named)) questions.insert(questions.end(), 20, method.declaration);
      }
      Step &question = Add(Step::Kind::Call, setter.object, Pick(random_, questions));
      question.numbers = setter.numbers;
    }
  }

  // A number that suits an argument of that name, in range or a little out of it. Some come back again and
  // again, so that what was set is asked for.
  int32_t Number(std::string_view name) {
    if (random_.OneIn(25)) return Pick(random_, kExtremes);
    if (random_.OneIn(2)) {
      if (name == "playlist") return 0;
      if (name == "trackID") return favouriteID_;
      if (name == "num") return favouriteObject_;
      if (name == "index" || name == "Index") return favouriteIndex_;
    }
    if (name == "playlist") return static_cast<int32_t>(random_.Below(random_.OneIn(3) ? 7 : 4)) - 1;
    if (name == "trackID") return SomeTrackID(random_);
    if (name == "index" || name == "Index" || name == "IndexA" || name == "IndexB") {
      return static_cast<int32_t>(random_.Below(random_.OneIn(8) ? 20 : 5)) - 1 + (random_.OneIn(2) ? 1 : 0);
    }
    if (name == "num")
      return random_.OneIn(2) ? Pick(random_, kObjects) : static_cast<int32_t>(random_.Below(15)) - 4;
    if (name == "play" || name == "b" || name == "reqType") return Pick(random_, kBooleans);
    return static_cast<int32_t>(SomeWord(random_));
  }

  std::optional<model::HostText> Text() {
    if (random_.OneIn(12)) return std::nullopt;
    std::string bytes = SomeBytes(random_) + (random_.OneIn(3) ? SomeBytes(random_) : "");
    if (random_.OneIn(20)) bytes += std::string(random_.Below(300), 'p');
    return model::HostText{bytes, static_cast<uint32_t>(Encoding())};
  }

  Random random_;
  int32_t favouriteIndex_;
  int32_t favouriteID_;
  int32_t favouriteObject_;
  Case case_;
};

}  // namespace

Case SomeCase(uint64_t seed) { return CaseMaker(seed).Make(); }

}  // namespace property
