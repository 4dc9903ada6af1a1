#include "json/macro_json.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>

#include "macro/command_catalogue.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

using Json = nlohmann::ordered_json;

std::string Place(std::size_t position) {
  return "Befehl " + std::to_string(position) + ": ";
}

// One command while it is read from JSON. The position is for the messages.
class CommandReader {
 public:
  CommandReader(const Json& object, std::size_t position) : object_(object), position_(position) {
    if (!object.is_object()) Fail("Ein Objekt { ... } wird erwartet.");
  }

  MacroEvent Read() const {
    MacroEvent event(ReadEventId(*Find("EventId")));
    const auto parameters = ParametersOf(event.EventId());
    RefuseOtherKeys(parameters);
    for (const Parameter& parameter : parameters) {
      event.Set(parameter.key, Convert(parameter, *Find(parameter.key)));
    }
    return event;
  }

 private:
  [[noreturn]] void Fail(const std::string& sentence) const { throw MacroJsonError(Place(position_) + sentence); }

  [[noreturn]] void FailKind(std::string_view key, std::string_view expected) const {
    Fail("'" + std::string(key) + "' muss " + std::string(expected) + " sein.");
  }

  const Json* Find(std::string_view key) const {
    for (const auto& [name, value] : object_.items()) {
      if (EqualsIgnoringCase(name, key)) return &value;
    }
    Fail("Der Schlüssel '" + std::string(key) + "' fehlt.");
  }

  void RefuseOtherKeys(std::span<const Parameter> parameters) const {
    std::vector<std::string> seen;
    for (const auto& [name, value] : object_.items()) {
      bool known = EqualsIgnoringCase(name, "EventId");
      for (const Parameter& parameter : parameters) known = known || EqualsIgnoringCase(name, parameter.key);
      if (!known) Fail("Der Schlüssel '" + name + "' ist unbekannt.");
      for (const std::string& other : seen) {
        if (EqualsIgnoringCase(name, other)) Fail("Der Schlüssel '" + name + "' kommt zweimal vor.");
      }
      seen.push_back(name);
    }
  }

  std::int32_t ReadEventId(const Json& value) const {
    if (!value.is_string()) return Integer("EventId", value, "eine ganze Zahl oder der Name eines Befehls");
    const CommandRow* const row = FindCommand(std::string_view(value.get_ref<const std::string&>()));
    if (row == nullptr) FailKind("EventId", "eine ganze Zahl oder der Name eines Befehls");
    return row->eventId;
  }

  std::int32_t Integer(std::string_view key, const Json& value, std::string_view expected) const {
    if (!value.is_number_integer()) FailKind(key, expected);
    const bool tooLarge = value.is_number_unsigned() && value.get<std::uint64_t>() > 0x7FFFFFFF;
    const auto number = tooLarge ? 0 : value.get<std::int64_t>();
    if (tooLarge || number < std::numeric_limits<std::int32_t>::min()) FailKind(key, expected);
    return static_cast<std::int32_t>(number);
  }

  MacroValue Convert(const Parameter& parameter, const Json& value) const {
    switch (parameter.kind) {
      case ParameterKind::text:
        if (!value.is_string()) FailKind(parameter.key, "ein Text");
        return value.get<std::string>();
      case ParameterKind::flag:
        if (!value.is_boolean()) FailKind(parameter.key, "true oder false");
        return value.get<bool>();
      case ParameterKind::checkState:
      case ParameterKind::integer:
        return Integer(parameter.key, value, "eine ganze Zahl");
      case ParameterKind::number:
        break;
    }
    if (!value.is_number()) FailKind(parameter.key, "eine Zahl");
    const double number = value.get<double>();
    // A number that the file stores as a 32-bit integer must fit after rounding.
    const bool fits = parameter.encoding != FileEncoding::int32 || (number >= -2147483648.5 && number < 2147483647.5);
    if (!std::isfinite(number) || !fits) FailKind(parameter.key, "eine Zahl, die in die Makrodatei passt");
    return number;
  }

  const Json& object_;
  std::size_t position_;
};

Json ValueToJson(const MacroEvent& event, const Parameter& parameter, std::size_t position) {
  switch (parameter.kind) {
    case ParameterKind::text:
      return event.Text(parameter.key);
    case ParameterKind::flag:
      return event.Flag(parameter.key);
    case ParameterKind::checkState:
    case ParameterKind::integer:
      return event.Integer(parameter.key);
    case ParameterKind::number:
      break;
  }
  const double number = event.Number(parameter.key);
  if (!std::isfinite(number)) {
    throw MacroJsonError(Place(position) + "'" + std::string(parameter.key) + "' ist keine endliche Zahl.");
  }
  return number;
}

std::string CommandToJson(const MacroEvent& event, std::size_t position) {
  const std::int32_t eventId = event.EventId();
  const CommandRow* const row = FindCommand(eventId);
  std::string line = "{\"EventId\": " + (row ? Json(std::string(row->constantName)).dump() : std::to_string(eventId));
  for (const Parameter& parameter : ParametersOf(eventId)) {
    line += ", " + Json(std::string(parameter.key)).dump() + ": " + ValueToJson(event, parameter, position).dump();
  }
  return line + "}";
}

// The parser itself would silently keep one of two values.
Json ParseJson(std::string_view text) {
  std::vector<std::set<std::string>> keys;
  std::size_t position = 0;
  const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) {
      keys.emplace_back();
      position += depth == 1 ? 1 : 0;
    }
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second) {
      throw MacroJsonError(Place(position) + "Der Schlüssel '" + parsed.get<std::string>() + "' kommt zweimal vor.");
    }
    return true;
  };
  try {
    return Json::parse(text, watch);
  } catch (const Json::parse_error& error) {
    throw MacroJsonError("Kein gültiges JSON, Fehler bei Byte " + std::to_string(error.byte) + ".");
  } catch (const Json::out_of_range&) {
    throw MacroJsonError("Befehl " + std::to_string(position) + ": Eine Zahl ist zu groß.");
  }
}

}  // namespace

std::string MacroToJson(const MacroEventList& macro) {
  std::string text = "[";
  for (std::size_t k = 0; k < macro.size(); ++k) {
    text += (k == 0 ? "\n  " : ",\n  ") + CommandToJson(macro[k], k + 1);
  }
  return text + (macro.empty() ? "]\n" : "\n]\n");
}

MacroEventList MacroFromJson(std::string_view text) {
  const Json array = ParseJson(text);
  if (!array.is_array()) throw MacroJsonError("Ein Feld [ ... ] von Befehlen wird erwartet.");
  MacroEventList macro;
  for (const Json& object : array) macro.push_back(CommandReader(object, macro.size() + 1).Read());
  return macro;
}

}  // namespace quiverion
