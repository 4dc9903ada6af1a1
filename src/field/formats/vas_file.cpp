#include "field/formats/vas_file.h"

#include <algorithm>

#include "field/formats/binary_reader.h"
#include "field/formats/binary_writer.h"
#include "field/formats/field_readers.h"
#include "field/formats/vas_layout.h"
#include "field/frames.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

enum ViewFlags : std::int32_t { kHeaderFlag = 1, kTableFlag = 2, kVectorFieldFlag = 4 };

constexpr std::uint64_t kStreamlineBytes = sizeof(Streamline);

void ReadArrays(VectorField& field, BinaryReader& reader) {
  const std::int32_t columns = field.columnCount;
  const std::int32_t rows = field.rowCount;
  if (columns < 1 || rows < 1) throw SystemError(ErrorNumber::indexOutOfRange);
  // Both counts are below 2^31, so only their product can exceed 64 bits.
  if (static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows) > reader.Remaining()) {
    throw SystemError(ErrorNumber::endOfFile);
  }
  reader.Require(vas::GridBytes(static_cast<std::uint64_t>(columns), static_cast<std::uint64_t>(rows)));
  CreateArraysForReading(field, columns, rows);
  vas::Arrays(reader, field);
}

// From the magic word to the statuses.
void ReadGrid(VectorField& field, BinaryReader& reader) {
  if (!vas::Identity(reader)) throw FormatError("    Dies ist keine gültige VAS-Datei!");
  vas::Header(reader, field);
  ReadArrays(field, reader);
}

void ReadStreamlines(Context& context, VectorField& field, BinaryReader& reader) {
  if (field.streamlineCount < 0) throw SystemError(ErrorNumber::invalidCall);
  std::uint64_t surplus = 0;
  if (field.streamlineCount > kMaxStreamlines) {
    surplus = static_cast<std::uint64_t>(field.streamlineCount - kMaxStreamlines);
    field.streamlineCount = kMaxStreamlines;
    LogWarning(context, {"    Es können nicht alle Stromlinien eingelesen werden!"});
  }
  vas::Streamlines(reader, field);
  reader.Skip(surplus * kStreamlineBytes);
}

void ReadView(VectorField& field, BinaryReader& reader) {
  std::int32_t viewFlags = 0;
  std::int32_t background = 0;
  vas::View(reader, field, viewFlags, background);
  field.streamlineSetting = std::min(field.streamlineSetting, kMaxStreamlines);
  field.showHeader = (viewFlags & kHeaderFlag) != 0;
  field.showTable = (viewFlags & kTableFlag) != 0;
  field.showVectorField = (viewFlags & kVectorFieldFlag) != 0;
  if (background >= 0 && background <= 2) field.background = static_cast<Background>(background);
}

void WriteVas(Context& context, ResultFile& file) {
  const VectorField& field = context.field;
  BinaryWriter writer(file);
  vas::Identity(writer);
  vas::Header(writer, field);
  vas::Arrays(writer, field);
  vas::Bookkeeping(writer, field);
  vas::Streamlines(writer, field);
  const std::int32_t viewFlags = (field.showHeader ? kHeaderFlag : 0) | (field.showTable ? kTableFlag : 0) |
                                 (field.showVectorField ? kVectorFieldFlag : 0);
  const auto background = static_cast<std::int32_t>(field.background);
  vas::View(writer, field, viewFlags, background);
  if (writer.LostText()) WarnLostCharacters(context, *writer.LostText());
}

}  // namespace

void ReadVas(Context& context, VectorField& field, InputFile& file, LoadTarget target) {
  BinaryReader reader(file);
  ReadGrid(field, reader);
  if (target == LoadTarget::buffer) return;
  vas::Bookkeeping(reader, field);
  ReadStreamlines(context, field, reader);
  ReadView(field, reader);
}

bool HasVasExtension(std::string_view path) {
  return path.size() >= 4 && EqualsIgnoringCase(path.substr(path.size() - 4), ".VAS");
}

void SaveVas(Context& context, const std::string& path) {
  context.log.WriteLogLine("Datei speichern unter '" + path + "'... ");
  if (!HasVasExtension(path)) {
    CreatePathDirectories(context.files, path);
    LogLines(context.log, {kErrorMark, "    Unbekanntes Dateiformat!"});
    context.runHadError = true;
    return;
  }
  RunSaveFrame(context, path, [&](ResultFile& file) { WriteVas(context, file); });
}

}  // namespace quiverion
