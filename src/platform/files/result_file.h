#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "messages/failure.h"
#include "platform/files/file_system.h"
#include "platform/files/write_retry.h"

namespace quiverion {

/// What happens to an existing file. `create`: it is kept, and the commit fails with error 75.
enum class Opening { replace, create, append };

/// A buffered result file, or the end of a file that results are appended to. If a write or the
/// commit meets a full disk or too many open files, and a user interface is given, the user is asked Retry or Cancel.
/// Retry repeats the failed write and continues, so no writer needs its own retry loop. Small items are gathered; large
/// blocks go directly to the system. Without a commit nothing appears, and an old file stays as it was.
class ResultFile {
 public:
  /// Missing directories are created. Throws SystemError if the file cannot be opened. `ui` may be null: then every
  /// error is thrown at once.
  ResultFile(FileSystem& files, UserInterface* ui, const std::string& path, Opening opening = Opening::replace);

  /// Throws SystemError.
  void Write(std::string_view bytes);

  /// The same without copying, for bytes that stay in place and unchanged until the commit.
  void WriteKept(std::string_view bytes);

  /// The bytes that have been passed to Write and WriteKept.
  std::uint64_t Position() const { return position_; }

  /// Writes the rest, and renames the file to its path or keeps what was appended. Throws SystemError.
  void Commit();

  /// True if no file existed at the path.
  bool IsNew() const { return file_->IsNew(); }

  /// True if the user has answered Cancel; the SystemError thrown is that of the write.
  bool Cancelled() const { return retry_.Cancelled(); }

 private:
  void WriteOut();

  std::unique_ptr<OutputFile> file_;
  WriteRetry retry_;
  // What has not been written yet: the buffer, with the kept pieces inserted at the given positions.
  struct KeptPiece {
    std::size_t bufferEnd;
    std::string_view bytes;
  };
  std::uint64_t position_ = 0;
  std::string buffer_;
  std::vector<KeptPiece> kept_;
};

/// Why a result was not saved.
struct SaveFailure : Failure {
  bool cancelled = false;  // the user has answered Cancel
};

/// Opens a result file, lets `write` fill it and commits. After a failure no part of it is left.
std::optional<SaveFailure> SaveResult(FileSystem& files, UserInterface* ui, const std::string& path,
                                      const std::function<void(ResultFile&)>& write,
                                      Opening opening = Opening::replace);

}  // namespace quiverion
