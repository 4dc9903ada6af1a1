#pragma once

#include <string>
#include <string_view>

#include "macro/macro_event.h"
#include "messages/failure.h"

namespace quiverion::cli {

/// What is wrong with the JSON form of a macro: a German sentence that names the command's position and the
/// key.
class MacroJsonError : public FormatError {
 public:
  using FormatError::FormatError;
};

/// The macro as an array of objects, one per line, in list order. Throws MacroJsonError where a value has no
/// JSON form and SystemError where a command lacks one.
std::string MacroToJson(const MacroEventList& macro);

/// The macro of a JSON text. Every key of a command must be there, of the right kind, and none else; the case
/// of a key does not matter. Throws MacroJsonError.
MacroEventList MacroFromJson(std::string_view text);

}  // namespace quiverion::cli
