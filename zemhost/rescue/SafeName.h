#pragma once

// Names of files that every usual file system takes.

#include <string>
#include <string_view>

namespace zemhost {

// One part of a path made of any text: Unicode kept, composed (NFC); control characters and \ / : * ? " < > |
// become '_', as does a dot at the start. Marks of direction and separators of lines go, as do blanks at both
// ends and dots at the end. `suffix` (" (2)") and `extension` (".m4a") follow the text, which is cut between
// characters where all together would take more than 255 bytes. A name that another system takes for a device
// or runs by itself (CON, autorun.inf) gets a '_'. `fallback` stands for a text of which nothing is left.
std::string safeName(std::string_view text, std::string_view fallback, std::string_view suffix = {},
                     std::string_view extension = {});

// The extension of a copy of a file with this extension (".MP3"): the same when it is one of music or video,
// else ".bin", so that no copy is a program or a setting to whoever opens it.
std::string_view safeExtension(std::string_view extension);

}  // namespace zemhost
