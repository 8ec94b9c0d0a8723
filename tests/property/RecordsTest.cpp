// The loader's records, group numbers included, against the model's on random files.
#include <gtest/gtest.h>

#include "samples/GeneratedLibrary.h"
#include "tests/db/DatabaseFiles.h"
#include "tests/db/PlainRecords.h"
#include "tests/model/Loader.h"
#include "tests/property/Case.h"
#include "tests/property/Environment.h"
#include "tests/property/RandomFile.h"

namespace property {
namespace {

TEST(PropertyOfTheLoader, RecordsAreTheModels) {
  const uint64_t files = Scaled(20000);
  for (uint64_t seed = 1; seed <= files; ++seed) {
    samples::Random random(seed);
    const DatabaseFile file = {.pieces = SomeFile(random)};
    CiTunesDB database;
    model::Database expected;
    const bool loaded = db_test::Load(database, file.Bytes()) == 1;
    ASSERT_EQ(loaded, model::Load(file.Bytes(), expected)) << "seed " << seed;
    if (!loaded) continue;
    ASSERT_EQ(db_test::Plain(database), expected)
        << "seed " << seed << ": read\n"
        << db_test::Describe(db_test::Plain(database)) << "expected\n"
        << db_test::Describe(expected) << Describe(Case{.files = {file}});
  }
}

}  // namespace
}  // namespace property
