#pragma once

#include <optional>
#include <string>

#include "exchange/formats.h"
#include "exchange/import_file.h"
#include "messages/failure.h"
#include "support/memory_file_system.h"

namespace quiverion::exchange::test {

using quiverion::test::MemoryFileSystem;

/// A file in memory, read with these options. Throws as ReadForeignFile does.
inline ForeignFile ReadBytes(const std::string& bytes, const ImportOptions& options = {}) {
  MemoryFileSystem files;
  files.files["in"] = bytes;
  return ReadForeignFile(files, "in", options);
}

/// The message of a file that is refused; empty if it is read.
inline std::string RefusalOf(const std::string& bytes, const ImportOptions& options = {}) {
  const auto failure = Attempt([&] { ReadBytes(bytes, options); });
  if (!failure) return {};
  return failure->formatMessage ? *failure->formatMessage : ErrorText(failure->error);
}

}  // namespace quiverion::exchange::test
