// One case of the property test: database files, and what host code does with two objects of the class.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/Text.h"

namespace property {

struct DatabaseFile {
  enum class Place {
    Player,   // where a player has it
    Folder,   // in some other folder of the volume
    Missing,  // nowhere, though its folder is there
  };
  enum class Path { Own, None, Given };  // what the host says that the item's path is

  std::vector<std::string> pieces{};  // mostly one chunk's header or one data object each
  Place place = Place::Player;
  bool hasSpecification = true;
  Path path = Path::Own;
  std::string givenPath{};

  [[nodiscard]] std::string Bytes() const;
};

struct Step {
  enum class Kind {
    Call,  // of a method
    Get,   // of a property
    Set,   // of a property, to the first number
    Host,  // from now on converts no string if number 0 is not 0, and builds none if number 1 is not 0
  };

  Kind kind = Kind::Call;
  size_t object = 0;                      // 0 or 1
  std::string name{};                     // a declaration, or a property's name
  std::array<int32_t, 3> numbers{};       // arguments of the method, as many as it takes
  std::optional<model::HostText> text{};  // missing is the null string
  std::optional<size_t> file{};           // missing is nil
};

struct Case {
  std::vector<DatabaseFile> files{};
  std::vector<Step> steps{};
};

// The step as host code would write it.
std::string Describe(const Step &step);

// All steps, and all files byte for byte.
std::string Describe(const Case &what);

}  // namespace property
