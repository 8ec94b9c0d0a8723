#pragma once

// The page that shows a library, put together from the files of `page/` when the program is built.

#include <string_view>

namespace zemhost {

// The page in HTML, plain ASCII, with two places to fill in, each there once: `@TITLE@` inside `<title>`, and
// `@LIBRARY@`, the whole content of `<script type="application/json" id="library">`. What comes before and
// after them is to be written as it is: the page's policy knows its style and script by their hashes. Lives
// as long as the program.
std::string_view reportPage();

}  // namespace zemhost
