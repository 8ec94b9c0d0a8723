// docs/porting.md against the records of the plug-in and the services that it looks up.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "plugin/RbiTunesDB.h"
#include "tests/docs/MarkdownTables.h"
#include "tests/support/Folders.h"
#include "tests/support/TestHost.h"

namespace docs_test {
namespace {

std::vector<Table> Document() { return ReadTables(support::DocumentsFolder() / "porting.md"); }

TEST(Porting, StatesTheSizesOfTheRecords) {
  const std::map<std::string, size_t> sizes = {
      {"REALstringStruct", sizeof(REALstringStruct)},
      {"REALmethodDefinition", sizeof(REALmethodDefinition)},
      {"REALmethodDefinitionV6", sizeof(REALmethodDefinitionV6)},
      {"REALproperty", sizeof(REALproperty)},
      {"REALclassDefinition", sizeof(REALclassDefinition)},
      {"RbiTunesDBData", sizeof(RbiTunesDBData)},
      {"FSSpec", sizeof(FSSpec)},
      {"FSRef", sizeof(FSRef)},
  };
  const size_t column = sizeof(void *) == 4 ? 1 : 2;
  std::map<std::string, size_t> stated;
  for (const Cells &row : RowsOf(Document(), "record", "64-bit")) stated[row[0]] = std::stoul(row[column]);
  EXPECT_EQ(stated, sizes);
}

TEST(Porting, ListsTheServicesThatThePluginLooksUp) {
  std::set<std::string> stated;
  for (const Cells &row : RowsOf(Document(), "look-up name", "without it")) stated.insert(row[0]);

  support::TestHost host;
  const REALobject library = host.New();
  const REALfolderItem file =
      host.MakeItem((support::SamplesFolder() / "player" / "iPod_Control" / "iTunes" / "iTunesDB").string());
  ASSERT_EQ(host.Call<int32_t>(library, "Load(f As FolderItem) As Boolean", file), 1);
  host.CallText(library, "GetAbsolutePath2(index As Integer) As String", 0);
  const REALstring title = host.MakeString("Title");
  host.Call<void>(library, "SetTitle(index As Integer, name As String)", 0, title);
  host.Release(title);
  // Through the resolver of the entry point; and one that a plug-in without methods of its own never asks
  // for.
  std::set<std::string> lookedUp = {"ResolverPPC", "PluginRegisterMethod"};
  for (const std::string &event : host.Events())
    if (event.starts_with("? ")) lookedUp.insert(event.substr(2));
  EXPECT_EQ(stated, lookedUp);
  host.Delete(library);
  host.Release(file);
}

}  // namespace
}  // namespace docs_test
