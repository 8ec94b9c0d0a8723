#include "tests/property/Case.h"

#include <iomanip>
#include <sstream>

#include "tests/support/AnyCall.h"

namespace property {
namespace {

void DescribeBytes(std::ostream &out, const std::string &bytes) {
  constexpr size_t kLine = 16;
  for (size_t at = 0; at < bytes.size(); at += kLine) {
    const std::string line = bytes.substr(at, kLine);
    out << "   ";
    for (const char byte : line) {
      out << ' ' << std::hex << std::setw(2) << std::setfill('0') << (static_cast<unsigned>(byte) & 0xFFU)
          << std::dec;
    }
    out << std::string(3 * (kLine - line.size()) + 2, ' ');
    for (const char byte : line) out << (byte >= 0x20 && byte < 0x7F ? byte : '.');
    out << '\n';
  }
}

void DescribeFile(std::ostream &out, const DatabaseFile &file) {
  constexpr const char *kPlaces[] = {"the player's database", "another file of the volume",
                                     "a file that is not there"};
  out << kPlaces[static_cast<size_t>(file.place)];
  if (!file.hasSpecification) out << ", without a specification";
  if (file.path == DatabaseFile::Path::None) out << ", without a path";
  if (file.path == DatabaseFile::Path::Given) out << ", path \"" << file.givenPath << '"';
  out << ", " << file.Bytes().size() << " bytes\n";
  for (const std::string &piece : file.pieces) {
    DescribeBytes(out, piece);
    out << '\n';
  }
}

}  // namespace

std::string DatabaseFile::Bytes() const {
  std::string bytes;
  for (const std::string &piece : pieces) bytes += piece;
  return bytes;
}

std::string Describe(const Step &step) {
  std::ostringstream out;
  const std::string object = step.object == 0 ? "a." : "b.";
  switch (step.kind) {
    case Step::Kind::Host:
      out << "host: conversions " << (step.numbers[0] != 0 ? "fail" : "work") << ", strings "
          << (step.numbers[1] != 0 ? "fail" : "work");
      return out.str();
    case Step::Kind::Get:
      out << object << step.name;
      return out.str();
    case Step::Kind::Set:
      out << object << step.name << " = " << step.numbers[0];
      return out.str();
    case Step::Kind::Call:
      break;
  }
  out << object << step.name.substr(0, step.name.find_first_of("( ")) << '(';
  const std::string shape = support::ShapeOf(step.name);
  size_t number = 0;
  for (size_t i = 0; shape[i] != '>'; ++i) {
    if (i > 0) out << ", ";
    if (shape[i] == 'i') {
      out << step.numbers[number++];
    } else if (shape[i] == 'f') {
      out << (step.file ? "file " + std::to_string(*step.file) : "nil");
    } else if (!step.text) {
      out << "the null string";
    } else {
      support::PrintTo(support::Text(step.text->bytes, step.text->encoding), &out);
    }
  }
  out << ")   ' " << step.name;
  return out.str();
}

std::string Describe(const Case &what) {
  std::ostringstream out;
  for (const Step &step : what.steps) out << Describe(step) << '\n';
  for (size_t i = 0; i < what.files.size(); ++i) {
    out << "file " << i << ": ";
    DescribeFile(out, what.files[i]);
  }
  return out.str();
}

}  // namespace property
