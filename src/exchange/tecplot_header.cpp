#include "exchange/tecplot_header.h"

#include <algorithm>
#include <cmath>

#include "messages/failure.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kMostVariables = 1000;
constexpr std::size_t kMostComments = 200;

constexpr std::string_view kKeywords[] = {"TITLE", "VARIABLES", "ZONE",         "DATASETAUXDATA", "VARAUXDATA",
                                          "TEXT",  "GEOMETRY",  "CUSTOMLABELS", "FILETYPE",       "AUXDATA"};

bool IsKeyword(std::string_view word) {
  return std::ranges::any_of(kKeywords, [&](std::string_view keyword) { return EqualsIgnoringCase(word, keyword); });
}

bool IsWordEnd(char c) {
  return IsBlank(c) || IsLineEnd(c) || c == ',' || c == '=' || c == '"' || c == '(' || c == '\0';
}

// The words, texts and signs of the records.
class Scanner {
 public:
  Scanner(const TextFile& file, const char* at, TecplotHeader& header) : file_(file), at_(at), header_(header) {}

  const char* At() const { return at_; }
  bool AtEnd() const { return at_ == file_.End(); }

  // Blanks, line ends, commas and comments.
  void SkipGaps() {
    for (;;) {
      while (IsBlank(*at_) || IsLineEnd(*at_) || *at_ == ',') ++at_;
      if (*at_ != '#') return;
      if (header_.comments.size() < kMostComments) header_.comments.emplace_back(file_.LineAt(at_));
      at_ = file_.AfterLine(at_);
    }
  }

  bool AtNumber() const {
    double value = 0.0;
    if (ReadAnyNumber(at_, file_.End(), value) == nullptr) return false;
    return !IsNamed();
  }

  bool TakeEquals() {
    const char* const after = SkipBlanks(at_);
    if (*after != '=') return false;
    at_ = SkipBlanks(after + 1);
    return true;
  }

  std::string_view PeekWord() const {
    const char* end = at_;
    while (!IsWordEnd(*end)) ++end;
    return {at_, static_cast<std::size_t>(end - at_)};
  }

  std::string_view TakeWord() {
    const std::string_view word = PeekWord();
    if (word.empty()) file_.RefuseAt(at_, std::string("unerwartetes Zeichen im Kopf"));
    at_ += word.size();
    return word;
  }

  // A word, a text in quotation marks, or anything in parentheses.
  std::string TakeValue() {
    if (*at_ == '"' || *at_ == '\'') return TakeQuoted(*at_);
    if (*at_ == '(') return TakeQuoted(')');
    return std::string(TakeWord());
  }

 private:
  // "I" of "I=3" might be the beginning of "INF".
  bool IsNamed() const {
    const char* const after = SkipBlanks(at_ + PeekWord().size());
    return *after == '=';
  }

  std::string TakeQuoted(char close) {
    const char* const begin = at_ + 1;
    const char* const end = std::find(begin, file_.End(), close);
    if (end == file_.End()) file_.RefuseAt(at_, "ein Text im Kopf hat kein Ende");
    at_ = end + 1;
    return {begin, end};
  }

  const TextFile& file_;
  const char* at_;
  TecplotHeader& header_;
};

std::int64_t CountOf(const TextFile& file, const char* at, const std::string& text) {
  const NumberPrefix number = ReadNumberPrefix(text);
  if (number.length != text.size() || !(number.value >= 1 && number.value <= 2147483647.0) ||
      number.value != std::floor(number.value)) {
    std::string shown = text.substr(0, 20);
    ReplaceControls(shown, "");
    file.RefuseAt(at, "'" + shown + "' ist keine Anzahl von Punkten");
  }
  return static_cast<std::int64_t>(number.value);
}

void TakeZoneValue(const TextFile& file, const char* at, const std::string& key, const std::string& value,
                   TecplotZone& zone) {
  if (key == "I") zone.i = CountOf(file, at, value);
  if (key == "J") zone.j = CountOf(file, at, value);
  if (key == "K") zone.k = CountOf(file, at, value);
  if (key == "F" || key == "DATAPACKING") {
    const std::string packing = AsciiUpper(value);
    zone.packingIsGiven = true;
    zone.isBlock = packing == "BLOCK";
    if (packing != "BLOCK" && packing != "POINT") file.RefuseAt(at, "nur POINT und BLOCK können gelesen werden");
  }
  if (key == "ZONETYPE" && !EqualsIgnoringCase(value, "ORDERED")) {
    file.RefuseAt(at, "nur geordnete Zonen können gelesen werden");
  }
  if (key == "SOLUTIONTIME") zone.time = ReadNumberPrefix(value).value;
}

TecplotZone ReadZone(const TextFile& file, Scanner& scan, const char* record, TecplotHeader& header) {
  TecplotZone zone;
  zone.record = record;
  for (;;) {
    scan.SkipGaps();
    if (scan.AtEnd() || scan.AtNumber() || *scan.At() == '"') break;
    const char* const at = scan.At();
    const std::string_view word = scan.PeekWord();
    if (EqualsIgnoringCase(word, "ZONE")) break;
    scan.TakeWord();
    const std::string key = AsciiUpper(word);
    if (key == "AUXDATA" || key == "DATASETAUXDATA") continue;  // its name and value follow
    if (!scan.TakeEquals()) file.RefuseAt(at, "'=' fehlt nach '" + key.substr(0, 20) + "'");
    scan.SkipGaps();
    const std::string value = scan.TakeValue();
    TakeZoneValue(file, at, key, value, zone);
    header.auxiliary.emplace(key, value);
  }
  zone.numbers = scan.At();
  return zone;
}

void ReadVariables(const TextFile& file, Scanner& scan, TecplotHeader& header) {
  header.columns.clear();
  for (;;) {
    scan.SkipGaps();
    if (scan.AtEnd() || scan.AtNumber()) break;
    if (*scan.At() != '"' && *scan.At() != '\'' && IsKeyword(scan.PeekWord())) break;
    header.columns.push_back(ColumnOf(scan.TakeValue()));
    if (header.columns.size() > kMostVariables) file.RefuseAt(scan.At(), "zu viele Variablen");
  }
  DropDoubles(header.columns);
}

}  // namespace

std::optional<TecplotZone> ReadTecplotRecords(const TextFile& file, const char* begin, TecplotHeader& header) {
  Scanner scan(file, begin, header);
  for (;;) {
    scan.SkipGaps();
    if (scan.AtEnd()) return std::nullopt;
    const char* const at = scan.At();
    if (scan.AtNumber()) {
      TecplotZone zone;
      zone.record = zone.numbers = at;
      return zone;
    }
    const std::string key = AsciiUpper(scan.TakeWord());
    if (key == "ZONE") return ReadZone(file, scan, at, header);
    if (key == "DATASETAUXDATA" || key == "VARAUXDATA") {
      scan.SkipGaps();
      if (key == "VARAUXDATA") {
        scan.TakeWord();
        scan.SkipGaps();
      }
      const std::string name(scan.TakeWord());
      if (scan.TakeEquals()) header.auxiliary.emplace(name, scan.TakeValue());
    } else if (key == "TITLE" || key == "VARIABLES" || key == "FILETYPE") {
      if (!scan.TakeEquals()) file.RefuseAt(at, "'=' fehlt nach '" + key + "'");
      scan.SkipGaps();
      if (key == "VARIABLES") {
        ReadVariables(file, scan, header);
      } else {
        const std::string value = scan.TakeValue();
        if (key == "TITLE") header.title = value;
      }
    } else {
      file.RefuseAt(at, "'" + key.substr(0, 20) + "' im Kopf ist unbekannt");
    }
  }
}

}  // namespace quiverion::exchange
