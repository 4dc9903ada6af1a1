#pragma once

#include <QWidget>
#include <string>

#include "dialogs/parameters/parameter_dialogs.h"
#include "messages/user_interface.h"
#include "picture/picture.h"
#include "platform/files/file_system.h"

/// Where somebody takes a picture to: a file, the clipboard, a printer.
namespace quiverion {

struct OutputServices {
  QWidget& window;
  FileSystem& files;
  UserInterface& messages;
  ParameterDialogs& dialogs;
};

/// Asks for a file and writes it; says what goes wrong. `fieldPath` gives directory and name that are proposed.
void SavePictureAs(const OutputServices& services, const Picture& picture, const std::string& fieldPath);

void CopyPicture(const Picture& picture);

/// Asks how to print, and fills the page.
void PrintPicture(QWidget& window, UserInterface& messages, const Picture& picture);

}  // namespace quiverion
