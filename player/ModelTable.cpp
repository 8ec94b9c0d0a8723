#include "player/ModelTable.h"

#include <algorithm>
#include <cstddef>

namespace player {

namespace {

constexpr size_t kCode = 4;          // characters of a model number, behind its first letter
constexpr size_t kShortSerial = 11;  // characters of the older serial numbers
constexpr size_t kLongSerial = 12;

// Models of one kind and capacity. Each is its code, the letter of its colour, and behind a colon the ends of
// the serial numbers that stand for it.
struct ModelRow {
  std::string_view player;
  std::string_view generation;
  std::string_view capacity;
  std::string_view models;
};

constexpr ModelRow kModels[] = {
    {"iPod", "1", "5 GB", "8513W 8541W:LG6,NAM,MJ2 8697W"},
    {"iPod", "1", "10 GB", "8709W:ML1,MME"},
    {"iPod", "2", "10 GB", "8737W:MMB 8740W:NGE,NGH"},
    {"iPod", "2", "20 GB", "8738W:MMC 8741W:MMF"},
    {"iPod", "3", "10 GB", "8976W:NRH"},
    {"iPod", "3", "15 GB", "8946W:NLW 9460W:QQF"},
    {"iPod", "3", "20 GB", "9244W:PQ5,PNT"},
    {"iPod", "3", "30 GB", "8948W:NLY,NM7"},
    {"iPod", "3", "40 GB", "9245W:PNU"},
    {"iPod", "4", "20 GB", "9282W:PS9,Q8U 9787U:S2X"},
    {"iPod", "4", "40 GB", "9268W:PQ7 E436W"},
    {"iPod photo", "", "20 GB", "A079W:TDU,TDS A127U:TM2 A215W:U5H"},
    {"iPod photo", "", "30 GB", "9829W:SAY S492W"},
    {"iPod photo", "", "40 GB", "9585W:R5Q"},
    {"iPod photo", "", "60 GB", "9586W:R5R,R5T 9830W:SAZ,SB1"},
    {"iPod", "5", "30 GB", "A002W:SZ9,WEC,WED,WEG,WEH,WEL A146K:TXK,TXM,WEF,WEJ,WEK A452U:V9V"},
    {"iPod", "5", "60 GB", "A003W:SZA,SZU A147K:TXL,TXN"},
    {"iPod", "5.5", "30 GB", "A444W:V9K,V9L,WU9 A446K:VQM,V9M,V9N,WEE A664U:W9G,WEM"},
    {"iPod", "5.5", "80 GB", "A448W:V9P,V9Q A450K:V9R,V9S,V95,V96,WUC"},
    {"iPod classic", "6", "80 GB", "B029S:Y5N B147K:YMV"},
    {"iPod classic", "6", "160 GB", "B145S:YMU B150K:YMX"},
    {"iPod classic", "6.5", "120 GB", "B562S:2C5 B565K:2C7"},
    {"iPod classic", "7", "160 GB", "C293S:9ZS C297K:9ZU"},
    {"iPod mini", "1", "4 GB", "9160S:PFW,PRC 9434G:QKJ,QKN 9435P:QKK,QKP 9436B:QKL,QKQ 9437D:QKM,QKR"},
    {"iPod mini", "2", "4 GB", "9800S:S41,S4C 9802B:S43 9804P:S45 9806G:S47,S4J"},
    {"iPod mini", "2", "6 GB", "9801S:S42 9803B:S44 9805P:S4G,S4H 9807G:S48"},
    {"iPod nano", "1", "1 GB", "A350W:UYN,UNA,UNB A352K:UYP,UPR,UPS"},
    {"iPod nano", "1", "2 GB", "A004W:TUZ,SZB,SZV,SZW A099K:TUY,TJT,TJU"},
    {"iPod nano", "1", "4 GB", "A005W:TV0,SZC,SZT A107K:TV1,TK2,TK3"},
    {"iPod nano", "2", "2 GB", "A477S:VQ5,VQ6"},
    {"iPod nano", "2", "4 GB", "A426S:V8T,V8U A428B:V8W,V8X A487G:VQH,VQJ A489P:VQK,VQL,VKL A725R:WL2,WL3"},
    {"iPod nano", "2", "8 GB", "A497K:VQT,VQU A726R:X9A,X9B A899R:YER,YES"},
    {"iPod nano", "3", "4 GB", "A978S:Y0P"},
    {"iPod nano", "3", "8 GB", "A980S:Y0R B249B:YXR B253G:YXT B257R:YXV B261K:YXX B453P:13F"},
    {"iPod nano", "4", "4 GB", "B480S:1P1 B651B:37G B654P:37H B657V:37K B660O:37L B663G:37P B666Y:37Q"},
    {"iPod nano", "4", "8 GB",
     "B598S:2ME B732B:3QS B735P:3QT B739V:3QU B742O:3QW B745G:3QX B748Y:3QY "
     "B751R:3QZ B754K:3R0"},
    {"iPod nano", "4", "16 GB",
     "B903S:5B7 B905B:5B8 B907P:5B9 B909V:5BA B911O:5BB B913G:5BC B915Y:5BD "
     "B917R:5BE B918K:5BF"},
    {"iPod nano", "5", "8 GB",
     "C027S:71V C031K:71Y C034V:721 C037B:726 C040G:72A C043Y:72D C046O:72F "
     "C049R:72K C050P:72L"},
    {"iPod nano", "5", "16 GB",
     "C060S:72Q C062K:72R C064V:72S C066B:72X C068G:734 C070Y:738 C072O:739 "
     "C074R:73A C075P:73B"},
    {"iPod nano", "6", "8 GB",
     "C525S:DCMN C688T:DDVX C689B:DDVY C690G:DDW0 C691O:DDW1 C692P:DDW2 C693R:DDW3"},
    {"iPod nano", "6", "16 GB",
     "C526S:DCMP C694T:DDW4 C695B:DDW5 C696G:DDW6 C697O:DDW7 C698P:DDW8 C699R:DDW9"},
    {"iPod nano", "7", "16 GB",
     "D475P:F0GD,F0GM D476Y:F0GF,F0GN D477B:F0GG,F0GP D478G:F0GH,F0GQ "
     "D479V:F0GJ,F0GR D480S:F0GK,F0GT D481L:F0GL,F0GV D744R:F4LN,F4LP E971X:FJQ1 "
     "KMV2P:GK60 KMX2D:GK61 KN02B:GK62 KN22S:GK63 KN52X:GK64 KN72R:GK65"},
    {"iPod shuffle", "1", "512 MB", "9724W:RS9,QGV,TSX,PFV,R80"},
    {"iPod shuffle", "1", "1 GB", "9725W:RSA,TSY,C60"},
    {"iPod shuffle", "2", "1 GB",
     "A546S:VTE,VTF A564S A947P:XQ5,XQS A949B:XQV,XQX A951G:XQY,YX8 A953O:XR1 "
     "B225S:YX6,YX9 B227B:YX7,YXH B228B B229G:YXJ B231R:YXK B233V:YXA,YXL B811P:436 "
     "B813B:437 B815G:438 B817R:439 C167D:8CQ"},
    {"iPod shuffle", "2", "2 GB",
     "B518S:1ZH B520B:1ZK B522G:1ZM B524R:1ZP B526V:1ZR B681P:3FK B683B:3FL "
     "B685G:3FM B779R:3W6"},
    {"iPod shuffle", "3", "2 GB", "C306S:A1S C323K:A78 C381G:ALB C384B:ALD C387P:ALG"},
    {"iPod shuffle", "3", "4 GB", "B867S:4NZ C164K:891 C303I:A1L C307G:A1U C328B:A7B C331P:A7D"},
    {"iPod shuffle", "4", "2 GB",
     "C584S:DCMJ C585P:DCMK C749O:DFDM C750G:DFDN C751B:DFDP D773P:F4RT D774Y:F4RV "
     "D775B:F4RW D776G:F4RY D777V:F4T0 D778S:F4T1 D779L:F4VF D780R:F4VG E949X:FJDH "
     "KM72P:GK67 KM92D:GK68 KME2B:GK69 KMG2S:GK6C KMJ2X:GK6D KML2R:GK6F"},
};

struct ColourName {
  char letter;
  std::string_view name;
};
constexpr ColourName kColours[] = {{'W', "white"},  {'K', "black"},  {'S', "silver"}, {'B', "blue"},
                                   {'G', "green"},  {'P', "pink"},   {'R', "red"},    {'V', "purple"},
                                   {'O', "orange"}, {'Y', "yellow"}, {'D', "gold"},   {'T', "graphite"},
                                   {'L', "slate"},  {'I', "steel"},  {'U', "U2"},     {'X', "space gray"}};

struct Family {
  unsigned number;
  std::string_view player;
  std::string_view generation;
};
constexpr Family kFamilies[] = {
    {1, "iPod", "1 or 2"},      {2, "iPod", "3"},           {3, "iPod mini", ""},
    {4, "iPod", "4"},           {5, "iPod photo", ""},      {6, "iPod", "5"},
    {7, "iPod nano", "1"},      {9, "iPod nano", "2"},      {11, "iPod classic", ""},
    {12, "iPod nano", "3"},     {15, "iPod nano", "4"},     {16, "iPod nano", "5"},
    {17, "iPod nano", "6"},     {18, "iPod nano", "7"},     {128, "iPod shuffle", "1"},
    {130, "iPod shuffle", "2"}, {132, "iPod shuffle", "3"}, {133, "iPod shuffle", "4"}};

// Takes what stands before a mark off the text, and the mark.
std::string_view takeTo(std::string_view &text, char mark) {
  const std::string_view first = text.substr(0, text.find(mark));
  text.remove_prefix(std::min(text.size(), first.size() + 1));
  return first;
}

PlayerModel modelIn(const ModelRow &row, char colour) {
  PlayerModel model{std::string(row.player), std::string(row.generation), std::string(row.capacity), {}};
  for (const ColourName &known : kColours) {
    if (known.letter == colour) model.colour = known.name;
  }
  return model;
}

// The model for whose code and ends of serial numbers the test holds.
template <typename Test>
std::optional<PlayerModel> searchModels(const Test &test) {
  for (const ModelRow &row : kModels) {
    std::string_view models = row.models;
    while (!models.empty()) {
      std::string_view ends = takeTo(models, ' ');
      const std::string_view code = takeTo(ends, ':');
      if (test(code.substr(0, kCode), ends)) return modelIn(row, code[kCode]);
    }
  }
  return std::nullopt;
}

}  // namespace

std::string PlayerModel::text() const {
  std::string text = player;
  if (!generation.empty()) text += " (generation " + generation + ")";
  for (const std::string *const part : {&capacity, &colour}) {
    if (!part->empty()) text += ", " + *part;
  }
  return text;
}

std::optional<PlayerModel> modelOfNumber(std::string_view number) {
  if (number.size() <= kCode) return std::nullopt;
  const std::string_view wanted = number.substr(1, kCode);
  return searchModels([&](std::string_view code, std::string_view) { return code == wanted; });
}

std::optional<PlayerModel> modelOfSerial(std::string_view serial) {
  if (serial.size() != kShortSerial && serial.size() != kLongSerial) return std::nullopt;
  const std::string_view wanted = serial.substr(8);
  return searchModels([&](std::string_view, std::string_view ends) {
    while (!ends.empty()) {
      if (takeTo(ends, ',') == wanted) return true;
    }
    return false;
  });
}

std::optional<PlayerModel> modelOfFamily(unsigned family) {
  for (const Family &known : kFamilies) {
    if (known.number == family)
      return PlayerModel{std::string(known.player), std::string(known.generation), {}, {}};
  }
  return std::nullopt;
}

}  // namespace player
