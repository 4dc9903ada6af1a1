#include "platform/files/result_file.h"

#include <span>

#include "messages/system_error.h"

namespace quiverion {
namespace {

constexpr std::size_t kBufferSize = 32 * 1024;
constexpr std::size_t kSmallBlock = 8 * 1024;  // copying is cheaper than a separate piece
constexpr std::size_t kMaxKept = 16;

}  // namespace

ResultFile::ResultFile(FileSystem& files, UserInterface* ui, const std::string& path, Opening opening) : retry_(ui) {
  file_ = OpenWithDirectories(files, path, [&] {
    if (opening == Opening::append) return files.OpenForAppending(path);
    return files.CreateResultFile(path, opening == Opening::create ? ExistingFile::keep : ExistingFile::replace);
  });
}

void ResultFile::WriteOut() {
  std::vector<std::string_view> pieces;
  std::size_t at = 0;
  for (const KeptPiece& kept : kept_) {
    pieces.push_back(std::string_view(buffer_).substr(at, kept.bufferEnd - at));
    pieces.push_back(kept.bytes);
    at = kept.bufferEnd;
  }
  pieces.push_back(std::string_view(buffer_).substr(at));
  WriteAllPieces(pieces, [&](std::span<const std::string_view> rest) {
    return retry_([&] { return file_->WriteSomePieces(rest); });
  });
  buffer_.clear();
  kept_.clear();
}

void ResultFile::Write(std::string_view bytes) {
  position_ += bytes.size();
  if (bytes.size() >= kBufferSize) {
    kept_.push_back({buffer_.size(), bytes});
    WriteOut();
    return;
  }
  buffer_.append(bytes);
  if (buffer_.size() >= kBufferSize) WriteOut();
}

void ResultFile::WriteKept(std::string_view bytes) {
  if (bytes.size() < kSmallBlock) {
    Write(bytes);
    return;
  }
  position_ += bytes.size();
  kept_.push_back({buffer_.size(), bytes});
  if (kept_.size() == kMaxKept) WriteOut();
}

void ResultFile::Commit() {
  WriteOut();
  retry_([&] { file_->Commit(); });
}

std::optional<SaveFailure> SaveResult(FileSystem& files, UserInterface* ui, const std::string& path,
                                      const std::function<void(ResultFile&)>& write, Opening opening) {
  std::optional<ResultFile> file;
  const auto failure = Attempt([&] { file.emplace(files, ui, path, opening); },
                               [&] {
                                 write(*file);
                                 file->Commit();
                               });
  if (!failure) return std::nullopt;
  return SaveFailure{*failure, file && file->Cancelled()};
}

}  // namespace quiverion
