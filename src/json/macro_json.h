#pragma once

#include <string>
#include <string_view>

#include "macro/macro_event.h"
#include "messages/failure.h"

namespace quiverion {

/// An error in the JSON form of a macro: a German sentence that names the position of the command and the key.
class MacroJsonError : public FormatError {
 public:
  using FormatError::FormatError;
};

/// The macro as an array of objects, one per line, in list order. Throws MacroJsonError if a value has no JSON form,
/// SystemError if a command lacks a value.
std::string MacroToJson(const MacroEventList& macro);

/// The macro of a JSON text. Every command must have exactly its keys, with values of the right kind. The case of a key
/// does not matter. Throws MacroJsonError.
MacroEventList MacroFromJson(std::string_view text);

}  // namespace quiverion
