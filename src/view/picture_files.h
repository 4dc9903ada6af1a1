#pragma once

#include <QByteArray>
#include <optional>
#include <string>

#include "picture/picture.h"
#include "platform/files/result_file.h"

/// Pictures as files. The same picture gives the same bytes every time.
namespace quiverion {

enum class PictureFormat { png, svg, pdf };

/// By the extension of a path; none if it is another one.
std::optional<PictureFormat> PictureFormatOf(std::string_view path);

/// PNG of `scale` times the size of the picture; a PDF of 96 pixels per inch.
QByteArray BytesOf(const Picture& picture, PictureFormat format, double scale = 1.0);

/// Writes the file; missing directories are created. After a failure no part of it is left. `ui` as in SaveResult.
std::optional<SaveFailure> SavePicture(FileSystem& files, UserInterface* ui, const std::string& path,
                                       const Picture& picture, PictureFormat format, double scale = 1.0);

}  // namespace quiverion
