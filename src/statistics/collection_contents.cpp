#include "statistics/collection_contents.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "field/frames.h"
#include "statistics/collection_file.h"

namespace quiverion {
namespace {

constexpr std::string_view kErrorTitle = "QuiverionSeries - FEHLER";
constexpr std::string_view kWritingFailed = "Beim Schreiben der Kollektion ist der folgende Fehler aufgetreten:";

void ShowBox(Context& context, std::string_view title, std::string text, MessageIcon icon = MessageIcon::warning) {
  context.ui.Ask({.title = std::string(title), .text = std::move(text), .icon = icon});
}

// Throws FormatError for anything but a collection of version 1.
CollectionHeader ReadHeader(BinaryReader& reader) {
  CollectionHeader header;
  if (!ReadIdentity(reader, header) || header.formatVersion != 1) {
    throw FormatError("    COL-Datei ist nicht von QuiverionSeries!");
  }
  ReadCountsAndPositions(reader, header);
  return header;
}

CollectionContents ReadContents(InputFile& file) {
  BinaryReader reader(file);
  CollectionContents contents{ReadHeader(reader), {}};
  for (std::int32_t k = 0; k < contents.header.fieldCount; ++k) {
    reader.MoveTo(RecordPosition(contents.header, k));
    contents.sourcePaths.push_back(ReadSourcePath(reader));
  }
  return contents;
}

// Moves records inside a file and gives it its new count.
class Removal {
 public:
  explicit Removal(UpdatedFile& file) : file_(file) {
    BinaryReader reader(file);
    header_ = ReadHeader(reader);
  }

  // Returns the new number of records; the file still has its old length. Throws SystemError.
  std::int32_t Run(const std::vector<std::int32_t>& numbers) {
    std::int32_t last = header_.fieldCount;
    std::vector<bool> selected(static_cast<std::size_t>(last) + 1);
    for (const std::int32_t number : numbers) {
      if (number < 1 || number > last) throw SystemError(ErrorNumber::indexOutOfRange);
      selected[static_cast<std::size_t>(number)] = true;
    }
    std::int32_t hole = 1;
    for (auto remaining = std::count(selected.begin(), selected.end(), true); remaining > 0; --remaining, --last) {
      if (selected[static_cast<std::size_t>(last)]) continue;
      while (!selected[static_cast<std::size_t>(hole)]) ++hole;
      CopyCollectionRecord(last, hole);
      ++hole;
    }
    header_.fieldCount = last;
    WriteFieldCount(file_, last, retry_);
    return last;
  }

  // Cuts off what lies behind `recordCount` records and closes the file. Throws SystemError with a description of its
  // own that names the failed step; moving the file pointer and setting the end are one step here.
  void SetFileSize(std::int32_t recordCount) {
    const auto step = [](const char* failure, auto action) {
      try {
        action();
      } catch (const SystemError& error) {
        throw SystemError::Saying(error.Number(), failure);
      }
    };
    step("Fehler beim Setzen des neuen Dateiendes!", [&] { file_.SetLength(RecordPosition(header_, recordCount)); });
    step("Fehler beim Schließen der Datei nach dem Setzen der neuen Dateigröße!", [&] { file_.Close(); });
  }

 private:
  // Record numbers are counted from 1.
  void CopyCollectionRecord(std::int32_t source, std::int32_t target) {
    constexpr std::uint64_t blockSize = 256 * 1024;
    std::uint64_t left = collection::RecordBytes(header_.VectorCount());
    block_.resize(static_cast<std::size_t>(std::min(blockSize, left)));
    file_.Seek(RecordPosition(header_, source - 1));
    for (std::uint64_t position = RecordPosition(header_, target - 1); left > 0;) {
      const auto size = static_cast<std::size_t>(std::min(blockSize, left));
      if (file_.Read(block_.data(), size) < size) throw SystemError(ErrorNumber::endOfFile);
      std::array pieces = {std::string_view(block_).substr(0, size)};
      WriteAllAt(file_, position, pieces, retry_);
      position += size;
      left -= size;
    }
  }

  UpdatedFile& file_;
  CollectionHeader header_;
  std::string block_;
  WriteRetry retry_{nullptr};  // nothing here takes room on the disk
};

}  // namespace

std::optional<CollectionContents> ReadCollectionContents(Context& context, const std::string& collectionPath) {
  std::unique_ptr<InputFile> file;
  try {
    file = context.files.OpenForReading(collectionPath);
  } catch (const std::exception& error) {
    ShowErrorBox(context, "QuiverionSeries  -  FEHLER",
                 "Beim Öffnen der Kollektion ist der folgende Fehler aufgetreten:", error);
    return std::nullopt;
  }
  try {
    return ReadContents(*file);
  } catch (const FormatError& error) {
    ShowBox(context, kErrorTitle, error.Message());
  } catch (const std::exception& error) {
    ShowErrorBox(context, kErrorTitle, "Beim Einlesen der Kollektion ist der folgende Fehler aufgetreten:", error);
  }
  return std::nullopt;
}

RemovalOutcome RemoveRecords(Context& context, const std::string& collectionPath,
                             const std::vector<std::int32_t>& numbers) {
  const BusyGuard guard(context);
  if (!guard.Entered()) return RemovalOutcome::busy;
  // One file from the first move to the last step: no other process comes between them.
  std::unique_ptr<UpdatedFile> file;
  std::optional<Removal> removal;
  std::int32_t count = 0;
  try {
    file = context.files.OpenForUpdating(collectionPath);
    removal.emplace(*file);
    if (numbers.empty()) return RemovalOutcome::removed;
    count = removal->Run(numbers);
  } catch (const FormatError& error) {
    ShowBox(context, kErrorTitle, error.Message());
    return RemovalOutcome::failed;
  } catch (const std::exception& error) {
    ShowErrorBox(context, kErrorTitle, kWritingFailed, error);
    return RemovalOutcome::failed;
  }
  if (count < 1) {
    context.files.RemoveFileQuietly(collectionPath);
    file.reset();
    ShowBox(context, "QuiverionSeries - Kollektion gelöscht",
            "Da alle Vektorfelder entfernt wurden, wurde damit die Kollektion vollständig gelöscht.",
            MessageIcon::information);
    return RemovalOutcome::collectionDeleted;
  }
  try {
    removal->SetFileSize(count);
  } catch (const SystemError& error) {
    ShowBox(context, "Schwerer Fehler", error.Description(), MessageIcon::critical);
    return RemovalOutcome::lengthNotSet;
  }
  return RemovalOutcome::removed;
}

}  // namespace quiverion
