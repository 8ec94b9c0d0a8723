#pragma once

// Names of files that every usual file system takes.

#include <string>
#include <string_view>

namespace zemhost {

// One part of a path made of any text: Unicode kept, composed (NFC); control characters and \ / : * ? " < > |
// become '_', as do a dot at the start and, one for all, names of devices (CON becomes CON_); blanks at both
// ends and dots at the end go. `suffix` (" (2)") and `extension` (".m4a", made safe too) follow the text,
// which is cut between characters where all together would take more than 255 bytes. `fallback` stands for a
// text of which nothing is left.
std::string safeName(std::string_view text, std::string_view fallback, std::string_view suffix = {},
                     std::string_view extension = {});

}  // namespace zemhost
