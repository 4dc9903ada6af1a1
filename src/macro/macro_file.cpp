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
  if (!failure) return true;
  return Fail(session, failure->atOpening ? "Fehler beim Öffnen der Datei" : "Fehler beim Schreiben in die Datei");
}

}  // namespace quiverion
