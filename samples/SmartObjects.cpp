#include "samples/SmartObjects.h"

#include <array>

namespace samples {

namespace {

constexpr uint32_t kTextAction = 0x01000000;

void AppendNumber(ChunkWriter &out, uint64_t number) {
  out.AppendWord(static_cast<uint32_t>(number >> 32));
  out.AppendWord(static_cast<uint32_t>(number));
}

std::string RuleData(const SmartRule &rule) {
  if (!rule.group.empty()) return SmartCriteria(rule.group, rule.any);
  ChunkWriter data(Variant::BigEndian);
  if ((rule.action & kTextAction) != 0) {
    data.AppendUtf16(rule.text);
    return data.TakeBytes();
  }
  for (const SmartRule::Value *value : {&rule.from, &rule.to}) {
    AppendNumber(data, value->value);
    AppendNumber(data, static_cast<uint64_t>(value->date));
    AppendNumber(data, value->unit);
  }
  data.AppendBytes(std::string(20, '\0'));
  return data.TakeBytes();
}

// An atom of chapters: its name, a word, how many atoms it holds, and what it holds.
std::string Atom(std::string_view name, uint32_t word, uint32_t children, const std::string &content) {
  ChunkWriter out(Variant::BigEndian);
  out.AppendWord(static_cast<uint32_t>(20 + content.size()));
  out.AppendBytes(name);
  out.AppendWord(word);
  out.AppendWord(children);
  out.AppendWord(0);
  out.AppendBytes(content);
  return out.TakeBytes();
}

}  // namespace

std::string SmartCriteria(const std::vector<SmartRule> &rules, bool any) {
  ChunkWriter out(Variant::BigEndian);
  out.AppendBytes("SLst");
  out.AppendWord(0x00010001);
  out.AppendWord(static_cast<uint32_t>(rules.size()));
  out.AppendWord(any ? 1 : 0);
  out.AppendBytes(std::string(120, '\0'));
  for (const SmartRule &rule : rules) {
    const std::string data = RuleData(rule);
    out.AppendWord(rule.field);
    out.AppendWord(rule.action);
    out.AppendWord(rule.group.empty() ? 0 : 0x01000000);
    out.AppendBytes(std::string(40, '\0'));
    out.AppendWord(static_cast<uint32_t>(data.size()));
    out.AppendBytes(data);
  }
  return out.TakeBytes();
}

std::vector<DataObject> SmartObjects(Variant variant, const SmartSettings &settings,
                                     const std::vector<SmartRule> &rules, bool any) {
  const bool little = variant == Variant::LittleEndian;
  ChunkWriter out(variant);
  out.AppendByte(settings.live ? 1 : 0);
  out.AppendByte(settings.useRules ? 1 : 0);
  out.AppendByte(settings.limited ? 1 : 0);
  out.AppendByte(settings.unit);
  out.AppendWord(settings.order);
  out.AppendWord(settings.limit);
  out.AppendByte(settings.onlyChecked ? 1 : 0);
  out.AppendByte(settings.reversed ? 1 : 0);
  out.AppendBytes(std::string(little ? 58 : 98, '\0'));
  return {RawObject(little ? 50 : 102, out.TakeBytes()),
          RawObject(little ? 51 : 101, SmartCriteria(rules, any))};
}

std::string OnTheGoFile(const std::vector<uint32_t> &positions, Variant variant) {
  ChunkWriter out(variant);
  const size_t file = out.Begin(variant == Variant::LittleEndian ? "mhpo" : "ohpm", 0x14,
                                static_cast<uint32_t>(positions.size()));
  out.PutWord(file + 8, 4);
  for (const uint32_t position : positions) out.AppendWord(position);
  return out.TakeBytes();
}

std::string DeviceInfoFile(const std::vector<std::u16string> &names) {
  constexpr size_t kRoom = 0x200;
  std::string file;
  for (const std::u16string &name : names) {
    ChunkWriter out(Variant::LittleEndian);
    out.AppendByte(static_cast<uint8_t>(name.size()));
    out.AppendByte(static_cast<uint8_t>(name.size() >> 8));
    out.AppendUtf16(name);
    file += out.TakeBytes();
    file.resize((file.size() + kRoom - 1) / kRoom * kRoom, '\0');
  }
  file.resize(3 * kRoom, '\0');
  return file;
}

std::string ChapterAtoms(const std::vector<ChapterMark> &chapters) {
  std::string list;
  for (const ChapterMark &chapter : chapters) {
    ChunkWriter name(Variant::BigEndian);
    name.AppendByte(static_cast<uint8_t>(chapter.title.size() >> 8));
    name.AppendByte(static_cast<uint8_t>(chapter.title.size()));
    name.AppendUtf16(chapter.title);
    std::string inside = Atom("name", 1, 0, name.TakeBytes());
    if (!chapter.url.empty()) inside += Atom("url ", 1, 0, std::string(4, '\0') + chapter.url);
    // The beginning of the song is 1.
    list += Atom("chap", chapter.start == 0 ? 1 : chapter.start, chapter.url.empty() ? 1 : 2, inside);
  }
  list += Atom("hedr", 1, 0, std::string(8, '\0'));
  return Atom("sean", 1, static_cast<uint32_t>(chapters.size() + 1), list);
}

DataObject ChapterObject(const std::vector<ChapterMark> &chapters) {
  return RawObject(17, std::string(12, '\0') + ChapterAtoms(chapters));
}

}  // namespace samples
