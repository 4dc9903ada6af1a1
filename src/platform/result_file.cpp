#include "platform/result_file.h"

#include <algorithm>
#include <span>

#include "platform/system_error.h"

namespace quiverion {
namespace {

constexpr std::size_t kBufferSize = 32 * 1024;
constexpr std::size_t kSmallBlock = 8 * 1024;  // copying is cheaper than a piece of its own
constexpr std::size_t kMaxKept = 16;

bool CanBeMended(ErrorNumber number) {
  return number == ErrorNumber::diskFull || number == ErrorNumber::tooManyFiles;
}

Message RetryBox(ErrorNumber number) {
  const bool diskFull = number == ErrorNumber::diskFull;
  Message box;
  box.title = "QuiverionSeries  -  Fehler beim Schreiben";
  box.text = diskFull ? "Fehler: Der Datenträger ist voll!\r\n"
                        "Versuchen Sie mehr Speicherplatz frei zu machen!"
                      : "Fehler: Es sind zu viele Dateien gleichzeitig geöffnet!\r\n"
                        "Versuchen Sie einige Dateien in anderen Anwendungen zu schließen!";
  box.buttons = MessageButtons::retryCancel;
  return box;
}

}  // namespace

ResultFile::ResultFile(FileSystem& files, UserInterface* ui, const std::string& path, Opening opening) : ui_(ui) {
  const auto open = [&] {
    return opening == Opening::append ? files.OpenForAppending(path) : files.CreateResultFile(path);
  };
  try {
    file_ = open();
  } catch (const SystemError& error) {
    // Nearly always the directory is there; only where it is not the way along the path is looked at.
    if (error.Number() != ErrorNumber::pathNotFound) throw;
    CreatePathDirectories(files, path);
    file_ = open();
  }
}

template <class Action>
auto ResultFile::WithRetry(Action action) {
  for (;;) {
    try {
      return action();
    } catch (const SystemError& error) {
      if (ui_ == nullptr || !CanBeMended(error.Number())) throw;
      if (ui_->Ask(RetryBox(error.Number())) != MessageAnswer::retry) {
        cancelled_ = true;
        throw;
      }
    }
  }
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
  for (std::span<std::string_view> rest = pieces; !rest.empty();) {
    if (rest.front().empty()) {
      rest = rest.subspan(1);
      continue;
    }
    std::size_t written = WithRetry([&] { return file_->WriteSomePieces(rest); });
    while (written > 0) {
      const std::size_t step = std::min(written, rest.front().size());
      rest.front().remove_prefix(step);
      written -= step;
      if (rest.front().empty()) rest = rest.subspan(1);
    }
  }
  buffer_.clear();
  kept_.clear();
}

void ResultFile::Write(std::string_view bytes) {
  buffer_.append(bytes);
  if (buffer_.size() >= kBufferSize) WriteOut();
}

void ResultFile::WriteKept(std::string_view bytes) {
  if (bytes.size() < kSmallBlock) {
    Write(bytes);
    return;
  }
  kept_.push_back({buffer_.size(), bytes});
  if (kept_.size() == kMaxKept) WriteOut();
}

void ResultFile::Commit() {
  WriteOut();
  WithRetry([&] { file_->Commit(); });
}

}  // namespace quiverion
