#include "field/formats/load_original_file.h"

#include "field/formats/dat_file.h"
#include "field/formats/vas_file.h"
#include "field/formats/vec_file.h"
#include "field/frames.h"
#include "platform/files/paths.h"

namespace quiverion {

void LoadOriginalFile(Context& context, const std::string& path) {
  context.log.WriteLogLine("Orginaldatei '" + path + "' einladen... ");
  VectorField& field = context.field;
  ResetForLoad(field, path);
  const std::string extension = ExtensionOf(field.fileName);
  if (extension == "DAT") {
    RunLoadFrame(context, path, [&](InputFile& file) { ReadDat(field, file); });
  } else if (extension == "VEC") {
    RunLoadFrame(context, path, [&](InputFile& file) { ReadVec(context, field, file); });
  } else if (extension == "VAS") {
    RunLoadFrame(context, path, [&](InputFile& file) { ReadVas(context, file); });
  } else {
    FailLoad(context, {"    Dieses Format ist unbekannt!"});
  }
}

}  // namespace quiverion
