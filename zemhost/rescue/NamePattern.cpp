#include "zemhost/rescue/NamePattern.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "host/Error.h"
#include "host/runtime/Names.h"
#include "zemhost/rescue/SafeName.h"

namespace zemhost {

namespace {

constexpr size_t kWidest = 20;

// Of texts that a name is made of: what stands for one that is empty.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kUnknown = {
    {{"title", "Unknown Title"},
     {"artist", "Unknown Artist"},
     {kAlbumArtistField, "Unknown Artist"},
     {"album", "Unknown Album"},
     {"genre", "Unknown Genre"},
     {"composer", "Unknown Composer"}}};

// Numbers that say something when they are 0.
constexpr std::array<std::string_view, 5> kFromZero = {"song_index", "play_count", "skip_count",
                                                       "plays_since_sync", "skips_since_sync"};

// What is called otherwise in a pattern than in an export.
std::string_view columnName(std::string_view name) { return name == "tracks" ? "track_total" : name; }

// The fields of patterns: an export's but those that hold several values, and the layout's.
const std::vector<ExportColumn> &knownFields() {
  static const std::vector<ExportColumn> kFields = [] {
    std::vector<ExportColumn> fields = {{kAlbumArtistField, ColumnType::Text},
                                        {kAlbumDiscField, ColumnType::Text}};
    for (const ExportColumn &column : SongColumns::all()) {
      if (column.type != ColumnType::Texts) fields.push_back(column);
    }
    return fields;
  }();
  return kFields;
}

std::string braced(std::string_view name) { return std::string("{").append(name).append("}"); }

std::string allFields() {
  std::string list;
  for (const ExportColumn &field : knownFields())
    list.append(list.empty() ? "" : ", ").append(braced(field.name));
  return list;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(' ') == std::string_view::npos; }

bool isDate(std::string_view field) { return field.starts_with("date_") || field.starts_with("last_"); }

// The text of one field's value; empty when it says nothing.
std::string valueText(std::string_view field, const Json &value) {
  if (value.is_string()) {
    const auto &text = value.get_ref<const std::string &>();
    if (isDate(field)) return text.substr(0, text.find('T'));
    return isBlank(text) ? std::string() : text;
  }
  if (value.is_boolean()) {
    std::string name(value.get<bool>() ? field : "");
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
  }
  const bool says = value != 0 || std::find(kFromZero.begin(), kFromZero.end(), field) != kFromZero.end();
  return value.is_number() && says ? value.dump() : std::string();
}

std::string_view unknownText(std::string_view field) {
  const auto *const found =
      std::find_if(kUnknown.begin(), kUnknown.end(), [&](const auto &known) { return known.first == field; });
  return found == kUnknown.end() ? std::string_view() : found->second;
}

}  // namespace

// Takes a pattern apart into tokens.
class NamePattern::Reader {
 public:
  Reader(NamePattern &pattern, std::string_view text) : pattern_(pattern), text_(text) {}

  void read() {
    for (at_ = 0; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (std::string_view("{}[]").find(c) == std::string_view::npos) {
        c == '/' ? add(Sign::Slash) : addLiteral(c);
      } else if (text_.substr(at_ + 1, 1) == std::string_view(&c, 1)) {
        addLiteral(c);
        ++at_;
      } else if (c == '{') {
        readField();
      } else if (c == '}') {
        fail("there is a '}' without a '{' before it");
      } else if (c == '[') {
        if (isOpen_) fail("a '[' stands within '[' and ']'");
        isOpen_ = true;
        holdsField_ = false;
        add(Sign::Open);
      } else {
        if (!isOpen_) fail("there is a ']' without a '[' before it");
        if (!holdsField_) fail("there is no field between '[' and ']'");
        isOpen_ = false;
        add(Sign::Close);
      }
    }
    if (isOpen_) fail("there is a '[' without a ']' after it");
    checkParts();
  }

 private:
  [[noreturn]] void fail(const std::string &what) const {
    throw HostError("the pattern " + inQuotes(text_) + ": " + what);
  }

  void add(Sign sign) { pattern_.tokens_.push_back({sign, {}, {}, 0, ' '}); }

  void addLiteral(char c) {
    std::vector<Token> &tokens = pattern_.tokens_;
    if (tokens.empty() || tokens.back().sign != Sign::Literal) add(Sign::Literal);
    tokens.back().literal += c;
  }

  void readField() {
    const size_t end = text_.find('}', at_);
    if (end == std::string_view::npos) fail("there is a '{' without a '}' after it");
    const std::string_view inside = text_.substr(at_ + 1, end - at_ - 1);
    const size_t colon = std::min(inside.find(':'), inside.size());
    Token token{Sign::Field, {}, {}, 0, ' '};
    if (colon < inside.size()) readWidth(inside.substr(colon + 1), token);
    std::string_view names = inside.substr(0, colon);
    for (;;) {
      const size_t bar = names.find('|');
      token.fields.push_back(fieldNamed(names.substr(0, bar), token.width != 0));
      if (bar == std::string_view::npos) break;
      names.remove_prefix(bar + 1);
    }
    pattern_.tokens_.push_back(std::move(token));
    holdsField_ = true;
    at_ = end;
  }

  void readWidth(std::string_view width, Token &token) const {
    if (width.starts_with('0')) token.fill = '0';
    const auto [last, error] = std::from_chars(width.data(), width.data() + width.size(), token.width);
    if (error != std::errc() || last != width.data() + width.size() || token.width == 0 ||
        token.width > kWidest)
      fail(std::string(width) + " is not a width from 1 to " + std::to_string(kWidest));
  }

  // Its position among the pattern's fields.
  size_t fieldNamed(std::string_view name, bool hasWidth) const {
    const std::vector<ExportColumn> &known = knownFields();
    const auto found = std::find_if(known.begin(), known.end(), [&](const ExportColumn &field) {
      return field.name == columnName(name);
    });
    if (found == known.end()) fail("there is no field " + braced(name) + "; the fields are " + allFields());
    if (hasWidth && found->type != ColumnType::Integer && found->type != ColumnType::Real)
      fail("only numbers have a width, and " + braced(name) + " is none");
    std::vector<std::string> &fields = pattern_.fields_;
    const auto there = std::find(fields.begin(), fields.end(), found->name);
    const auto place = static_cast<size_t>(there - fields.begin());
    if (there == fields.end()) fields.emplace_back(found->name);
    return place;
  }

  // Each part between slashes must have something to be called by.
  void checkParts() const {
    std::string literal;
    bool holdsField = false;
    const auto endPart = [&] {
      if (!holdsField && literal.empty()) fail("a part between slashes is empty");
      if (!holdsField && literal.find_first_not_of(". ") == std::string::npos)
        fail("a part between slashes is " + inQuotes(literal));
      literal.clear();
      holdsField = false;
    };
    for (const Token &token : pattern_.tokens_) {
      if (token.sign == Sign::Slash) endPart();
      literal += token.literal;
      holdsField = holdsField || token.sign == Sign::Field;
    }
    endPart();
  }

  NamePattern &pattern_;
  std::string_view text_;
  size_t at_ = 0;
  bool isOpen_ = false;
  bool holdsField_ = false;  // what is open
};

NamePattern::NamePattern(std::string_view text) { Reader(*this, text).read(); }

std::string NamePattern::textOf(const Token &token, const Row &values) const {
  for (const size_t field : token.fields) {
    const std::string text = valueText(fields_[field], values[field]);
    if (!text.empty())
      return std::string(token.width - std::min(token.width, text.size()), token.fill) + text;
  }
  return {};
}

// The parts between slashes, before they are made safe.
std::vector<std::string> NamePattern::texts(const Row &values) const {
  std::vector<std::string> parts(1);
  std::vector<std::string> group;  // the parts within []; none outside
  bool keepsGroup = false;
  for (const Token &token : tokens_) {
    std::vector<std::string> &here = group.empty() ? parts : group;
    switch (token.sign) {
      case Sign::Literal:
        here.back() += token.literal;
        break;
      case Sign::Field: {
        const std::string text = textOf(token, values);
        here.back() += text.empty() && group.empty() ? unknownText(fields_[token.fields.back()]) : text;
        keepsGroup = keepsGroup || !text.empty();
        break;
      }
      case Sign::Slash:
        here.emplace_back();
        break;
      case Sign::Open:
        group.resize(1);
        keepsGroup = false;
        break;
      case Sign::Close:
        if (keepsGroup) {
          parts.back() += group.front();
          parts.insert(parts.end(), group.begin() + 1, group.end());
        }
        group.clear();
        break;
    }
  }
  return parts;
}

NamePattern::Names NamePattern::names(const Row &values) const {
  Names names{texts(values), {}};
  names.file = std::move(names.folders.back());
  names.folders.pop_back();
  for (std::string &folder : names.folders) folder = safeName(folder, kUnknownName);
  return names;
}

}  // namespace zemhost
