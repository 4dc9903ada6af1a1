#include "macro/macro_event.h"

#include <algorithm>

#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace

void MacroEvent::Set(std::string_view key, MacroValue value) {
  const auto same = [key](const auto& entry) { return EqualsIgnoringCase(entry.first, key); };
  const auto found = std::find_if(values_.begin(), values_.end(), same);
  if (found != values_.end()) {
    found->second = std::move(value);
  } else {
    values_.emplace_back(std::string(key), std::move(value));
  }
}

const MacroValue* MacroEvent::Find(std::string_view key) const {
  for (const auto& [name, value] : values_) {
    if (EqualsIgnoringCase(name, key)) return &value;
  }
  return nullptr;
}

const MacroValue& MacroEvent::Get(std::string_view key) const {
  const MacroValue* const value = Find(key);
  if (value == nullptr) throw SystemError(ErrorNumber::invalidCall);
  return *value;
}

double MacroEvent::Number(std::string_view key) const {
  return std::visit(Overloaded{[](std::int32_t value) { return static_cast<double>(value); },
                               [](double value) { return value; }, [](bool value) { return value ? -1.0 : 0.0; },
                               [](const std::string& value) { return ReadParameterNumber(value); }},
                    Get(key));
}

std::int32_t MacroEvent::Integer(std::string_view key) const {
  return RoundToInt32(Number(key));
}

bool MacroEvent::Flag(std::string_view key) const {
  return Number(key) != 0.0;
}

std::string MacroEvent::Text(std::string_view key) const {
  const MacroValue& value = Get(key);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return FormatNumber(Number(key));
}

std::string MacroEvent::Path(std::string_view key) const {
  return WithOwnSeparators(Text(key));
}

}  // namespace quiverion
