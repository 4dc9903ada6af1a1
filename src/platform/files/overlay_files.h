#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

enum class FileChangeKind {
  created,   ///< there was no file at the path
  replaced,  ///< there was one
  extended,  ///< something was appended, or changed in place
  removed
};

/// What would have happened to a file.
struct FileChange {
  FileChangeKind kind;
  std::string path;  ///< as it was first given
  bool operator==(const FileChange&) const = default;
};

/// Reads the files of another file system and keeps everything that is written in memory, where later reads find it:
/// the other one is never changed. Of a file that is appended to or changed in place, only the changes are in memory.
/// Answers as the other one does; only errors that a write itself would meet (a full disk) do not occur.
class OverlayFiles : public FileSystem {
 public:
  /// `below` must outlive the object.
  explicit OverlayFiles(FileSystem& below) : below_(below) {}
  ~OverlayFiles() override;

  /// Every file that is different now, in the order of the first change. A temporary file that is gone again is not
  /// listed.
  std::vector<FileChange> Changes() const;

  /// What has happened since the last call, in its order: here a file that was written before is replaced.
  std::vector<FileChange> TakeJournal();

  /// Forgets everything that was written.
  void Clear();

  /// From now on keeps only the contents of files for which `isRead` is true. Of other results only the length is
  /// known: reading one throws SystemError 75.
  void KeepContentsOf(std::function<bool(const std::string& path)> isRead) { isRead_ = std::move(isRead); }

  struct State;

  /// What was written until now, to come back to it later. Cheap: contents are shared until they change.
  std::shared_ptr<const State> Save();
  void Restore(const State& state);

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
  DriveKind KindOfDrive(const std::string& directory) override { return below_.KindOfDrive(directory); }
  std::uint64_t FreeDiskBytes(const std::string& directory) override { return below_.FreeDiskBytes(directory); }

  class Content;

 private:
  struct Entry {
    std::string path;
    bool existedBelow = false;
    bool inPlace = false;              // extended or changed, not replaced
    bool isShared = false;             // with a saved state: the content must not change
    std::shared_ptr<Content> content;  // null: removed
    std::size_t order = 0;
  };

  Entry* Find(const std::string& path);
  Entry& EntryOf(const std::string& path);
  std::shared_ptr<Content> ContentToChange(const std::string& path);
  bool Exists(const std::string& path);
  void RequireWritable(const std::string& path);
  bool KeepsContent(const std::string& path) const { return !isRead_ || isRead_(path); }
  void Note(FileChangeKind kind, const std::string& path);

  FileSystem& below_;
  std::function<bool(const std::string& path)> isRead_;
  std::map<std::string, Entry> entries_;
  std::vector<FileChange> journal_;
  std::set<std::string> directories_;  // created here
  std::set<std::string> writable_;     // whose read-only attribute was removed here
};

struct OverlayFiles::State {
  std::map<std::string, Entry> entries;
  std::set<std::string> directories, writable;
};

}  // namespace quiverion
