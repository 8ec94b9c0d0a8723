// The database files whose answers are kept.
#pragma once

#include <string>
#include <vector>

namespace golden {

struct Sample {
  std::string name{};   // of its listing, name.txt
  std::string about{};  // a line on what is special about it
  std::string bytes{};
};

std::vector<Sample> Samples();

}  // namespace golden
