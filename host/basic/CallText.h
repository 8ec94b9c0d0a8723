#pragma once

// Lines of host code as a person types them: `GetTitle(0)`, `CountSongs`, `ResultEncode = &h0100`.

#include <string>
#include <string_view>
#include <vector>

#include "host/basic/ParseResult.h"
#include "host/binding/Value.h"

namespace zemhost {

struct CallText {
  enum class Form {
    Name,    // a name alone: a property is read, or a method without arguments called
    Call,    // a name and parentheses
    Assign,  // a name, "=" and one value
  };

  Form form = Form::Name;
  std::string name;
  std::vector<Value> arguments;  // of a Call; the one value of an Assign
};

// Reads one line. Values are whole decimal numbers with an optional sign, &h, &o and &b numbers of up to 32
// bits, True, False, nil (a nil FolderItem), and texts in double quotes, in which two quotes stand for one
// and which must be UTF-8. Words are matched without regard to case. Takes any bytes; the work is linear.
Parsed<CallText> parseCallText(std::string_view line);

}  // namespace zemhost
