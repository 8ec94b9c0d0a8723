#include "zemhost/output/EncodedOutput.h"

#include <sstream>
#include <unistd.h>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"

namespace zemhost {

EncodedOutput::EncodedOutput(const std::string &encoding, const Host &host,
                             const std::filesystem::path &target)
    : encoder_(encoding, host),
      file_(target),
      toTerminal_(file_.isStandardOutput() && isatty(STDOUT_FILENO) != 0) {
  file_.write(encoder_.mark());
}

std::string EncodedOutput::fit(std::string_view text) {
  return toTerminal_ ? encoder_.fit(safeText(text)) : encoder_.fit(text);
}

void EncodedOutput::write(std::string_view text) {
  if (encoder_.isUtf8()) {
    file_.write(text);
  } else {
    file_.write(encoder_.encode(text));
  }
}

void EncodedOutput::write(const Table &table) {
  std::ostringstream text;
  text.exceptions(std::ios::badbit);  // else a lack of memory would only cut the text short
  table.show(text);
  write(text.str());
}

Table::Fit EncodedOutput::fitCells() {
  if (encoder_.isUtf8()) return {};
  return [this](const std::string &cell) { return fit(cell); };
}

void EncodedOutput::finish() {
  file_.finish();
  if (const auto report = encoder_.lossReport()) printError(*report);
}

}  // namespace zemhost
