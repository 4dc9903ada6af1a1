#include "statistics/collection_contents.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

#include "field/frames.h"
#include "platform/text/text.h"
#include "statistics/collection_file.h"

namespace quiverion {
namespace {

constexpr std::string_view kErrorTitle = "QuiverionSeries - FEHLER";

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

CollectionContents ReadContents(InputFile& file, const std::function<void(const CollectionHeader&)>& onHeader) {
  BinaryReader reader(file);
  CollectionContents contents{ReadHeader(reader), {}};
  onHeader(contents.header);
  for (std::int32_t k = 0; k < contents.header.fieldCount; ++k) {
    contents.sourcePaths.push_back(ReadSourcePath(file, contents.header, k));
  }
  return contents;
}

// Moves records inside a file and writes its new count.
class Removal {
 public:
  explicit Removal(UpdatedFile& file) : file_(file) {
    BinaryReader reader(file);
    header_ = ReadHeader(reader);
  }

  // Returns the header with the new count; the file still has its old length. Throws FormatError and SystemError.
  const CollectionHeader& Run(const std::vector<std::int32_t>& numbers, const std::vector<std::string>& listed) {
    CheckListed(listed);
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
    return header_;
  }

 private:
  // Records may have been appended since. A position in the list is still the position in the file.
  void CheckListed(const std::vector<std::string>& listed) {
    bool same = listed.size() <= static_cast<std::size_t>(header_.fieldCount);
    for (std::size_t k = 0; same && k < listed.size(); ++k) {
      same = ReadSourcePath(file_, header_, static_cast<std::int32_t>(k)) == listed[k];
    }
    if (same) return;
    throw FormatError(
        "Die Kollektion wurde inzwischen von einem anderen Programm verändert. Es wurde nichts entfernt!");
  }

  // Record numbers are counted from 1. The valid bits are cleared first and written last. So a program that is killed
  // in between leaves a record without valid vectors, not a mixture of two fields.
  void CopyCollectionRecord(std::int32_t source, std::int32_t target) {
    const std::uint64_t record = collection::RecordBytes(header_.VectorCount());
    const std::uint64_t bits = collection::ValidBitsPosition(header_.VectorCount());
    const std::uint64_t from = RecordPosition(header_, source - 1), to = RecordPosition(header_, target - 1);
    const std::string noBits(static_cast<std::size_t>(record - bits), '\0');
    std::array pieces = {std::string_view(noBits)};
    WriteAllAt(file_, to + bits, pieces, retry_);
    Copy(from, to, record);
  }

  void Copy(std::uint64_t source, std::uint64_t position, std::uint64_t left) {
    constexpr std::uint64_t blockSize = 256 * 1024;
    block_.resize(static_cast<std::size_t>(std::min(blockSize, left)));
    file_.Seek(source);
    while (left > 0) {
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
  WriteRetry retry_{nullptr};  // nothing here needs more disk space
};

// The file is open from the first move to the last step, so that no other process can interfere. `failedStep` gets the
// error if the length could not be set. Throws FormatError and SystemError.
RemovalOutcome RemoveFromFile(FileSystem& files, const std::string& path, const std::vector<std::int32_t>& numbers,
                              const std::vector<std::string>& listed, std::string& failedStep) {
  const auto file = files.OpenForUpdating(path);
  const CollectionHeader header = Removal(*file).Run(numbers, listed);
  RemovalOutcome outcome = RemovalOutcome::removed;
  if (header.fieldCount < 1) {
    files.RemoveFileQuietly(path);
    if (FileExists(files, path)) throw SystemError(ErrorNumber::accessDenied);  // without records, but it still exists
    outcome = RemovalOutcome::collectionDeleted;
  } else {
    const auto failure = Attempt([&] { files.SetFileSize(path, RecordPosition(header, header.fieldCount)); });
    if (failure) {
      failedStep = failure->error.Description();
      outcome = RemovalOutcome::lengthNotSet;
    }
  }
  file->Close();
  return outcome;
}

}  // namespace

std::string DescribeCollection(const std::string& collectionPath, const CollectionHeader& header) {
  return "Name der Kollektion:  " + std::string(TrimBlanks(collectionPath)) +
         "\nInhalt:  " + std::to_string(header.fieldCount) +
         " Vektorfelder gesammelt\nGröße der Vektorfelder:  " + std::to_string(header.columnCount) + " x " +
         std::to_string(header.rowCount);
}

std::optional<CollectionContents> ReadCollectionContents(Context& context, const std::string& collectionPath,
                                                         const std::function<void(const CollectionHeader&)>& onHeader) {
  std::unique_ptr<InputFile> file;
  std::optional<CollectionContents> contents;
  const auto failure = Attempt([&] { file = context.files.OpenForReading(collectionPath); },
                               [&] { contents = ReadContents(*file, onHeader); });
  if (!failure) return contents;
  if (failure->atOpening) {
    ShowFailureBox(context, "QuiverionSeries  -  FEHLER",
                   "Beim Öffnen der Kollektion ist der folgende Fehler aufgetreten:", *failure);
  } else {
    ShowFailureBox(context, kErrorTitle, "Beim Einlesen der Kollektion ist der folgende Fehler aufgetreten:", *failure);
  }
  return std::nullopt;
}

void VisitSourcePaths(FileSystem& files, const std::string& collectionPath,
                      const std::function<bool(const std::string&)>& visit) {
  const auto file = files.OpenForReading(collectionPath);
  BinaryReader reader(*file);
  const CollectionHeader header = ReadHeader(reader);
  for (std::int32_t k = 0; k < header.fieldCount; ++k) {
    if (!visit(ReadSourcePath(*file, header, k))) return;
  }
}

RemovalOutcome RemoveRecords(Context& context, const std::string& collectionPath,
                             const std::vector<std::int32_t>& numbers, const std::vector<std::string>& listed) {
  const BusyGuard guard(context);
  if (!guard.Entered()) return RemovalOutcome::busy;
  if (numbers.empty()) return RemovalOutcome::removed;
  RemovalOutcome outcome = RemovalOutcome::failed;
  std::string failedStep;
  const auto failure =
      Attempt([&] { outcome = RemoveFromFile(context.files, collectionPath, numbers, listed, failedStep); });
  if (failure) {
    ShowFailureBox(context, kErrorTitle,
                   "Beim Schreiben der Kollektion ist der folgende Fehler aufgetreten:", *failure);
  }
  if (outcome == RemovalOutcome::collectionDeleted) {
    ShowBox(context, "QuiverionSeries - Kollektion gelöscht",
            "Da alle Vektorfelder entfernt wurden, wurde damit die Kollektion vollständig gelöscht.",
            MessageIcon::information);
  }
  if (outcome == RemovalOutcome::lengthNotSet) ShowBox(context, "Schwerer Fehler", failedStep, MessageIcon::critical);
  return outcome;
}

}  // namespace quiverion
