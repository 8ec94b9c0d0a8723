#include "zemhost/options/HelpFormatter.h"

#include <string_view>

#include "zemhost/output/Paragraph.h"

namespace zemhost {

namespace {

constexpr size_t kWidth = 80;
constexpr size_t kDescriptions = 26;  // where they begin

// What is described, and beside it the description in a column of its own.
std::string entry(const std::string &name, const std::string &description) {
  std::string text = std::string("  ").append(name);
  if (description.empty()) return text + "\n";
  if (text.size() + 2 > kDescriptions) text += "\n";
  const size_t start = text.find('\n') == std::string::npos ? 0 : text.size();
  text.append(kDescriptions - (text.size() - start), ' ');
  for (const char c : brokenText(description, kWidth - kDescriptions)) {
    text += c;
    if (c == '\n') text.append(kDescriptions, ' ');
  }
  return text + "\n";
}

}  // namespace

std::string HelpFormatter::make_description(const CLI::App *app) const {
  return brokenText(app->get_description(), kWidth) + "\n";
}

std::string HelpFormatter::make_footer(const CLI::App *app) const {
  const std::string footer = app->get_footer();
  return footer.empty() ? footer : brokenText(footer, kWidth) + "\n";
}

std::string HelpFormatter::make_subcommand(const CLI::App *command) const {
  return entry(command->get_display_name(true), command->get_description());
}

std::string HelpFormatter::make_option_usage(const CLI::Option *option) const {
  if (option->get_option_text() == kRequiredText) return make_option_name(option, true);
  return CLI::Formatter::make_option_usage(option);
}

std::string HelpFormatter::make_option(const CLI::Option *option, bool isPositional) const {
  std::string name = make_option_name(option, isPositional);
  std::string rest = make_option_opts(option);
  // The parser writes what a flag stands for without a value into its name: "--tags{missing}".
  if (const size_t brace = name.find('{'); brace != std::string::npos) {
    name.erase(brace);
    rest.erase(0, rest.find_first_not_of(' '));
  }
  return entry(name + rest, make_option_desc(option));
}

}  // namespace zemhost
