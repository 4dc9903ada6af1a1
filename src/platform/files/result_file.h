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

/// What happens to a file that is there already. `create`: it is kept, and the commit fails with error 75.
enum class Opening { replace, create, append };

/// A buffered result file, or the end of a file that results are appended to. A full disk or too many open files ask
/// Retry or Cancel where a user interface is given; Retry repeats the failed write and writing goes on, so no writer
/// has a retry loop of its own. Small items are gathered, large blocks go to the system as they are. Without a commit
/// nothing appears and an old file stays as it was.
class ResultFile {
 public:
  /// Missing directories are created. Throws SystemError where the file cannot be opened. `ui` may be null: then every
  /// error is thrown at once.
  ResultFile(FileSystem& files, UserInterface* ui, const std::string& path, Opening opening = Opening::replace);

  /// Throws SystemError.
  void Write(std::string_view bytes);

  /// The same for bytes that stay where they are, unchanged, until the commit: they are not copied.
  void WriteKept(std::string_view bytes);

  /// Writes what is left and puts the file in its place, or keeps what was appended. Throws SystemError.
  void Commit();

  /// True where no file stood at the place.
  bool IsNew() const { return file_->IsNew(); }

  /// True where the user has answered Cancel; the SystemError that was thrown is the one of the write.
  bool Cancelled() const { return retry_.Cancelled(); }

 private:
  void WriteOut();

  std::unique_ptr<OutputFile> file_;
  WriteRetry retry_;
  // What has not been written: bytes of the buffer, up to the ends given, with kept pieces between them.
  struct KeptPiece {
    std::size_t bufferEnd;
    std::string_view bytes;
  };
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
