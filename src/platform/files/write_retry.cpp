#include "platform/files/write_retry.h"

namespace quiverion {

bool WriteRetry::AsksForRetry(ErrorNumber number) {
  const bool diskFull = number == ErrorNumber::diskFull;
  if (ui_ == nullptr || !(diskFull || number == ErrorNumber::tooManyFiles)) return false;
  Message box;
  box.title = "QuiverionSeries  -  Fehler beim Schreiben";
  box.text = diskFull ? "Fehler: Der Datenträger ist voll!\r\n"
                        "Versuchen Sie mehr Speicherplatz frei zu machen!"
                      : "Fehler: Es sind zu viele Dateien gleichzeitig geöffnet!\r\n"
                        "Versuchen Sie einige Dateien in anderen Anwendungen zu schließen!";
  box.buttons = MessageButtons::retryCancel;
  cancelled_ = ui_->Ask(box) != MessageAnswer::retry;
  return !cancelled_;
}

void WriteAllAt(UpdatedFile& file, std::uint64_t position, std::span<std::string_view> pieces, WriteRetry& retry) {
  WriteAllPieces(pieces, [&](std::span<const std::string_view> rest) {
    const std::size_t written = retry([&] { return file.WriteSomePiecesAt(position, rest); });
    position += written;
    return written;
  });
}

}  // namespace quiverion
