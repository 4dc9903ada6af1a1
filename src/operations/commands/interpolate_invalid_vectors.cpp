#include "operations/commands/interpolate_invalid_vectors.h"

#include "log/log_lines.h"
#include "operations/kernels/interpolation.h"

namespace quiverion {

void InterpolateInvalidVectors(Context& context) {
  context.log.WriteLogLine("Interpolation... ");
  if (!Interpolate(context.field)) {
    LogLines(context.log, {kErrorMark, "    Interpolation mit den vorhandenen Daten nicht möglich!"});
    context.runHadError = true;
  }
  LogLines(context.log, {kDoneText});
}

}  // namespace quiverion
