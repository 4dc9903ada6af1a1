#pragma once

#include <string>

#include "field/context.h"

namespace quiverion {

/// Appends the current field to a collection, which is created (with missing directories) if there is none. Stores the
/// source path, the velocities, and which vectors are valid. Only the numbers of columns and rows must match.
///
/// Logs the announcement and the outcome. A failure sets `runHadError`, never `abortCurrentFile`; Cancel on a full disk
/// also sets `userAbortRequested`. A new collection appears complete. In an existing one the count of fields is written
/// last: wherever an append stops, the fields collected before are still there, and the next append overwrites the
/// incomplete record. Several processes may append to one collection.
void CollectForStatistics(Context& context, const std::string& collectionPath);

}  // namespace quiverion
