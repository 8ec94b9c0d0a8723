#include "zemhost/report/Page.h"

namespace zemhost {

std::string_view reportPage() {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n<title>@TITLE@</title>\n"
         "<script type=\"application/json\" id=\"library\">@LIBRARY@</script>\n</html>\n";
}

}  // namespace zemhost
