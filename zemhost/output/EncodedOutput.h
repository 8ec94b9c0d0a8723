#pragma once

// Where a command writes its text: a file or standard output, in the encoding that was asked for.

#include <filesystem>
#include <string>
#include <string_view>

#include "zemhost/files/OutputFile.h"
#include "zemhost/output/Table.h"
#include "zemhost/output/TextEncoder.h"

namespace zemhost {

class EncodedOutput {
 public:
  // To a file, "-" or nothing for standard output. Throws as TextEncoder and OutputFile do.
  EncodedOutput(const std::string &encoding, const Host &host, const std::filesystem::path &target = {});

  // A text of the library as it will be shown: made safe where it goes to a terminal (see safeText), then as
  // TextEncoder::fit does it.
  std::string fit(std::string_view text);
  // The same as what a table does to its cells; it must not outlive this object.
  Table::Fit fitCells();

  // Writes UTF-8, whole characters each time. Throws HostError as OutputFile does.
  void write(std::string_view text);
  // A line of prose about the library, made safe and fitted: broken between words where it goes to a
  // terminal, with `indent` blanks before what follows its first line.
  void writeLine(std::string_view text, size_t indent = 0);
  // A table, to the terminal's width when standard output is one.
  void write(const Table &table);

  // Writes the rest, brings a file under its name, and says on standard error what had no place.
  void finish();

 private:
  TextEncoder encoder_;
  OutputFile file_;
  bool toTerminal_;
};

}  // namespace zemhost
