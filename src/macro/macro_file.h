#pragma once

#include <string>

#include "macro/session.h"
#include "platform/files/result_file.h"

namespace quiverion {

/// The commands of a macro file; bytes after the last record are ignored. Throws SystemError if the file is damaged
/// (negative count or length, or it ends early).
MacroEventList ReadMacro(InputFile& file);

/// Writes the macro in the form of a macro file. Throws SystemError, also if a command lacks a parameter.
void WriteMacro(ResultFile& file, const MacroEventList& macro);

/// Replaces the session's macro by the file's. A failure shows a message and leaves the macro unchanged. Returns true
/// if it was loaded.
bool LoadMacroFile(Session& session, const std::string& path);

/// Saves the session's macro; missing directories are created. A failure shows a message and leaves an old file as it
/// was. It is also a failure if a text has a character that is not in Windows-1252: texts are file names, which must
/// not change silently. If the file stores a number as another one (a component of a constant vector), the macro is
/// saved, and a message says so. Returns true if it was saved.
bool SaveMacroFile(Session& session, const std::string& path);

}  // namespace quiverion
