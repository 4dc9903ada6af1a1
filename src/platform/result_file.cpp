#include "platform/result_file.h"

#include "platform/system_error.h"

namespace quiverion {
namespace {

constexpr std::size_t kBufferSize = 32 * 1024;

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

ResultFile::ResultFile(FileSystem& files, UserInterface* ui, const std::string& path)
    : file_(files.CreateResultFile(path)), ui_(ui) {}

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

void ResultFile::WriteThrough(std::string_view bytes) {
  while (!bytes.empty()) {
    bytes.remove_prefix(WithRetry([&] { return file_->WriteSome(bytes.data(), bytes.size()); }));
  }
}

void ResultFile::Write(std::string_view bytes) {
  if (buffer_.size() + bytes.size() > kBufferSize) {
    WriteThrough(buffer_);
    buffer_.clear();
  }
  if (bytes.size() >= kBufferSize) {
    WriteThrough(bytes);
  } else {
    buffer_.append(bytes);
  }
}

void ResultFile::Commit() {
  WriteThrough(buffer_);
  buffer_.clear();
  WithRetry([&] { file_->Commit(); });
}

}  // namespace quiverion
