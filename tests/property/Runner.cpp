#include "tests/property/Runner.h"

#include <memory>
#include <set>
#include <sstream>

#include "tests/platform/MountedVolume.h"
#include "tests/property/Volumes.h"
#include "tests/support/ModelAnswer.h"

namespace property {
namespace {

using support::Answer;
using support::Conversion;
using support::TestHost;

class Run {
 public:
  Run(const Case &what, const Distortion &distort) : case_(what), distort_(distort) {
    for (size_t i = 0; i < what.files.size(); ++i) {
      specs_.push_back(PutOnVolume(what.files[i], i));
      items_.push_back(host_.MakeItem(specs_.back()));
    }
    for (size_t i = 0; i < 2; ++i) {
      objects_.push_back(host_.NewRaw());
      models_.push_back(std::make_unique<model::Object>(process_, modelHost_));
    }
  }

  std::optional<std::string> Go() {
    for (const Step &step : case_.steps) {
      if (auto difference = Do(step)) return difference;
    }
    return LookAtTheEnd();
  }

 private:
  std::optional<std::string> Do(const Step &step) {
    if (step.kind == Step::Kind::Host) {
      host_.convertFails = modelHost_.convertFails = step.numbers[0] != 0;
      host_.buildFails = modelHost_.buildFails = step.numbers[1] != 0;
      return std::nullopt;
    }
    host_.Forget();
    modelHost_.conversions.clear();
    Answer answer = step.kind == Step::Kind::Call ? AskPlugin(step) : AskPluginsProperty(step);
    if (distort_) distort_(step, answer);
    const Answer expected = step.kind == Step::Kind::Call ? AskModel(step) : AskModelsProperty(step);
    std::ostringstream difference;
    if (!(answer == expected)) {
      difference << Describe(step) << "\nanswers  ";
      PrintTo(answer, &difference);
      difference << "\nexpected ";
      PrintTo(expected, &difference);
    } else if (host_.Conversions() != modelHost_.conversions) {
      difference << Describe(step) << "\nconverts ";
      DescribeConversions(host_.Conversions(), difference);
      difference << "\nexpected ";
      DescribeConversions(modelHost_.conversions, difference);
    } else {
      const auto error = host_.Get<int32_t>(objects_[step.object], "Error");
      if (error == models_[step.object]->Error()) return std::nullopt;
      difference << Describe(step) << "\nleaves Error " << error << ", expected "
                 << models_[step.object]->Error();
    }
    return difference.str();
  }

  static void DescribeConversions(const std::vector<Conversion> &conversions, std::ostream &out) {
    for (const Conversion &conversion : conversions) {
      support::PrintTo(support::Text(conversion.bytes, conversion.from), &out);
      out << " to 0x" << std::hex << conversion.to << std::dec << "; ";
    }
    if (conversions.empty()) out << "nothing";
  }

  Answer AskPlugin(const Step &step) {
    support::Arguments arguments;
    arguments.numbers = step.numbers;
    if (step.text) arguments.text = host_.MakeString(step.text->bytes, step.text->encoding);
    if (step.file) {
      const DatabaseFile &file = case_.files[*step.file];
      arguments.item = items_[*step.file];
      host_.specAnswer = file.hasSpecification ? 1 : 0;
      if (file.path != DatabaseFile::Path::Own) {
        host_.pathOfItems = [&file]() -> std::optional<std::string> {
          if (file.path == DatabaseFile::Path::None) return std::nullopt;
          return file.givenPath;
        };
      }
    }
    // The constructor reads nothing of the block, so a database that is there would be lost.
    if (step.name == "Constructor") host_.Destruct(objects_[step.object]);
    Answer answer = CallAny(host_, objects_[step.object], step.name, arguments);
    host_.specAnswer = 1;
    host_.pathOfItems = {};
    if (arguments.text != nullptr) host_.Release(arguments.text);
    return answer;
  }

  model::HostFile FileForModel(size_t i) const {
    const DatabaseFile &file = case_.files[i];
    model::HostFile forModel;
    forModel.hasSpecification = file.hasSpecification;
    forModel.specificationName = nameOf(specs_[i]);
    if (file.path == DatabaseFile::Path::Own) forModel.path = support::PathOf(specs_[i]);
    if (file.path == DatabaseFile::Path::Given) forModel.path = file.givenPath;
    if (file.place != DatabaseFile::Place::Missing) forModel.bytes = file.Bytes();
    return forModel;
  }

  Answer AskModel(const Step &step) {
    support::ModelArguments arguments{.numbers = step.numbers, .text = step.text};
    if (step.file) arguments.file = FileForModel(*step.file);
    model::Object &object = *models_[step.object];
    Answer answer = support::AskModel(object, step.name, arguments);
    if (arguments.file && arguments.file->path && answer.number == 1 && object.LibType() != 0) {
      pathsLeft_.push_back(*arguments.file->path);
    }
    return answer;
  }

  Answer AskPluginsProperty(const Step &step) {
    const REALobject object = objects_[step.object];
    if (step.kind == Step::Kind::Set) {
      host_.Set<int32_t>(object, step.name, step.numbers[0]);
      return {};
    }
    Answer answer;
    if (step.name == "VolumeName") {
      answer.text = host_.GetText(object, step.name);
    } else {
      answer.number = host_.Get<int32_t>(object, step.name);
    }
    return answer;
  }

  Answer AskModelsProperty(const Step &step) {
    model::Object &object = *models_[step.object];
    Answer answer;
    if (step.kind == Step::Kind::Set) {
      if (step.name == "UseSJIS") object.SetUseSJIS(step.numbers[0]);
      if (step.name == "ResultEncode") object.SetResultEncode(step.numbers[0]);
      if (step.name == "ZerobasePlayerlist") object.SetZerobasePlayerlist(step.numbers[0]);
      return answer;
    }
    if (step.name == "Error") answer.number = object.Error();
    if (step.name == "LibType") answer.number = object.LibType();
    if (step.name == "UseSJIS") answer.number = object.UseSJIS();
    if (step.name == "ResultEncode") answer.number = object.ResultEncode();
    if (step.name == "ZerobasePlayerlist") answer.number = object.ZerobasePlayerlist();
    if (step.name == "VolumeName") answer.text = support::TextOf(object.VolumeName());
    return answer;
  }

  // Of strings and items, only the paths that loads asked for may be left.
  std::optional<std::string> LookAtTheEnd() {
    for (const REALobject object : objects_) host_.Delete(object);
    for (const REALfolderItem item : items_) host_.Release(item);
    const std::vector<std::string> faults = host_.Faults();
    if (!faults.empty()) return "fault: " + faults.front();
    if (host_.LiveItems() != 0) return std::to_string(host_.LiveItems()) + " folder items are left";
    std::multiset<std::string> left;
    for (const std::string &text : host_.LiveTexts()) left.insert(text);
    if (left == std::multiset<std::string>(pathsLeft_.begin(), pathsLeft_.end())) return std::nullopt;
    std::string difference = "strings are left:";
    for (const std::string &text : left) difference += "\n  \"" + text + '"';
    return difference;
  }

  const Case &case_;
  const Distortion &distort_;
  TestHost host_;
  support::ModelHost modelHost_;
  model::Process process_;
  std::vector<FSSpec> specs_;
  std::vector<REALfolderItem> items_;
  std::vector<REALobject> objects_;
  std::vector<std::unique_ptr<model::Object>> models_;
  std::vector<std::string> pathsLeft_;
};

}  // namespace

std::optional<std::string> FindDifference(const Case &what, const Distortion &distort) {
  return Run(what, distort).Go();
}

}  // namespace property
