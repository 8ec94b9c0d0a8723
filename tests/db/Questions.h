// Asks a database everything that can be asked, with indexes in and out of range.
#pragma once

#include <string>
#include <string_view>

#include "db/CiTunesDB.h"

namespace db_test {

// Calls every query, of a few records of each kind in full, however many there are. Gives what the answers
// contradict each other in; empty when they do not.
std::string AskEverything(const CiTunesDB &database);

// Sets every word and text of a few songs, valid and invalid ones, to what `text` gives, and numbers the
// groups.
void ChangeEverything(CiTunesDB &database, std::string_view text);

}  // namespace db_test
