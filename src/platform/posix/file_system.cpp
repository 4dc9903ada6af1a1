// Files and directories by POSIX calls.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <thread>

#include "messages/system_error.h"
#include "platform/files/file_system.h"
#include "platform/posix/open_files.h"
#include "platform/posix/paths.h"

namespace quiverion {
namespace {

using namespace posix;

// Names for temporary files that nobody can guess in order to prepare a link.
class TemporaryNames {
 public:
  // A path in the directory of `nativePath`.
  std::string PathFor(const std::string& nativePath) {
    if (used_ == pool_.size()) {
      if (::getrandom(pool_.data(), pool_.size(), 0) != static_cast<ssize_t>(pool_.size())) ThrowErrno(errno);
      used_ = 0;
    }
    std::string path = ParentOf(nativePath) + "/.quiverion-";
    for (const std::size_t end = used_ + kNameBytes; used_ < end; ++used_) {
      path.push_back("0123456789abcdef"[pool_[used_] >> 4]);
      path.push_back("0123456789abcdef"[pool_[used_] & 15]);
    }
    return path + ".tmp";
  }

 private:
  static constexpr std::size_t kNameBytes = 8;
  std::array<unsigned char, 32 * kNameBytes> pool_{};  // one system call for many names
  std::size_t used_ = pool_.size();
};

// No write bit at all is the equivalent of a read-only attribute. It counts for root as well.
bool HasNoWriteBit(const struct stat& info) {
  return (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// Checks that a save may replace or append to whatever is at the path. Returns its description if it exists: for a link
// that of its target, for a dangling link that of the link itself.
std::optional<struct stat> CheckTarget(const std::string& nativePath) {
  struct stat info {};
  if (::lstat(nativePath.c_str(), &info) != 0) return std::nullopt;
  // The link itself is replaced, but its target must be a writable file.
  const struct stat link = info;
  if (S_ISLNK(info.st_mode) && ::stat(nativePath.c_str(), &info) != 0) return link;
  if (!S_ISREG(info.st_mode) || HasNoWriteBit(info)) throw SystemError(ErrorNumber::pathAccess);
  if (::access(nativePath.c_str(), W_OK) != 0) ThrowErrno(errno, nativePath);
  return info;
}

// Gives a file the owner, group and permissions of the one it replaces, as far as this process can.
void TakeOver(const struct stat& old, int descriptor) {
  struct stat now {};
  if (::fstat(descriptor, &now) != 0) return;
  const bool same = now.st_uid == old.st_uid && now.st_gid == old.st_gid;
  const bool sameGroup = same || ::fchown(descriptor, old.st_uid, old.st_gid) == 0 || now.st_gid == old.st_gid ||
                         ::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) == 0;
  ::fchmod(descriptor, old.st_mode & (sameGroup ? 0777 : 0707));  // no permissions for another group than before
}

// Waits until no other process has locked the file (on a file system without locks, none has). Not forever, because
// anybody who may read a file can lock it.
void Lock(const Descriptor& file) {
  for (int k = 0; k < 15000 && ::flock(file.Number(), LOCK_EX | LOCK_NB) != 0; ++k) {
    if (errno != EWOULDBLOCK && errno != EINTR) return;
    if (k + 1 == 15000) throw SystemError(ErrorNumber::accessDenied, "ein anderes Programm hält die Datei gesperrt");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

// Opens an existing file to change it in place, and waits until no other process has it open that way. Returns -1 and
// sets errno if there is none. Throws SystemError if it is read-only or not a regular file.
int OpenTarget(const std::string& nativePath, int access, struct stat& info) {
  const int descriptor = ::open(nativePath.c_str(), access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0 && errno != ENOENT) {
    const int code = errno;
    CheckTarget(nativePath);  // throws the same error as for other written files
    ThrowErrno(code, nativePath);
  }
  if (descriptor < 0) return descriptor;
  Descriptor file(descriptor);
  Lock(file);
  if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode) || HasNoWriteBit(info)) {
    throw SystemError(ErrorNumber::pathAccess);
  }
  return file.Release();
}

class PosixFileSystem : public FileSystem {
 public:
  std::unique_ptr<InputFile> OpenForReading(const std::string& path) override {
    const std::string native = OpenablePath(path);
    // On this system a name may contain a backslash. Taken as a path, it would lead to a file in another directory.
    if (native != path && ::access(path.c_str(), F_OK) == 0) throw SystemError(ErrorNumber::pathAccess);
    // O_NONBLOCK: a named pipe must not hold up the run; it is refused below.
    const int descriptor = ::open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) ThrowErrno(errno, native);
    struct stat info {};
    const bool known = ::fstat(descriptor, &info) == 0;
    auto file = std::make_unique<PosixInputFile>(descriptor, known ? static_cast<std::uint64_t>(info.st_size) : 0);
    if (!known || !S_ISREG(info.st_mode)) throw SystemError(ErrorNumber::pathAccess);
    return file;
  }

  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) override {
    std::string native = OpenablePath(path);
    const auto old = CheckTarget(native);
    const bool takesOver = old && S_ISREG(old->st_mode);
    std::string temporary = temporaryNames_.PathFor(native);
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, takesOver ? 0600 : 0666);
    if (descriptor < 0) {
      const int code = errno;
      // The temporary name never exists before, so it is the directory that is missing.
      if (code == ENOENT) throw SystemError(ErrorNumber::pathNotFound);
      ThrowErrno(code, native);
    }
    if (takesOver) TakeOver(*old, descriptor);
    return std::make_unique<PosixResultFile>(descriptor, std::move(temporary), std::move(native), old.has_value(),
                                             existing);
  }

  std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) override {
    std::string native = OpenablePath(path);
    for (;;) {
      struct stat info {};
      Descriptor file(OpenTarget(native, O_WRONLY | O_APPEND, info));
      const bool isNew = !file.IsOpen();
      if (isNew) {
        // O_EXCL: only a file that this call has created may be deleted again.
        file = Descriptor(::open(native.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (!file.IsOpen()) {
          const int code = errno;
          if (code == EEXIST && ::stat(native.c_str(), &info) == 0) continue;  // another process has created it
          ThrowErrno(code, native);
        }
        Lock(file);
        if (::fstat(file.Number(), &info) != 0) ThrowErrno(errno, native);
      }
      if (info.st_nlink == 0) continue;  // the owner of the lock has deleted the file
      return std::make_unique<PosixAppendedFile>(file.Release(), std::move(native), isNew, info);
    }
  }

  std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) override {
    const std::string native = OpenablePath(path);
    for (;;) {
      struct stat info {};
      const int descriptor = OpenTarget(native, O_RDWR, info);
      if (descriptor < 0) ThrowErrno(ENOENT, native);
      auto file = std::make_unique<PosixUpdatedFile>(descriptor, static_cast<std::uint64_t>(info.st_size));
      if (info.st_nlink > 0) return file;  // else the owner of the lock has deleted the file
    }
  }

  void SetFileSize(const std::string& path, std::uint64_t newLength) override {
    // The system sets the length without moving a file pointer first, which is a separate step on Windows.
    Descriptor file(::open(SystemPath(path).c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.IsOpen()) {
      FailStep("Fehler beim Öffnen der Datei zum Einstellen der neuen Dateigröße!");
    }
    if (::ftruncate(file.Number(), static_cast<off_t>(newLength)) != 0) {
      FailStep("Fehler beim Setzen des neuen Dateiendes!");
    }
    if (file.Close() != 0) FailStep("Fehler beim Schließen der Datei nach dem Setzen der neuen Dateigröße!");
  }

  void RemoveFileQuietly(const std::string& path) override {
    if (BeginsWithDriveLetter(path)) return;
    // If the path is a link, the file it leads to is deleted.
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(SystemPath(path).c_str(), nullptr), std::free);
    if (real) ::unlink(real.get());
  }

  void CreateDirectoryQuietly(const std::string& path) override {
    if (!BeginsWithDriveLetter(path)) ::mkdir(SystemPath(path).c_str(), 0777);
  }

  std::vector<std::string> ListFiles(const std::string& directory) override {
    return ListEntries(directory, [](DIR* stream, const dirent& entry) {
      return entry.d_type == DT_REG || (entry.d_type != DT_DIR && IsOfType(stream, entry.d_name, S_IFREG));
    });
  }

  std::vector<std::string> ListDirectories(const std::string& directory) override {
    return ListEntries(directory, [](DIR* stream, const dirent& entry) {
      if (entry.d_name[0] == '.') return false;
      return entry.d_type == DT_DIR || (entry.d_type != DT_REG && IsOfType(stream, entry.d_name, S_IFDIR));
    });
  }

  bool IsDirectory(const std::string& path) override {
    return !BeginsWithDriveLetter(path) && IsDirectoryNative(SystemPath(path));
  }

  bool IsReadOnly(const std::string& path) override {
    struct stat info {};
    return !BeginsWithDriveLetter(path) && ::stat(SystemPath(path).c_str(), &info) == 0 && HasNoWriteBit(info);
  }

  void ClearReadOnly(const std::string& path) override {
    const std::string native = OpenablePath(path);
    struct stat info {};
    if (::stat(native.c_str(), &info) != 0 || ::chmod(native.c_str(), (info.st_mode & 07777) | S_IWUSR) != 0) {
      ThrowErrno(errno, native);
    }
  }

  DriveKind KindOfDrive(const std::string& directory) override {
    constexpr long isoFileSystem = 0x9660;
    constexpr long udfFileSystem = 0x15013346;
    struct statfs info {};
    if (::statfs(SystemPath(directory).c_str(), &info) != 0) return DriveKind::other;
    const long type = static_cast<long>(info.f_type);
    return type == isoFileSystem || type == udfFileSystem ? DriveKind::cdRom : DriveKind::other;
  }

  std::uint64_t FreeDiskBytes(const std::string& directory) override {
    struct statvfs info {};
    if (::statvfs(SystemPath(directory).c_str(), &info) != 0) return 0;
    return FreeBytes(info);
  }

 private:
  [[noreturn]] static void FailStep(const char* description) {
    throw SystemError::Saying(ErrorNumber::deviceError, description);
  }

  TemporaryNames temporaryNames_;

  // Names of the entries for which `wanted` is true.
  template <class Wanted>
  static std::vector<std::string> ListEntries(const std::string& directory, Wanted wanted) {
    const std::string native = OpenablePath(directory);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(native.c_str()), ::closedir);
    if (!stream) ThrowErrno(errno, native);
    std::vector<std::string> names;
    for (errno = 0; const dirent* entry = ::readdir(stream.get()); errno = 0) {
      if (wanted(stream.get(), *entry)) names.emplace_back(entry->d_name);
    }
    if (errno != 0) ThrowErrno(errno, native);
    return names;
  }

  static bool IsOfType(DIR* directory, const char* name, mode_t type) {
    struct stat info {};
    return ::fstatat(::dirfd(directory), name, &info, 0) == 0 && (info.st_mode & S_IFMT) == type;
  }
};

}  // namespace

std::unique_ptr<FileSystem> MakeSystemFileSystem() {
  return std::make_unique<PosixFileSystem>();
}

}  // namespace quiverion
