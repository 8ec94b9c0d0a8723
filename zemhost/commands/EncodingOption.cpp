#include "zemhost/commands/Command.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {

CLI::Option *addEncodingOption(CLI::App &command, std::string &encoding) {
  encoding = "UTF-8";
  return command.add_option(
      "--encoding", encoding,
      "Write text in this encoding: UTF-8, UTF-16, Shift_JIS by the plug-in's table, or one that "
      "iconv knows [UTF-8]");
}

void checkJsonEncoding(bool json, const std::string &encoding) {
  if (json && !isUtf8Name(encoding)) throw CLI::ValidationError("--encoding", "JSON is always UTF-8");
}

void addListingArguments(CLI::App &command, ListingArguments &arguments) {
  addPathArgument(command, arguments.path);
  addEncodingOption(command, arguments.encoding);
}

}  // namespace zemhost
