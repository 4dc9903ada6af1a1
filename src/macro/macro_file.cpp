#include "macro/macro_file.h"

#include <optional>

#include "field/formats/binary_reader.h"
#include "field/formats/binary_writer.h"
#include "macro/command_catalogue.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

constexpr std::size_t kMinRecordSize = 4;

MacroValue ReadValue(BinaryReader& reader, FileEncoding encoding) {
  switch (encoding) {
    case FileEncoding::text: {
      std::string text;
      reader.Text(text);
      return text;
    }
    case FileEncoding::bool16: {
      std::int16_t flag = 0;
      reader.Int16(flag);
      return flag != 0;
    }
    case FileEncoding::int32: {
      std::int32_t number = 0;
      reader.Int32(number);
      return number;
    }
    case FileEncoding::float64:
      break;
  }
  double number = 0.0;
  reader.Double(number);
  return number;
}

void WriteValue(BinaryWriter& writer, const MacroEvent& event, const Parameter& parameter) {
  switch (parameter.encoding) {
    case FileEncoding::text:
      writer.Text(event.Text(parameter.key));
      break;
    case FileEncoding::bool16:
      writer.Int16(event.Flag(parameter.key) ? kFlagTrue : kFlagFalse);
      break;
    case FileEncoding::int32:
      writer.Int32(event.Integer(parameter.key));
      break;
    case FileEncoding::float64:
      writer.Double(event.Number(parameter.key));
      break;
  }
}

MacroEvent ReadRecord(BinaryReader& reader) {
  std::int32_t eventId = 0;
  reader.Int32(eventId);
  MacroEvent event(eventId);
  for (const Parameter& parameter : ParametersOf(eventId)) {
    event.Set(parameter.key, ReadValue(reader, parameter.encoding));
  }
  return event;
}

// A text of the macro that a macro file cannot represent.
std::optional<std::string> FindLostText(const MacroEventList& macro) {
  for (const MacroEvent& event : macro) {
    for (const Parameter& parameter : ParametersOf(event.EventId())) {
      const MacroValue* const value = event.Find(parameter.key);
      const auto* text = value == nullptr ? nullptr : std::get_if<std::string>(value);
      if (text != nullptr && !FitsWindows1252(*text)) return *text;
    }
  }
  return std::nullopt;
}

// "Befehl 2, Konstanten Vektor addieren: "
std::string Place(std::size_t position, const MacroEvent& event) {
  return "Befehl " + std::to_string(position + 1) + ", " + std::string(MacroEventDescription(event.EventId(), true)) +
         ": ";
}

// Calls `visit(place, value)` for each number that a macro file stores as a whole one.
template <class Visit>
void ForEachWholeNumber(const MacroEventList& macro, Visit visit) {
  for (std::size_t k = 0; k < macro.size(); ++k) {
    for (const Parameter& parameter : ParametersOf(macro[k].EventId())) {
      if (parameter.encoding != FileEncoding::int32 || macro[k].Find(parameter.key) == nullptr) continue;
      visit(Place(k, macro[k]), macro[k].Number(parameter.key));
    }
  }
}

bool FitsInt32(double value) {
  return !Attempt([value] { RoundToInt32(value); });
}

// A line for each number that is stored as another one, for the first ten.
std::string RoundedNumbers(const Session& session) {
  constexpr int shown = 10;
  int count = 0;
  std::string lines;
  ForEachWholeNumber(session.macro, [&](const std::string& place, double value) {
    const std::int32_t stored = RoundToInt32(value);
    if (stored == value || ++count > shown) return;
    lines += "\r\n" + place + FormatNumber(value, session.context.decimalSeparator) + " wird als " +
             std::to_string(stored) + " gespeichert.";
  });
  if (count > shown) lines += "\r\n... und " + std::to_string(count - shown) + " weitere";
  return lines;
}

// A line for each number that is too large, an empty text if there is another reason.
std::string HugeNumbers(const Session& session) {
  std::string lines;
  ForEachWholeNumber(session.macro, [&](const std::string& place, double value) {
    if (FitsInt32(value)) return;
    lines +=
        "\r\n" + place + FormatNumber(value, session.context.decimalSeparator) + " ist zu groß für eine Makrodatei.";
  });
  return lines;
}

bool Fail(Session& session, const std::string& text) {
  session.context.ui.Ask({.title = "QuiverionSeries", .text = text});
  return false;
}

}  // namespace

MacroEventList ReadMacro(InputFile& file) {
  BinaryReader reader(file);
  std::int32_t count = 0;
  reader.Int32(count);
  if (count < 0) throw SystemError(ErrorNumber::invalidCall);
  reader.Require(static_cast<std::uint64_t>(count) * kMinRecordSize);
  MacroEventList macro;
  for (std::int32_t k = 0; k < count; ++k) macro.push_back(ReadRecord(reader));
  return macro;
}

void WriteMacro(ResultFile& file, const MacroEventList& macro) {
  BinaryWriter writer(file);
  writer.Int32(CheckedInt32(static_cast<std::int64_t>(macro.size())));
  for (const MacroEvent& event : macro) {
    const std::int32_t eventId = event.EventId();
    writer.Int32(eventId);
    for (const Parameter& parameter : ParametersOf(eventId)) WriteValue(writer, event, parameter);
  }
}

bool LoadMacroFile(Session& session, const std::string& path) {
  const auto failure = Attempt([&] { session.macro = ReadMacro(*session.context.files.OpenForReading(path)); });
  return !failure || Fail(session, "Fehler beim Öffnen der Datei!");
}

bool SaveMacroFile(Session& session, const std::string& path) {
  if (const auto lost = FindLostText(session.macro)) {
    return Fail(session, "Fehler beim Schreiben in die Datei\r\nDer Text '" + *lost +
                             "' enthält Zeichen, die in einer Makrodatei nicht gespeichert werden können.");
  }
  const auto failure =
      SaveResult(session.context.files, nullptr, path, [&](ResultFile& file) { WriteMacro(file, session.macro); });
  if (failure) {
    if (failure->atOpening) return Fail(session, "Fehler beim Öffnen der Datei");
    std::string reason;
    Attempt([&] { reason = HugeNumbers(session); });  // a damaged macro may lack a value
    return Fail(session, "Fehler beim Schreiben in die Datei" + reason);
  }
  if (const std::string rounded = RoundedNumbers(session); !rounded.empty()) {
    session.context.ui.Ask(
        {.title = "QuiverionSeries",
         .text = "Das Makro ist gespeichert. Einige Zahlen enthält die Datei aber nur gerundet:" + rounded,
         .icon = MessageIcon::information});
  }
  return true;
}

}  // namespace quiverion
