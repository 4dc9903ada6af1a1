#include "operations/commands/find_faulty_vectors.h"

#include "log/log_lines.h"

namespace quiverion {

void FindFaultyVectors(Context& context, const FaultyVectorCriteria& criteria) {
  context.log.WriteLogLine("Fehlerhafte Vektoren suchen... ");
  if (criteria.SelectedCount() == 0) return;
  RejectFaultyVectors(context.field, criteria);
  LogLines(context.log, {kDoneText});
}

}  // namespace quiverion
