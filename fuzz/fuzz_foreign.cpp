// Every reader of foreign files: the first byte chooses the format, and bits of the second one the options. What is
// read must come back from an export with the same bits.
#include <cstddef>
#include <cstdint>

#include "exchange/formats.h"
#include "exchange/import_file.h"
#include "exchange/writers.h"
#include "platform/files/result_file.h"
#include "round_trip.h"

namespace quiverion::fuzz {
namespace {

using exchange::ForeignFile;

exchange::ImportOptions OptionsOf(std::uint8_t format, std::uint8_t bits) {
  const auto formats = exchange::ForeignFormats();
  exchange::ImportOptions options;
  if (format % (formats.size() + 1) != 0) options.format = formats[format % (formats.size() + 1) - 1].name;
  if ((bits & 1) != 0) options.yPointsDown = (bits & 2) != 0;
  if ((bits & 4) != 0) options.zerosAreInvalid = (bits & 8) != 0;
  options.column5 = static_cast<exchange::Column5>(bits >> 4 & 3);
  if ((bits & 64) != 0) options.lengthUnit = "m";
  return options;
}

void CheckField(const VectorField& field, const exchange::ExportKind& kind) {
  test::MemoryFileSystem files;
  const auto failure = SaveResult(files, nullptr, "out",
                                  [&](ResultFile& file) { kind.write(file, field, exchange::PlaceInSeries(1, 0)); });
  if (failure) return;  // positions that are a grid only for their own order of operations
  ForeignFile back;
  const auto refused =
      Attempt([&] { back = exchange::ReadForeignFile(files, "out", {.format = std::string(kind.name)}); });
  if (refused) return;  // likewise
  const VectorField& read = back.fields.front().field;
  Demand(test::SameItem(read.posX, field.posX) && test::SameItem(read.posY, field.posY), "other positions");
  Demand(test::SameItem(read.velX, field.velX) && test::SameItem(read.velY, field.velY), "other velocities");
  Demand(test::SameItem(read.status, field.status), "other statuses");
}

}  // namespace
}  // namespace quiverion::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quiverion;
  if (size < 2) return 0;
  test::MemoryFileSystem files;
  files.files["in"] = std::string(data + 2, data + size);
  exchange::ForeignFile foreign;
  const auto refused =
      Attempt([&] { foreign = exchange::ReadForeignFile(files, "in", fuzz::OptionsOf(data[0], data[1])); });
  if (refused) {
    fuzz::Demand(!refused->formatMessage || !refused->formatMessage->empty(), "a refusal without a reason");
    return 0;
  }
  fuzz::Demand(!foreign.fields.empty() && !foreign.report.Line().empty(), "nothing was read");
  const VectorField& field = foreign.fields.front().field;
  fuzz::Demand(field.columnCount >= 1 && field.rowCount >= 1, "an empty field");
  if (field.status.Values().size() > 4096) return 0;
  const auto kinds = exchange::ExportKinds();
  fuzz::CheckField(field, kinds[data[1] % kinds.size()]);
  return 0;
}
