#include "macro/command_words.h"

#include "macro/command_catalogue.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr std::string_view kUnreadable = "?";

// Whatever cannot be read becomes a question mark: a damaged macro is shown as far as possible.
template <class Read>
std::string Readable(Read read) {
  std::string text(kUnreadable);
  Attempt([&] { text = read(); });
  return text;
}

// Reads the values of one command.
class Words {
 public:
  explicit Words(const MacroEvent& event) : event_(event) {}

  std::string Text(const std::string& key) const {
    return Readable([&] { return event_.Text(key); });
  }
  std::string Number(const std::string& key) const {
    return Readable([&] { return FormatNumber(event_.Number(key)); });
  }
  std::string YesOrNo(const std::string& key) const {
    return Readable([&] { return std::string(event_.Flag(key) ? "ja" : "nein"); });
  }
  bool IsOn(const std::string& key) const {
    bool on = false;
    Attempt([&] { on = event_.Integer(key) > 0; });
    return on;
  }

  // "5 x 5" of two half widths
  std::string Window(const std::string& x, const std::string& y) const { return Width(x) + " x " + Width(y); }

  std::string Width(const std::string& key) const {
    return Readable([&] { return std::to_string(2 * std::int64_t{event_.Integer(key)} + 1); });
  }

  // What the deviations are measured from.
  std::string CompareVector() const {
    return Readable([&]() -> std::string {
      switch (event_.Integer("CompareVectorType")) {
        case 1:
          return "lokaler Mittelwert " + Window("CboLocalMiddleX", "CboLocalMiddleY");
        case 2:
          return "Gesamtmittelwert";
        case 3:
          return "Median " + Window("CboMedianX", "CboMedianY");
        case 4:
          return "Vektor (" + Text("TxtUserVectorX") + "; " + Text("TxtUserVectorY") + ") m/s";
        default:
          return std::string(kUnreadable);
      }
    });
  }

  // "Betrag außerhalb 0 bis 10 m/s"
  std::string Interval(const std::string& what, const std::string& interval) const {
    const std::string side =
        Readable([&] { return std::string(event_.Flag("Opt" + interval + "Out") ? "außerhalb " : "innerhalb "); });
    return what + " " + side + Text("Txt" + interval + "Min") + " bis " + Text("Txt" + interval + "Max") + " m/s";
  }

  std::string Search() const {
    std::vector<std::string> criteria;
    if (IsOn("ChkAbsDeviation")) criteria.push_back("Abweichung > " + Text("TxtAbsDeviation") + " %");
    if (IsOn("ChkDirDeviation")) criteria.push_back("Richtung > " + Text("TxtDirDeviation") + "°");
    std::string text = criteria.empty() ? "" : CompareVector() + ", ";
    if (IsOn("ChkAbsInterval")) criteria.push_back(Interval("Betrag", "AbsInt"));
    if (IsOn("ChkXComp")) criteria.push_back(Interval("x-Komponente", "XCompInt"));
    if (IsOn("ChkYComp")) criteria.push_back(Interval("y-Komponente", "YCompInt"));
    if (criteria.empty()) return "kein Kriterium";
    const std::string between = Readable([&] { return std::string(event_.Flag("LogicalOr") ? " oder " : " und "); });
    for (std::size_t k = 0; k < criteria.size(); ++k) text.append(k == 0 ? "" : between).append(criteria[k]);
    return text;
  }

  std::string Names() const {
    const std::string prefix = Text("Prefix"), postfix = Text("Postfix");
    if (prefix.empty() && postfix.empty()) return "Name der Originaldatei";
    return prefix + (prefix.empty() ? "..." : " ...") + (postfix.empty() ? "" : " ") + postfix;
  }

  std::string Coordinates() const {
    return "x: * " + Text("TxtFakX") + " + " + Text("TxtDeltaX") + " mm, y: * " + Text("TxtFakY") + " + " +
           Text("TxtDeltaY") + " mm, Vektoren: * " + Text("TxtFakVecX") + " und * " + Text("TxtFakVecY");
  }

  std::string Mirrored() const {
    const bool x = IsOn("ChkPosX"), y = IsOn("ChkPosY");
    if (!x && !y) return "keine Richtung";
    return std::string(x ? "x-Richtung" : "") + (x && y ? " und " : "") + (y ? "y-Richtung" : "");
  }

  std::string VortexCentres() const {
    const std::string file = Text("FileName");
    const bool copies = YesOrNo("AutoTrafo") == "ja";
    if (file.empty()) return copies ? "transformierte Felder speichern" : "";
    return file + (copies ? ", transformierte Felder speichern" : "");
  }

 private:
  const MacroEvent& event_;
};

std::string ValueInWords(const Words& words, const Parameter& parameter) {
  const std::string key(parameter.key);
  switch (parameter.kind) {
    case ParameterKind::text:
      return words.Text(key);
    case ParameterKind::flag:
    case ParameterKind::checkState:
      return words.YesOrNo(key);
    case ParameterKind::number:
      return words.Number(key);
    case ParameterKind::integer:
      break;
  }
  return key == "CompareVectorType" ? words.CompareVector() : words.Width(key);
}

}  // namespace

std::string ParametersInBrief(const MacroEvent& event) {
  const CommandRow* const command = FindCommand(event.EventId());
  if (command == nullptr) return "";
  const Words words(event);
  switch (command->editor.kind) {
    case EditorKind::none:
      return "";
    case EditorKind::names:
      return words.Names();
    case EditorKind::comment:
      return words.Text("Comment");
    case EditorKind::bufferFile:
    case EditorKind::collectionFile:
      return words.Text("FileName");
    case EditorKind::faultVectors:
      return words.Search();
    case EditorKind::mirror:
      return words.Mirrored();
    case EditorKind::coordinates:
      return words.Coordinates();
    case EditorKind::constVector:
      return "(" + words.Number("XComp") + "; " + words.Number("YComp") + ") m/s";
    case EditorKind::vortexCentres:
      return words.VortexCentres();
    case EditorKind::question:
      return words.YesOrNo("Checked");
    case EditorKind::number:
      break;
  }
  return words.Number("Value");
}

std::vector<std::string> ParametersInWords(const MacroEvent& event) {
  std::vector<std::string> lines;
  const Words words(event);
  for (const Parameter& parameter : ParametersOf(event.EventId())) {
    lines.push_back(std::string(parameter.label) + ": " + ValueInWords(words, parameter));
  }
  return lines;
}

}  // namespace quiverion
