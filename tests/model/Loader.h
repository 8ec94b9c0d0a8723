// Reads a database file by the plainest means: one chunk after the other, every text copied, every track ID
// looked for from the first song on, every pair of songs compared.
#pragma once

#include <string>

#include "tests/model/Records.h"

namespace model {

// Appends what the file holds to `database` and numbers the groups. False for a file that is rejected; the
// database is then as it was.
bool Load(const std::string &file, Database &database);

}  // namespace model
