#pragma once

#include <initializer_list>
#include <utility>

#include "macro/command_catalogue.h"

namespace quiverion::test {

/// A command with the values of a new one, except those given.
inline MacroEvent Command(const char* constantName,
                          std::initializer_list<std::pair<const char*, MacroValue>> values = {}) {
  const CommandRow& row = *FindCommand(constantName);
  MacroEvent event(row.eventId);
  for (const Parameter& parameter : row.parameters) event.Set(parameter.key, PresetOf(parameter));
  for (const auto& [key, value] : values) event.Set(key, value);
  return event;
}

}  // namespace quiverion::test
