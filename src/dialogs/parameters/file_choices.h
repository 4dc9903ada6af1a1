#pragma once

#include <optional>
#include <string>

#include "dialogs/parameters/parameter_dialogs.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"

namespace quiverion {

/// `path` with `extension` (".mak") in place of everything from the last "." of its file name on, or appended if the
/// file name has no ".".
std::string WithExtension(const std::string& path, const std::string& extension);

/// The chosen file with the extension forced; none if the user cancels. Asks before a file is overwritten; No leads
/// back to the dialog.
std::optional<std::string> ChooseFileWithExtension(ParameterDialogs& dialogs, FileSystem& files, UserInterface& ui,
                                                   const FileQuestion& question);

/// The chosen collection, an existing file; none if the user cancels. The dialog begins in `directory`.
std::optional<std::string> ChooseCollection(ParameterDialogs& dialogs, FileSystem& files, UserInterface& ui,
                                            std::string_view title, const std::string& directory);

/// Asks whether the read-only attribute of a collection may be removed; `collection` is its name in the question. True
/// if the file can be changed now.
bool MakeCollectionWritable(FileSystem& files, UserInterface& ui, const std::string& path, const char* collection);

}  // namespace quiverion
