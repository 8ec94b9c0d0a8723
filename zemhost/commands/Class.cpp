#include <iomanip>
#include <iostream>
#include <string>

#include "host/Host.h"
#include "zemhost/ExitStatus.h"
#include "zemhost/commands/Commands.h"
#include "zemhost/output/DisplayText.h"

namespace zemhost {

namespace {

std::string accessText(const PropertyInfo &property) {
  if (property.setter == nullptr) return "  (read only)";
  return property.getter == nullptr ? "  (write only)" : "";
}

void writeClass(const ClassInfo &info) {
  std::cout << "Class " << safeText(info.name);
  if (!info.superName.empty()) std::cout << " Inherits " << safeText(info.superName);
  std::cout << "\n\nProperties (" << info.properties.size() << ")\n";
  for (const PropertyInfo &property : info.properties) {
    std::cout << "       " << safeText(property.name) << " As " << kindName(property.kind)
              << accessText(property) << '\n';
  }
  std::cout << "\nMethods (" << info.methods.size() << ")\n";
  size_t number = 0;
  for (const MethodInfo &method : info.methods) {
    std::cout << std::setw(5) << number++ << "  " << safeText(method.text) << '\n';
  }
}

}  // namespace

int showClass(const ClassArguments & /*arguments*/) {
  const Host host = Host::load();
  bool first = true;
  for (const ClassInfo *info : host.classes()) {
    if (!first) std::cout << '\n';
    first = false;
    writeClass(*info);
  }
  return kSuccess;
}

}  // namespace zemhost
