#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "messages/system_error.h"

namespace quiverion {

/// A file that is read. Closed on destruction.
class InputFile {
 public:
  virtual ~InputFile() = default;

  /// Length in bytes when the file was opened.
  virtual std::uint64_t Size() const = 0;

  /// Reads up to `size` bytes from the current position; fewer only at the end of the file. Throws
  /// SystemError.
  virtual std::size_t Read(void* target, std::size_t size) = 0;

  /// Reads into several places one after the other, in one system call if possible. Returns the bytes read.
  virtual std::size_t ReadPieces(std::span<const std::span<char>> pieces);

  /// The next read begins at this byte, counted from 0. Throws SystemError.
  virtual void Seek(std::uint64_t position) = 0;
};

/// A file that is read and changed in place. What has been written stays, whatever happens later. Writes are
/// independent of the read position. Other processes that open the same file for updating wait until it is closed, and
/// get SystemError 70 after 30 s.
class UpdatedFile : public InputFile {
 public:
  /// Free bytes on its drive; 0 if unknown.
  virtual std::uint64_t FreeDiskBytes() = 0;

  /// Writes at least one byte of the pieces (not all of them empty), one after the other from byte `position` on, and
  /// returns how many. A gap between the end of the file and `position` is filled with zeros. If it throws SystemError,
  /// nothing more has been written and the call can be repeated.
  virtual std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) = 0;

  /// Closes the file and reports an error that the system has deferred. Throws SystemError. The destructor closes
  /// silently.
  virtual void Close() = 0;
};

/// A file that is written completely or not at all. The bytes of a result go to a temporary file in the same directory,
/// and only Commit renames it to `path`; on Windows a result that replaces nothing has its name at once, but nobody can
/// open it before the commit. The bytes of an appended file go to its end at once. Without a commit, the destructor
/// leaves an old file as it was (an appended file is truncated to its old length) and removes a new one.
class OutputFile {
 public:
  virtual ~OutputFile() = default;

  /// Writes at least one of `size` > 0 bytes and returns how many. If it throws SystemError, nothing more has been
  /// written and the call can be repeated.
  virtual std::size_t WriteSome(const void* source, std::size_t size) = 0;

  /// The same for several pieces one after the other (not all of them empty), in one system call if possible.
  virtual std::size_t WriteSomePieces(std::span<const std::string_view> pieces);

  /// True if no file existed at the path when this one was opened.
  virtual bool IsNew() const = 0;

  /// Flushes and closes the file, and renames a result to its path. A result that replaces a file is synced to the disk
  /// first, because the old file may be the only copy of a measurement. Throws SystemError; the call may be repeated,
  /// but after a failed flush it always fails again.
  virtual void Commit() = 0;
};

/// What the commit of a result does if a file exists at its path by then.
enum class ExistingFile { replace, keep };

enum class DriveKind { other, cdRom };

/// The operating system's files. Paths are UTF-8 (other bytes pass through) and may contain both separators. Every
/// operating-system error becomes a SystemError; on systems without drives, a path that begins with a drive letter does
/// not exist.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Throws SystemError if `path` cannot be opened for reading or is not a regular file.
  virtual std::unique_ptr<InputFile> OpenForReading(const std::string& path) = 0;

  /// Throws SystemError if no file can be created in the directory of `path`, or if `path` is a directory or read-only.
  /// `keep`: the commit fails with error 75 if a file has appeared at the path.
  virtual std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) = 0;

  /// Opens `path` for writing at its end and creates it if it is missing. Other processes that append to it wait until
  /// it is closed. Throws SystemError as CreateResultFile does, and 70 after waiting for 30 s.
  virtual std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) = 0;

  /// Opens an existing file for reading and writing in place. Throws SystemError as CreateResultFile does, and 53 or 76
  /// if there is none.
  virtual std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) = 0;

  /// Truncates or extends an existing file, which may be open for updating. Throws SystemError with a description that
  /// names the failed step.
  virtual void SetFileSize(const std::string& path, std::uint64_t newLength) = 0;

  /// Deletes one file, in the case of a link the file it leads to; errors are ignored.
  virtual void RemoveFileQuietly(const std::string& path) = 0;

  /// Creates one directory; errors (for example, that it exists) are ignored.
  virtual void CreateDirectoryQuietly(const std::string& path) = 0;

  /// Names of the regular files of a directory, unsorted. Throws SystemError.
  virtual std::vector<std::string> ListFiles(const std::string& directory) = 0;

  /// Names of the directories in a directory, without hidden ones, unsorted. Throws SystemError.
  virtual std::vector<std::string> ListDirectories(const std::string& directory) = 0;

  virtual bool IsDirectory(const std::string& path) = 0;

  /// True for an existing file with the read-only attribute: nobody may write to it.
  virtual bool IsReadOnly(const std::string& path) = 0;

  /// Removes the read-only attribute of a file and keeps all others. Throws SystemError.
  virtual void ClearReadOnly(const std::string& path) = 0;

  /// The kind of the drive (mount point) that contains `directory`.
  virtual DriveKind KindOfDrive(const std::string& directory) = 0;

  /// Free bytes on the drive that contains `directory`; 0 if unknown.
  virtual std::uint64_t FreeDiskBytes(const std::string& directory) = 0;
};

/// The first of the pieces (not all of them empty) that is not empty.
std::string_view FirstPiece(std::span<const std::string_view> pieces);

/// The files of this machine.
std::unique_ptr<FileSystem> MakeSystemFileSystem();

/// True if `path` can be opened for reading. A missing, unreadable or locked file counts as nonexistent.
bool FileExists(FileSystem& files, const std::string& path);

/// Creates every directory along `path`: for each separator, the directory named by the part before it. Errors are
/// ignored.
void CreatePathDirectories(FileSystem& files, const std::string& path);

/// Returns the result of `open`. If it throws that the path was not found, creates the directories along `path` and
/// calls it once more. The directory nearly always exists, so the path is examined only if it does not.
template <class Open>
auto OpenWithDirectories(FileSystem& files, const std::string& path, Open open) {
  try {
    return open();
  } catch (const SystemError& error) {
    if (error.Number() != ErrorNumber::pathNotFound) throw;
    CreatePathDirectories(files, path);
    return open();
  }
}

/// The whole content. Throws SystemError.
std::string ReadWholeFile(FileSystem& files, const std::string& path);

}  // namespace quiverion
