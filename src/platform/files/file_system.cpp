#include "platform/files/file_system.h"

#include "messages/failure.h"

#include <algorithm>

#include "messages/system_error.h"
#include "platform/files/paths.h"

namespace quiverion {

std::size_t InputFile::ReadPieces(std::span<const std::span<char>> pieces) {
  std::size_t done = 0;
  for (const std::span<char> piece : pieces) {
    const std::size_t count = Read(piece.data(), piece.size());
    done += count;
    if (count < piece.size()) break;
  }
  return done;
}

std::string_view FirstPiece(std::span<const std::string_view> pieces) {
  return *std::find_if(pieces.begin(), pieces.end(), [](std::string_view piece) { return !piece.empty(); });
}

std::size_t OutputFile::WriteSomePieces(std::span<const std::string_view> pieces) {
  const std::string_view first = FirstPiece(pieces);
  return WriteSome(first.data(), first.size());
}

bool FileExists(FileSystem& files, const std::string& path) {
  return !Attempt([&] { files.OpenForReading(path); });
}

void CreatePathDirectories(FileSystem& files, const std::string& path) {
  // For callers that create the directories before they open anything: mostly they exist, and one check is enough.
  const std::string_view directory = DirectoryOf(path);
  if (directory.empty() || files.IsDirectory(std::string(directory))) return;
  for (std::size_t p = 0; p < path.size(); ++p) {
    if (p > 0 && IsPathSeparator(path[p])) files.CreateDirectoryQuietly(path.substr(0, p));
  }
}

std::string ReadWholeFile(FileSystem& files, const std::string& path) {
  const auto file = files.OpenForReading(path);
  std::string content(static_cast<std::size_t>(file->Size()), '\0');
  content.resize(file->Read(content.data(), content.size()));
  return content;
}

}  // namespace quiverion
