#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zemhost {

// Help for people: no line is wider than 80 columns, and all are broken between words.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App *app) const override;
  std::string make_footer(const CLI::App *app) const override;
  std::string make_subcommand(const CLI::App *command) const override;
  std::string make_option(const CLI::Option *option, bool isPositional) const override;
};

}  // namespace zemhost
