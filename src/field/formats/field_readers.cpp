#include "field/formats/field_readers.h"

namespace quiverion {

FieldReader* ReaderOf(std::string_view extension) {
  if (extension == "VAS") return ReadVas;
  if (extension == "DAT") return ReadDat;
  if (extension == "VEC") return ReadVec;
  return nullptr;
}

}  // namespace quiverion
