#include "field/formats/load_original_file.h"

#include "field/formats/field_readers.h"
#include "field/frames.h"
#include "platform/files/paths.h"

namespace quiverion {

void LoadOriginalFile(Context& context, const std::string& path) {
  context.log.WriteLogLine("Orginaldatei '" + path + "' einladen... ");
  VectorField& field = context.field;
  ResetForLoad(field, path);
  FieldReader* const read = ReaderOf(ExtensionOf(field.fileName));
  if (read == nullptr) return FailLoad(context, {"    Dieses Format ist unbekannt!"});
  RunLoadFrame(context, path, [&](InputFile& file) { read(context, field, file, LoadTarget::field); });
}

}  // namespace quiverion
