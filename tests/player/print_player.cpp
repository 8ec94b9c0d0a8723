// print_player KIND [FILE...]: prints what a reader makes of each file, or of each line of standard input if
// there is none, as a line of JSON.

#include <exception>
#include <iostream>
#include <map>
#include <string>

#include "tests/player/Printers.h"

namespace {

const std::map<std::string, player::Json (*)(const std::string &)> kReaders = {
    {"images", player::imagesJson},     {"lists", player::listsJson}, {"nano", player::nanoJson},
    {"shuffles", player::shufflesJson}, {"songs", player::songsJson},
};

}  // namespace

int main(int argc, char **argv) {
  try {
    const auto read = kReaders.at(argc > 1 ? argv[1] : "");
    const auto print = [&](const std::string &what) {
      std::cout << read(what).dump(-1, ' ', false, player::Json::error_handler_t::replace) << '\n';
    };
    for (int i = 2; i < argc; ++i) print(argv[i]);
    for (std::string line; argc == 2 && std::getline(std::cin, line);) print(line);
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
  return 0;
}
