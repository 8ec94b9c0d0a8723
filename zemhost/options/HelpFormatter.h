#pragma once

#include <string>

#include "zemhost/options/Parts.h"

namespace zemhost {

// What stands behind the name of a place that is required although the parser takes it for optional.
constexpr const char *kRequiredText = "TEXT REQUIRED";

// Help for people: no line is wider than 80 columns, and all are broken between words.
class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_description(const CLI::App *app) const override;
  std::string make_footer(const CLI::App *app) const override;
  std::string make_subcommand(const CLI::App *command) const override;
  std::string make_option(const CLI::Option *option, bool isPositional) const override;
  std::string make_option_usage(const CLI::Option *option) const override;
};

}  // namespace zemhost
