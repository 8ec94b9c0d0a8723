# cmake -DFOLDER=... -DPARTS=... -DPAGE=... -DSOURCE=... -P join.cmake: puts the page's parts together, the scripts in the
# order of PARTS. PAGE is the page, in which the program fills in the title and the library; SOURCE is a C++ source that
# holds it. A policy in the page allows its own style and script alone, known by their SHA-256, and no request but for
# pictures within it.

# Bytes that base64 makes of a SHA-256 in hexadecimal.
function(base64_of hash result)
  set(letters ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  set(text "")
  string(APPEND hash 00)  # 32 bytes make ten groups of three, and two bytes of an eleventh
  foreach(at RANGE 0 60 6)
    string(SUBSTRING ${hash} ${at} 6 group)
    foreach(shift 18 12 6 0)
      math(EXPR letter "(0x${group} >> ${shift}) & 63")
      string(SUBSTRING ${letters} ${letter} 1 letter)
      string(APPEND text ${letter})
    endforeach()
  endforeach()
  string(SUBSTRING ${text} 0 43 text)
  set(${result} ${text}= PARENT_SCOPE)
endfunction()

file(READ ${FOLDER}/page.html page)
file(READ ${FOLDER}/style.css style)
set(script "(() => {\n'use strict';\n\n")
list(FILTER PARTS INCLUDE REGEX "\\.js$")
foreach(name IN LISTS PARTS)
  file(READ ${FOLDER}/${name} part)
  string(APPEND script "${part}\n")
endforeach()
string(APPEND script "})();\n")

string(SHA256 style_hash "${style}")
string(SHA256 script_hash "${script}")
base64_of(${style_hash} style_hash)
base64_of(${script_hash} script_hash)
set(policy "default-src 'none'; base-uri 'none'; form-action 'none'; img-src data:; style-src 'sha256-${style_hash}'")
string(APPEND policy "; script-src 'sha256-${script_hash}'")
string(REPLACE @POLICY@ "${policy}" page "${page}")
string(REPLACE @STYLE@ "${style}" page "${page}")
string(REPLACE @SCRIPT@ "${script}" page "${page}")
string(REGEX MATCHALL "@[A-Z]+@" left "${page}")
if(NOT left STREQUAL "@TITLE@;@LIBRARY@" OR page MATCHES "[^\t\n -~]")
  message(FATAL_ERROR "The page must be plain ASCII, with one title and one library to fill in; found: ${left}")
endif()
file(WRITE ${PAGE} "${page}")

# A literal may have no more than 65,536 characters, so the page is several.
set(source "#include \"zemhost/report/Page.h\"\n\n#include <string>\n\nnamespace zemhost {\n\n")
string(APPEND source "std::string_view reportPage() {\n  static const std::string page = [] {\n    std::string text;\n")
string(LENGTH "${page}" length)
set(at 0)
while(at LESS length)
  string(SUBSTRING "${page}" ${at} 32768 piece)
  string(APPEND source "    text += R\"page(${piece})page\";\n")
  math(EXPR at "${at} + 32768")
endwhile()
string(APPEND source "    return text;\n  }();\n  return page;\n}\n\n}  // namespace zemhost\n")
file(WRITE ${SOURCE} "${source}")
