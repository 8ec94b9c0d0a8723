// Bold and colour: on a terminal, and only there.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "samples/DatabaseWriter.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/zemhost/Program.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {
namespace {

const std::string kOn = "\x1b[1m";
const std::string kRed = "\x1b[1;31m";
const std::string kOff = "\x1b[0m";

RunOptions terminal(std::vector<std::pair<std::string, std::string>> environment) {
  RunOptions options;
  options.terminalWidth = 80;
  options.errorsToTerminal = true;
  options.environment = std::move(environment);
  return options;
}

std::string withBoldHeading(const std::string &listing) {
  const size_t end = listing.find('\n');
  return kOn + listing.substr(0, end) + kOff + listing.substr(end);
}

TEST(ProgramStyles, HeadingsAreBoldOnATerminalAndNothingElseIs) {
  for (const std::vector<std::string> &arguments :
       {std::vector<std::string>{"songs", kPlayer}, {"playlists", kPlayer}, {"playlist", kPlayer, "2"}}) {
    const std::string plain = runZemhost(arguments, terminal({})).out;
    const Outcome styled = runZemhost(arguments, terminal({{"TERM", "xterm"}}));
    EXPECT_EQ(styled.out, withBoldHeading(plain));
    EXPECT_EQ(styled.status, 0);
  }
}

TEST(ProgramStyles, EveryTableOfAReportHasABoldHeading) {
  const std::string report = runZemhost({"check", kPlayer}, terminal({{"TERM", "xterm"}})).out;
  for (const char *first : {"Chunk ", "Count "})
    EXPECT_NE(report.find("\n" + kOn + first), std::string::npos) << first;
}

TEST(ProgramStyles, StylesTakeNoRoomFromALine) {
  RunOptions options = terminal({{"TERM", "xterm"}});
  options.terminalWidth = 60;
  std::string heading = linesOf(runZemhost({"songs", kPlayer}, options).out).at(0);
  ASSERT_EQ(heading.substr(0, kOn.size()), kOn);
  ASSERT_EQ(heading.substr(heading.size() - kOff.size()), kOff);
  heading = heading.substr(kOn.size(), heading.size() - kOn.size() - kOff.size());
  EXPECT_LE(displayWidth(heading), 60U);
  options.environment = {};
  EXPECT_EQ(heading, linesOf(runZemhost({"songs", kPlayer}, options).out).at(0));
}

TEST(ProgramStyles, ErrorsBeginInColourOnATerminal) {
  EXPECT_EQ(runZemhost({"songs", "/nowhere"}, terminal({{"TERM", "xterm"}}))
                .err.find(kRed + "zemhost:" + kOff + " "),
            0U);
  EXPECT_EQ(runZemhost({"songs", "/nowhere"}, terminal({})).err.find("zemhost: "), 0U);
}

TEST(ProgramStyles, NoColorSwitchesThemOffWhateverItsValue) {
  for (const char *value : {"1", "0", ""}) {
    const auto options = terminal({{"TERM", "xterm"}, {"NO_COLOR", value}});
    EXPECT_EQ(runZemhost({"songs", kPlayer}, options).out, runZemhost({"songs", kPlayer}, terminal({})).out);
    EXPECT_EQ(runZemhost({"songs", "/nowhere"}, options).err.find("zemhost: "), 0U);
  }
}

TEST(ProgramStyles, WhatGoesToNoTerminalIsPlain) {
  RunOptions options;
  options.environment = {{"TERM", "xterm"}};
  for (const char *command : {"songs", "playlists", "info"})
    EXPECT_EQ(runZemhost({command, kPlayer}, options).out.find('\x1b'), std::string::npos) << command;
  EXPECT_EQ(runZemhost({"songs", "/nowhere"}, options).err.find("zemhost: "), 0U);

  // Each of the two goes its own way.
  RunOptions mixed = terminal({{"TERM", "xterm"}});
  mixed.errorsToTerminal = false;
  EXPECT_EQ(runZemhost({"songs", "/nowhere"}, mixed).err.find("zemhost: "), 0U);
  mixed.terminalWidth.reset();
  mixed.errorsToTerminal = true;
  EXPECT_EQ(runZemhost({"songs", kPlayer}, mixed).out.find('\x1b'), std::string::npos);
}

TEST(ProgramStyles, NoTextOfALibrarySteersTheTerminalInAnyFormat) {
  const support::TemporaryFolder folder;
  const std::u16string hostile = u"a\x1b]0;x\x07\n\x7f\u009b2J\u2028\u202eb\u200f";
  const samples::Track track{.id = 1,
                             .objects = samples::SongObjects(samples::Variant::LittleEndian,
                                                             {.title = hostile, .path = u":a:" + hostile})};
  const samples::Playlist list{.name = hostile, .entries = {{.ref = 1}}};
  const std::string database =
      samples::WriteLibrary(samples::OrdinaryLibrary({track, track}, {list}), samples::Variant::LittleEndian);
  const std::string file = folder.write("library.itunesdb", database).string();
  const std::vector<std::vector<std::string>> commands = {
      {"songs", file},
      {"playlists", file},
      {"check", file},
      {"check", file, "--json"},
      {"duplicates", file, "--json"},
      {"compare", file, file, "--json"},
      {"call", file, "GetTitle(0)"},
      {"export", file, "--format", "csv"},
      {"export", file, "--format", "json"},
      {"export", file, "--format", "ndjson"},
      {"export", file, "--format", "m3u8", "--paths", "device"}};
  for (const std::vector<std::string> &command : commands) {
    const std::string shown = runZemhost(command, terminal({})).out;
    const std::string name = testing::PrintToString(command);
    EXPECT_FALSE(shown.empty()) << name;
    for (size_t i = 0; i < shown.size(); ++i) {
      const bool lineEnd = shown[i] == '\n' || (shown[i] == '\r' && shown.substr(i + 1, 1) == "\n");
      EXPECT_TRUE(lineEnd || (static_cast<unsigned char>(shown[i]) >= ' ' && shown[i] != '\x7f'))
          << name << " at " << i;
    }
    // NOLINTNEXTLINE(misc-misleading-bidirectional): they stand as escapes
    for (const char *mark : {"\u009b", "\u2028", "\u202e", "\u200f"}) {
      EXPECT_EQ(shown.find(mark), std::string::npos) << name;
    }
  }
}

TEST(ProgramStyles, CsvIsWrittenAsItIsWhereNoTerminalShowsIt) {
  const support::TemporaryFolder folder;
  const samples::Track track{
      .id = 1, .objects = samples::SongObjects(samples::Variant::LittleEndian, {.title = u"a\x1b\u202e"})};
  const std::string file =
      folder
          .write("library.itunesdb",
                 samples::WriteLibrary(samples::OrdinaryLibrary({track}, {}), samples::Variant::LittleEndian))
          .string();
  EXPECT_EQ(runZemhost({"export", file, "--format", "csv", "--fields", "title"}).out,
            "title\r\na\x1b\u202e\r\n");
}

}  // namespace
}  // namespace zemhost
