#include "exchange/text_file.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "messages/failure.h"
#include "messages/system_error.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kPadding = 32;  // readers look at whole words
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// Without a branch, so that it compiles to vector instructions.
QUIVERION_MULTI_TARGET void ReplaceAll(char* text, std::size_t size, char from, char to) {
  for (std::size_t k = 0; k < size; ++k) text[k] = text[k] == from ? to : text[k];
}

struct Special {
  std::string_view word;
  double value;
};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// In upper case, the longer ones first.
constexpr Special kSpecial[] = {{"NAN(IND)", kNaN},      {"NAN(SNAN)", kNaN},   {"NAN", kNaN},
                                {"INFINITY", kInfinity}, {"INF", kInfinity},    {"1.#QNAN", kNaN},
                                {"1.#SNAN", kNaN},       {"1.#INF", kInfinity}, {"1.#IND", kNaN}};

const char* ReadSpecial(const char* at, const char* end, double& value) {
  const bool negative = at != end && *at == '-';
  if (negative || (at != end && *at == '+')) ++at;
  for (const Special& special : kSpecial) {
    if (static_cast<std::size_t>(end - at) < special.word.size()) continue;
    if (!EqualsIgnoringCase({at, special.word.size()}, special.word)) continue;
    value = negative ? -special.value : special.value;
    at += special.word.size();
    while (at != end && IsDigit(*at) && special.word[0] == '1') ++at;  // "1.#INF00"
    return at;
  }
  return nullptr;
}

// A number that is too large for a double is infinite.
NumberPrefix ReadPrefix(std::string_view text) {
  try {
    return ReadNumberPrefix(text);
  } catch (const SystemError&) {
    const double sign = text.front() == '-' ? -1.0 : 1.0;
    return {sign * kInfinity, std::min(text.find_first_not_of("+-.0123456789eE"), text.size())};
  }
}

// "1D+03": Fortran's letter for the exponent of a double.
const char* ReadFortran(const char* at, const char* letter, const char* end, double& value) {
  std::string text(at, std::min(letter + 8, end));
  text[static_cast<std::size_t>(letter - at)] = 'E';
  const NumberPrefix number = ReadPrefix(text);
  value = number.value;
  return at + number.length;
}

bool BeginsRecord(const char* at, const char* end) {
  const bool isLetter = (*at >= 'A' && *at <= 'Z') || (*at >= 'a' && *at <= 'z');
  double value = 0.0;
  return isLetter && ReadSpecial(at, end, value) == nullptr;
}

// The first lines of numbers, or more if they do not show how fractions are written.
std::string_view SampleOf(std::string_view table) {
  constexpr int kLines = 50;
  constexpr std::size_t kMost = 1024 * 1024;
  bool hasFraction = false;
  std::size_t size = 0;
  for (int line = 0; size < table.size(); ++line) {
    if (line >= kLines && (hasFraction || size > kMost)) break;
    if (BeginsRecord(table.data() + size, table.data() + table.size())) break;
    const std::size_t end = std::min(table.find_first_of("\r\n", size), table.size() - 1) + 1;
    hasFraction = hasFraction || table.substr(size, end - size).find_first_of(".,") != std::string_view::npos;
    size = end;
    if (size < table.size() && table[size] == '\n' && table[size - 1] == '\r') ++size;
  }
  return table.substr(0, size);
}

bool AllCommasAreDecimal(std::string_view sample) {
  for (std::size_t comma = sample.find(','); comma != std::string_view::npos; comma = sample.find(',', comma + 1)) {
    const bool isBetweenDigits =
        comma > 0 && IsDigit(sample[comma - 1]) && comma + 1 < sample.size() && IsDigit(sample[comma + 1]);
    if (!isBetweenDigits) return false;
  }
  return true;
}

}  // namespace

TextFile::TextFile(InputFile& file) {
  const auto size = static_cast<std::size_t>(file.Size());
  text_.reset(new char[size + kPadding]);  // not zeroed: the file overwrites it
  const std::size_t count = file.Read(text_.get(), size);
  std::fill_n(text_.get() + count, kPadding, '\0');
  begin_ = text_.get();
  end_ = begin_ + count;
  if (std::string_view(begin_, count).starts_with(kByteOrderMark)) begin_ += kByteOrderMark.size();
}

std::string_view TextFile::LineAt(const char* at) const {
  const std::string_view rest(at, static_cast<std::size_t>(end_ - at));
  return rest.substr(0, rest.find_first_of("\r\n"));
}

const char* TextFile::AfterLine(const char* at) const {
  at += LineAt(at).size();
  if (at != end_ && *at == '\r') ++at;
  if (at != end_ && *at == '\n') ++at;
  return at;
}

std::string TextFile::PlaceOf(const char* at) const {
  const auto lineEnds = std::count(begin_, at, '\n');
  const auto returns = lineEnds == 0 ? std::count(begin_, at, '\r') : 0;
  return "Zeile " + std::to_string(lineEnds + returns + 1);
}

void TextFile::RefuseAt(const char* at, const std::string& reason) const {
  throw FormatError(PlaceOf(at) + ": " + reason);
}

void TextFile::ReplaceDecimalCommas(const char* at) {
  const auto size = static_cast<std::size_t>(end_ - at);
  if (const void* const point = std::memchr(at, '.', size); point != nullptr) {
    RefuseAt(static_cast<const char*>(point), "Dezimalpunkt in einer Datei mit Dezimalkommas");
  }
  ReplaceAll(text_.get() + (at - text_.get()), size, ',', '.');
}

NumberStyle StyleOf(std::string_view table) {
  const std::string_view sample = SampleOf(table);
  NumberStyle style;
  const std::string_view line = TrimBlanks(sample.substr(0, sample.find_first_of("\r\n")));
  if (line.find(';') != std::string_view::npos) style.separator = Separator::semicolon;
  if (sample.find(',') == std::string_view::npos) return style;
  const bool somethingElseSeparates =
      style.separator == Separator::semicolon || line.find_first_of(" \t") != std::string_view::npos;
  style.decimalComma = somethingElseSeparates && AllCommasAreDecimal(sample);
  if (!style.decimalComma && style.separator == Separator::blanks) style.separator = Separator::comma;
  return style;
}

const char* ReadAnyNumber(const char* at, const char* end, double& value) {
  if (at == end) return nullptr;
  if (const char* const special = ReadSpecial(at, end, value); special != nullptr) return special;
  const std::string_view text(at, static_cast<std::size_t>(end - at));
  const NumberPrefix number = ReadPrefix(text);
  if (number.length == 0) return nullptr;
  value = number.value;
  const bool isFortran = number.length < text.size() && (text[number.length] == 'D' || text[number.length] == 'd');
  return isFortran ? ReadFortran(at, at + number.length, end, value) : at + number.length;
}

std::size_t CountNumbers(std::string_view line, const NumberStyle& style, std::size_t most) {
  if (line.empty()) return 0;
  const char* at = line.data();
  const char* const end = at + line.size();
  std::size_t count = 0;
  const auto skip = [&](auto mayBeSkipped) {
    while (at != end && mayBeSkipped(*at)) ++at;
  };
  for (; count < most; ++count) {
    skip(IsBlank);
    if (at == end) return count;
    double value = 0.0;
    at = ReadAnyNumber(at, end, value);
    if (at != nullptr && style.decimalComma && at != end && *at == ',') at = ReadAnyNumber(at + 1, end, value);
    if (at == nullptr || (at != end && !EndsNumber(*at))) return 0;
    skip(IsBlank);
    if (at != end && (*at == ',' || *at == ';')) ++at;
  }
  return count;
}

}  // namespace quiverion::exchange
