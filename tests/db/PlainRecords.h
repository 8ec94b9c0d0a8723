// What the database holds, as the model's plain records.
#pragma once

#include <string>

#include "db/CiTunesDB.h"
#include "tests/model/Records.h"

namespace db_test {

model::Song Plain(const CSongList &song);
model::Database Plain(const CiTunesDB &database);

// Every field of it, a record a line.
std::string Describe(const model::Database &database);

}  // namespace db_test
