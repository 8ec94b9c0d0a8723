#include "zemhost/rescue/NewFileWriter.h"

#include <iostream>
#include <utility>

#include "host/Error.h"
#include "zemhost/files/Signals.h"
#include "zemhost/output/DisplayText.h"
#include "zemhost/rescue/FileCopy.h"

namespace zemhost {

NewFileWriter::NewFileWriter(const std::filesystem::path &destination,
                             const std::filesystem::path &playerRoot)
    : destination_(destination, playerRoot), files_(destination_) {}

void NewFileWriter::begin() {
  destination_.make();
  setInterruptionAdvice(kContinue);
}

void NewFileWriter::write(const std::string &label, const std::function<carbon::Descriptor()> &open,
                          const TargetNames::Named &named) {
  try {
    const NewFiles::Added added = files_.add(open(), named);
    ++(added.isNew ? result_.written : result_.alreadyThere);
    if (added.isNew) std::cout << safeText(added.name) << '\n';
  } catch (const CopyFailure &failure) {
    if (failure.reach() == CopyFailure::Reach::Destination)
      throw HostError(destination_.path().string() + ": " + failure.what() + "; " + kContinue);
    addProblem(label, failure.what());
  } catch (const HostError &failure) {
    addProblem(label, failure.what());
  }
}

void NewFileWriter::addProblem(const std::string &label, const std::string &what) {
  result_.problems.push_back(label + ": " + what);
}

FilesResult NewFileWriter::finish() {
  result_.evaded = files_.evaded();
  return std::move(result_);
}

}  // namespace zemhost
