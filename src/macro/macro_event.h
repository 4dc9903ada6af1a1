#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace quiverion {

/// A value of a command: 32-bit integer, double, flag or text (UTF-8).
using MacroValue = std::variant<std::int32_t, double, bool, std::string>;

/// One command of a macro: named values, always with `EventId`. Names are compared without regard to case. The type of
/// a value depends on its origin; the readers below convert. They throw SystemError 5 if the value is missing or cannot
/// be converted, and 6 if a number does not fit.
class MacroEvent {
 public:
  MacroEvent() : MacroEvent(0) {}
  explicit MacroEvent(std::int32_t eventId) { Set("EventId", eventId); }

  void Set(std::string_view key, MacroValue value);
  const MacroValue* Find(std::string_view key) const;

  std::int32_t EventId() const { return Integer("EventId"); }
  std::int32_t Integer(std::string_view key) const;
  double Number(std::string_view key) const;
  bool Flag(std::string_view key) const;
  std::string Text(std::string_view key) const;

  /// The same for the text of a path, with the system's separators.
  std::string Path(std::string_view key) const;

  const std::vector<std::pair<std::string, MacroValue>>& Values() const { return values_; }

  bool operator==(const MacroEvent&) const = default;

 private:
  const MacroValue& Get(std::string_view key) const;

  std::vector<std::pair<std::string, MacroValue>> values_;
};

using MacroEventList = std::vector<MacroEvent>;

}  // namespace quiverion
