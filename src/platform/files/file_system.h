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

  /// Reads into several places one after the other, in one call of the system where it can. Returns the bytes read.
  virtual std::size_t ReadPieces(std::span<const std::span<char>> pieces);

  /// The next read begins at this byte, counted from 0. Throws SystemError.
  virtual void Seek(std::uint64_t position) = 0;
};

/// A file that is read and changed in place. What has been written stays, whatever happens later; the position of reads
/// does not matter to writes. Other processes that open the same file for updating wait until it is closed.
class UpdatedFile : public InputFile {
 public:
  /// Free bytes of the drive it lies on; 0 where that cannot be told.
  virtual std::uint64_t FreeDiskBytes() = 0;

  /// Writes at least one byte of the pieces (not all of them empty), one after the other from byte `position` on, and
  /// returns how many. What lies between the end of the file and `position` becomes zeros. Throws SystemError with
  /// nothing more written, so that the call can be repeated.
  virtual std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) = 0;

  /// Closes the file with the error that the system kept for the end. Throws SystemError. Destruction closes silently.
  virtual void Close() = 0;
};

/// A file that is written whole or not at all. Bytes of a result file go to a temporary file beside the place, and only
/// Commit renames it over `path`; on Windows a result that replaces nothing has its name at once, but nobody can open it
/// before the commit. Bytes of an appended file go to its end at once. Destroyed without a commit both
/// leave an old file as it was, the appended one cut to its old length, and none where there was none.
class OutputFile {
 public:
  virtual ~OutputFile() = default;

  /// Writes at least one of `size` > 0 bytes and returns how many. Throws SystemError with nothing more
  /// written, so that the call can be repeated.
  virtual std::size_t WriteSome(const void* source, std::size_t size) = 0;

  /// The same for several pieces one after the other (not all of them empty), in one call of the system where
  /// it can.
  virtual std::size_t WriteSomePieces(std::span<const std::string_view> pieces);

  /// True where no file stood at the place when this one was opened.
  virtual bool IsNew() const = 0;

  /// Flushes, closes and puts a result file in its place. One that replaces an existing file is synced to the disk
  /// first: what it replaces may be the only copy of a measurement. Throws SystemError; may then be repeated, but once
  /// the bytes could not be flushed it fails again each time.
  virtual void Commit() = 0;
};

/// What the commit of a result does with a file that stands at its place by then.
enum class ExistingFile { replace, keep };

enum class DriveKind { other, cdRom };

/// The operating system's files. Paths are UTF-8 (bytes that are no UTF-8 pass through) with both separators.
/// Every operating-system error becomes a SystemError; a path that begins with a drive letter does not exist
/// where there are no drives.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Throws SystemError where `path` cannot be opened for reading or is no ordinary file.
  virtual std::unique_ptr<InputFile> OpenForReading(const std::string& path) = 0;

  /// Throws SystemError where a file cannot be created beside `path`, or `path` is a directory or read-only. `keep`:
  /// the commit fails with error 75 where a file has appeared at the place.
  virtual std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) = 0;

  /// Opens `path` for writing at its end and creates it where it is missing. Other processes that append to it wait
  /// until it is closed. Throws SystemError as CreateResultFile does.
  virtual std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) = 0;

  /// Opens an existing file for reading and writing in place. Throws SystemError as CreateResultFile does, and 53 or 76
  /// where there is none.
  virtual std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) = 0;

  /// Cuts or extends an existing file, which may be open for updating. Throws SystemError with a description of its own
  /// that names the failed step.
  virtual void SetFileSize(const std::string& path, std::uint64_t newLength) = 0;

  /// Deletes one file, the one that a link leads to; errors are ignored.
  virtual void RemoveFileQuietly(const std::string& path) = 0;

  /// Creates one directory; errors (it exists already, say) are ignored.
  virtual void CreateDirectoryQuietly(const std::string& path) = 0;

  /// Names of the ordinary files of a directory, unsorted. Throws SystemError.
  virtual std::vector<std::string> ListFiles(const std::string& directory) = 0;

  /// Names of the directories in a directory, without hidden ones, unsorted. Throws SystemError.
  virtual std::vector<std::string> ListDirectories(const std::string& directory) = 0;

  virtual bool IsDirectory(const std::string& path) = 0;

  /// True for an existing file with the read-only attribute: nobody may write it.
  virtual bool IsReadOnly(const std::string& path) = 0;

  /// Takes the read-only attribute off a file and keeps all others. Throws SystemError.
  virtual void ClearReadOnly(const std::string& path) = 0;

  /// The drive (mount point) that holds `directory`.
  virtual DriveKind KindOfDrive(const std::string& directory) = 0;

  /// Free bytes of the drive that holds `directory`; 0 where that cannot be told.
  virtual std::uint64_t FreeDiskBytes(const std::string& directory) = 0;
};

/// The first of the pieces (not all of them empty) that is not empty.
std::string_view FirstPiece(std::span<const std::string_view> pieces);

/// The files of this machine.
std::unique_ptr<FileSystem> MakeSystemFileSystem();

/// True where `path` can be opened for reading: a missing, unreadable or locked file does not exist.
bool FileExists(FileSystem& files, const std::string& path);

/// Creates every directory along `path`: for each separator the directory named by what stands before it.
/// Errors are ignored.
void CreatePathDirectories(FileSystem& files, const std::string& path);

/// What `open` returns. Where it throws that the path was not found, the directories along `path` are created and it is
/// called once more: nearly always the directory is there, and only where it is not the way along the path is looked
/// at.
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
