#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "messages/system_error.h"
#include "platform/files/file_system.h"

namespace quiverion::test {

/// Files in memory, with "/" and "\" as separators, and with faults on request. The directories "" and "/" exist;
/// others exist if they were created or if they contain a file. Threads may use it at once if `mutex` is locked for
/// direct access to the members.
class MemoryFileSystem : public FileSystem {
 public:
  std::map<std::string, std::string> files;
  std::set<std::string> directories;
  std::set<std::string> readOnly;
  DriveKind drive = DriveKind::other;
  std::vector<std::uint64_t> freeBytes = {std::uint64_t{1} << 40};  // one answer per question, the last one stays

  /// Faults of written files, counted over all of them.
  struct Faults {
    std::optional<ErrorNumber> open = {};                                // for every file to be written
    std::uint64_t diskSize = std::numeric_limits<std::uint64_t>::max();  // bytes until a write fails ...
    ErrorNumber write = ErrorNumber::diskFull;                           // ... with this
    bool setFileSize = false;
  };
  Faults faults;

  std::map<std::string, ErrorNumber> openErrors;     // for files that exist but cannot be opened
  std::map<std::string, std::uint64_t> readFailsAt;  // byte at which reading fails with error 57

  int openWrittenFiles = 0;

  /// A copy of the files has a mutex of its own.
  struct Mutex : std::recursive_mutex {
    Mutex() = default;
    Mutex(const Mutex& /*other*/) {}
    Mutex& operator=(const Mutex& /*other*/) { return *this; }
  };
  Mutex mutex;

  std::unique_ptr<InputFile> OpenForReading(const std::string& path) override;
  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) override;
  std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) override;
  std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) override;
  void SetFileSize(const std::string& path, std::uint64_t newLength) override;
  void RemoveFileQuietly(const std::string& path) override;
  void CreateDirectoryQuietly(const std::string& path) override;
  std::vector<std::string> ListFiles(const std::string& directory) override;
  std::vector<std::string> ListDirectories(const std::string& directory) override;
  bool IsDirectory(const std::string& path) override;
  bool IsReadOnly(const std::string& path) override;
  void ClearReadOnly(const std::string& path) override;
  DriveKind KindOfDrive(const std::string& directory) override;
  std::uint64_t FreeDiskBytes(const std::string& directory) override;

 private:
  std::string WritablePath(const std::string& path);
  std::uint64_t ReadFailsAt(const std::string& path) const;
};

}  // namespace quiverion::test
