#include "statistics/collect.h"

#include <array>
#include <limits>
#include <memory>
#include <string_view>

#include "field/binary_writer.h"
#include "field/frames.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "statistics/collection_file.h"
#include "statistics/valid_bits.h"

namespace quiverion {
namespace {

// The path as it stands in a record: a longer one keeps its end.
Windows1252Text StoredPath(std::string_view path) {
  constexpr std::string_view mark = "...";
  std::string_view kept = path;
  const std::size_t count = CharacterCount(path);
  const bool cut = count > collection::kPathBytes;
  for (std::size_t k = collection::kPathBytes - mark.size(); cut && k < count; ++k) TakeCodePoint(kept);
  Windows1252Text stored = Windows1252FromUtf8(kept);
  if (cut) stored.bytes.insert(0, mark);
  stored.bytes.resize(collection::kPathBytes, ' ');
  return stored;
}

class Append {
 public:
  Append(Context& context, const std::string& path, UpdatedFile& file)
      : context_(context), field_(context.field), path_(path), file_(file), retry_(&context.ui) {}

  // Returns the new number of fields. Throws FormatError and SystemError.
  std::int32_t Run() {
    CollectionHeader header = file_.IsNew() ? NewHeader() : retry_([&] { return ExistingHeader(); });
    ByteString newHeader;
    if (file_.IsNew()) {
      BinaryWriter writer(newHeader);
      collection::Identity(writer, header);
      collection::Counts(writer, header);
      collection::Positions(writer, header);
    }
    const std::int32_t newCount = CheckedInt32(std::int64_t{header.fieldCount} + 1);
    const Windows1252Text sourcePath = StoredPath(field_.filePath);
    const ValidBits validBits = PackValidBits(field_.status.Values());
    std::array pieces = {std::string_view(newHeader.bytes), std::string_view(sourcePath.bytes),
                         BytesOf(field_.velX.Values()), BytesOf(field_.velY.Values()), BytesOf(validBits)};
    WriteAllAt(file_, file_.IsNew() ? 0 : EndOfRecords(header), pieces, retry_);
    WriteFieldCount(file_, newCount, retry_);
    file_.Close();
    if (!sourcePath.complete) WarnLostCharacters(context_, field_.filePath);
    return newCount;
  }

  bool Cancelled() const { return retry_.Cancelled(); }

 private:
  CollectionHeader NewHeader() const {
    CollectionHeader header;
    header.columnCount = field_.columnCount;
    header.rowCount = field_.rowCount;
    header.firstPosX = field_.posX.front();
    header.lastPosX = field_.posX.back();
    header.firstPosY = field_.posY.front();
    header.lastPosY = field_.posY.back();
    return header;
  }

  CollectionHeader ExistingHeader() {
    file_.Seek(0);
    BinaryReader reader(file_);
    CollectionHeader header;
    if (!ReadIdentity(reader, header)) throw FormatError("    COL-Datei ist nicht von QuiverionSeries!");
    collection::Counts(reader, header);
    if (header.columnCount != field_.columnCount || header.rowCount != field_.rowCount) {
      throw FormatError("    Anzahl der Vektoren stimmt nicht überein!");
    }
    if (header.fieldCount < 0) throw SystemError(ErrorNumber::invalidCall);
    reader.Require(collection::kHeaderBytes - reader.Position());  // without its positions nothing could be told of it
    return header;
  }

  // Where the new record goes. A file that is shorter than its counted records gets zeros for what is missing, vectors that
  // count nowhere; more of them than the drive has room for can only come from a damaged count.
  std::uint64_t EndOfRecords(const CollectionHeader& header) const {
    const std::uint64_t largest = std::numeric_limits<std::int64_t>::max() / 2;
    if (static_cast<std::uint64_t>(header.fieldCount) > largest / collection::RecordBytes(header.VectorCount())) {
      throw SystemError(ErrorNumber::endOfFile);
    }
    const std::uint64_t position = RecordPosition(header, header.fieldCount);
    if (position > file_.Size()) {
      const std::string_view directory = DirectoryOf(path_);
      const std::uint64_t free = context_.files.FreeDiskBytes(directory.empty() ? "." : std::string(directory));
      if (position - file_.Size() > free) throw SystemError(ErrorNumber::endOfFile);
    }
    return position;
  }

  Context& context_;
  const VectorField& field_;
  const std::string& path_;
  UpdatedFile& file_;
  WriteRetry retry_;
};

}  // namespace

void CollectForStatistics(Context& context, const std::string& collectionPath) {
  context.log.WriteLogLine("Vektorfeld für Statistik sammeln in '" + collectionPath + "'... ");
  std::unique_ptr<UpdatedFile> file;
  try {
    file = OpenWithDirectories(context.files, collectionPath,
                               [&] { return context.files.OpenForUpdating(collectionPath, MissingFile::create); });
  } catch (const std::exception& error) {
    FailSave(context, SaveWording().openFailed, error);
    return;
  }
  Append append(context, collectionPath, *file);
  try {
    const std::int32_t count = append.Run();
    LogLines(context.log, {"fertig", "    Zahl der in der Kollektion '" + collectionPath +
                                         "' gesammelten Dateien: " + std::to_string(count)});
  } catch (const FormatError& error) {
    LogLines(context.log, {kErrorMark, error.Message()});
    context.runHadError = true;
  } catch (const std::exception& error) {
    if (append.Cancelled()) context.userAbortRequested = true;
    FailSave(context, WriteFailedSentence(collectionPath), error);
  }
}

}  // namespace quiverion
