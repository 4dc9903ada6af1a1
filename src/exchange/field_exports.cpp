#include "exchange/field_exports.h"

#include "exchange/writers.h"
#include "field/frames.h"
#include "messages/failure.h"

namespace quiverion::exchange {
namespace {

void Export(Context& context, std::string_view what, const std::string& path, FieldWriter write) {
  context.log.WriteLogLine("Vektorfeld " + std::string(what) + " unter '" + path + "' exportieren... ");
  CreatePathDirectories(context.files, path);
  RunSaveFrame(context, path, [&](ResultFile& file) {
    try {
      write(file, context.field, {.hasTime = false});
    } catch (const FormatError& error) {  // the log indents what explains an error
      throw FormatError("    " + error.Message());
    }
  });
}

}  // namespace

void ExportNetCdf(Context& context, const std::string& path) {
  Export(context, "als netCDF", path, WriteNetCdf);
}

void ExportVtk(Context& context, const std::string& path) {
  Export(context, "für VTK (ParaView)", path, WriteVtk);
}

void ExportTecplotField(Context& context, const std::string& path) {
  Export(context, "für Tecplot", path, WriteTecplot);
}

}  // namespace quiverion::exchange
