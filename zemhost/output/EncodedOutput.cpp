#include "zemhost/output/EncodedOutput.h"

#include <sstream>

#include "zemhost/output/DisplayText.h"
#include "zemhost/output/Messages.h"
#include "zemhost/output/Paragraph.h"
#include "zemhost/output/Terminal.h"

namespace zemhost {

EncodedOutput::EncodedOutput(const std::string &encoding, const Host &host,
                             const std::filesystem::path &target)
    : encoder_(encoding, host), file_(target), toTerminal_(file_.isTerminal()) {
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

void EncodedOutput::writeLine(std::string_view text, size_t indent) {
  std::string line = fit(safeText(text));
  if (const auto width = terminalWidth(); width && toTerminal_) line = brokenText(line, *width, indent);
  write(line + "\n");
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
