#include "statistics/collect.h"

#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>

#include "field/formats/binary_writer.h"
#include "field/frames.h"
#include "platform/files/result_file.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"
#include "statistics/collection_file.h"
#include "statistics/valid_bits.h"

namespace quiverion {
namespace {

// A record of the current field, ready to be written.
class Record {
 public:
  explicit Record(const VectorField& field)
      : field_(field),
        sourcePath_(StoredSourcePath(field.filePath)),
        validBits_(PackValidBits(field.status.Values())) {}

  // Source path, velocities, bits.
  std::array<std::string_view, 4> Pieces() const {
    return {sourcePath_.bytes, BytesOf(field_.velX.Values()), BytesOf(field_.velY.Values()), BytesOf(validBits_)};
  }
  bool IsComplete() const { return sourcePath_.complete; }

 private:
  const VectorField& field_;
  Windows1252Text sourcePath_;
  ValidBits validBits_;
};

CollectionHeader HeaderOf(const VectorField& field) {
  if (field.posX.empty() || field.posY.empty()) throw SystemError(ErrorNumber::indexOutOfRange);  // nothing loaded
  CollectionHeader header;
  header.columnCount = field.columnCount;
  header.rowCount = field.rowCount;
  header.firstPosX = field.posX.front();
  header.lastPosX = field.posX.back();
  header.firstPosY = field.posY.front();
  header.lastPosY = field.posY.back();
  return header;
}

// A new collection appears complete, with its first record: an incomplete header would be unreadable.
void WriteNew(const VectorField& field, const Record& record, ResultFile& file) {
  CollectionHeader header = HeaderOf(field);
  header.fieldCount = 1;
  BinaryWriter writer(file);
  collection::Identity(writer, header);
  collection::Counts(writer, header);
  collection::Positions(writer, header);
  for (const std::string_view piece : record.Pieces()) file.WriteKept(piece);
  file.Commit();
}

CollectionHeader ReadHeaderFor(const VectorField& field, UpdatedFile& file) {
  file.Seek(0);
  BinaryReader reader(file);
  CollectionHeader header;
  if (!ReadIdentity(reader, header)) throw FormatError("    COL-Datei ist nicht von QuiverionSeries!");
  collection::Counts(reader, header);
  if (header.columnCount != field.columnCount || header.rowCount != field.rowCount) {
    throw FormatError("    Anzahl der Vektoren stimmt nicht überein!");
  }
  if (header.fieldCount < 0) throw SystemError(ErrorNumber::invalidCall);
  reader.Require(collection::kHeaderBytes - reader.Position());  // a header without positions is incomplete
  return header;
}

// The position of the new record. If counted records are missing in the file, they become zeros (invalid vectors). The
// drive must have room for them, so that the count in a damaged header cannot create a huge file.
std::uint64_t EndOfRecords(Context& context, const CollectionHeader& header, UpdatedFile& file) {
  const std::uint64_t largest = std::numeric_limits<std::int64_t>::max() / 2;
  if (static_cast<std::uint64_t>(header.fieldCount) > largest / collection::RecordBytes(header.VectorCount())) {
    throw SystemError(ErrorNumber::endOfFile);
  }
  const std::uint64_t end = RecordPosition(header, header.fieldCount);
  if (end > file.Size()) {
    if (end - file.Size() > file.FreeDiskBytes()) throw SystemError(ErrorNumber::endOfFile);
    LogWarning(context, {"    Die Kollektion ist kürzer, als die Zahl ihrer Vektorfelder (" +
                         std::to_string(header.fieldCount) + ") verlangt: Was fehlt, zählt als ungültig."});
  }
  return end;
}

// Returns the new number of fields.
std::int32_t AppendTo(Context& context, const Record& record, UpdatedFile& file, WriteRetry& retry) {
  const CollectionHeader header = retry([&] { return ReadHeaderFor(context.field, file); });
  const std::int32_t newCount = CheckedInt32(std::int64_t{header.fieldCount} + 1);
  auto pieces = record.Pieces();
  WriteAllAt(file, EndOfRecords(context, header, file), pieces, retry);
  WriteFieldCount(file, newCount, retry);
  file.Close();
  return newCount;
}

// The file to append to; null if there is none.
std::unique_ptr<UpdatedFile> OpenExisting(FileSystem& files, const std::string& path) {
  std::unique_ptr<UpdatedFile> file;
  const auto failure = Attempt([&] { file = files.OpenForUpdating(path); });
  const auto isMissing = [&](ErrorNumber number) { return failure->error.Number() == number; };
  if (failure && !isMissing(ErrorNumber::fileNotFound) && !isMissing(ErrorNumber::pathNotFound)) throw failure->error;
  return file;
}

class Collecting {
 public:
  Collecting(Context& context, const std::string& path) : context_(context), path_(path), retry_(&context.ui) {}

  void Run() {
    std::int32_t count = 0;
    const auto failure = Attempt([this] { Open(); }, [&] { count = Write(); });
    if (!failure) return Finish(count);
    FailSave(context_, path_, {*failure, retry_.Cancelled() || (new_ && new_->Cancelled())});
  }

 private:
  void Open() {
    existing_ = OpenExisting(context_.files, path_);
    if (!existing_) new_.emplace(context_.files, &context_.ui, path_, Opening::create);
  }

  // Returns the new number of fields.
  std::int32_t Write() {
    const Record record(context_.field);
    isComplete_ = record.IsComplete();
    if (new_) {
      const auto failure = Attempt([&] { WriteNew(context_.field, record, *new_); });
      if (!failure) return 1;
      // Another process may have created the same collection meanwhile.
      existing_ = new_->Cancelled() ? nullptr : OpenExisting(context_.files, path_);
      if (!existing_) throw failure->error;
    }
    return AppendTo(context_, record, *existing_, retry_);
  }

  void Finish(std::int32_t count) {
    if (!isComplete_) WarnLostCharacters(context_, context_.field.filePath);
    LogLines(context_.log, {kDoneText, "    Zahl der in der Kollektion '" + path_ +
                                           "' gesammelten Dateien: " + std::to_string(count)});
  }

  Context& context_;
  const std::string& path_;
  WriteRetry retry_;
  std::unique_ptr<UpdatedFile> existing_;
  std::optional<ResultFile> new_;
  bool isComplete_ = true;
};

}  // namespace

void CollectForStatistics(Context& context, const std::string& collectionPath) {
  context.log.WriteLogLine("Vektorfeld für Statistik sammeln in '" + collectionPath + "'... ");
  Collecting(context, collectionPath).Run();
}

}  // namespace quiverion
