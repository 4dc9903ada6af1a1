// The one file that knows POSIX file calls. A port to another system replaces it.
#include <dirent.h>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/file_system.h"
#include "platform/paths.h"
#include "platform/system_error.h"

namespace quiverion {
namespace {

bool BeginsWithDriveLetter(std::string_view path) {
  if (path.size() < 2 || path[1] != ':') return false;
  const char letter = static_cast<char>(path[0] | 0x20);
  return letter >= 'a' && letter <= 'z';
}

std::string SystemPath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

// The native form of a path that is to be opened. A text from a damaged macro may hold a zero byte: the
// system would take what stands before it for the whole name.
std::string OpenablePath(const std::string& path) {
  if (BeginsWithDriveLetter(path)) throw SystemError(ErrorNumber::pathNotFound);
  if (path.find('\0') != std::string::npos) throw SystemError(ErrorNumber::pathAccess);
  return SystemPath(path);
}

std::string ParentOf(const std::string& nativePath) {
  const std::size_t last = nativePath.rfind('/');
  if (last == std::string::npos) return ".";
  return last == 0 ? "/" : nativePath.substr(0, last);
}

bool IsDirectoryNative(const std::string& nativePath) {
  struct stat info {};
  return ::stat(nativePath.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

[[noreturn]] void ThrowErrno(int code, const std::string& nativePath = {}) {
  switch (code) {
    case ENOENT:
      throw SystemError(nativePath.empty() || IsDirectoryNative(ParentOf(nativePath))
                            ? ErrorNumber::fileNotFound
                            : ErrorNumber::pathNotFound);
    case ENOTDIR:
      throw SystemError(ErrorNumber::pathNotFound);
    case EACCES:
    case EPERM:
    case EBUSY:
    case ETXTBSY:
      throw SystemError(ErrorNumber::accessDenied);
    case EISDIR:
    case EROFS:
    case ELOOP:
    case EINVAL:
    case ENAMETOOLONG:
      throw SystemError(ErrorNumber::pathAccess);
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      throw SystemError(ErrorNumber::diskFull);
    case EMFILE:
    case ENFILE:
      throw SystemError(ErrorNumber::tooManyFiles);
    case ENOMEM:
      throw SystemError(ErrorNumber::outOfMemory);
    default:
      throw SystemError(ErrorNumber::deviceError, std::generic_category().message(code));
  }
}

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }

  // Closes with the error the system kept for the end, such as a full disk on a network drive.
  int Close() {
    const int result = ::close(number_);
    number_ = -1;
    return result;
  }

 private:
  int number_;
};

class PosixInputFile : public InputFile {
 public:
  PosixInputFile(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}

  std::uint64_t Size() const override { return size_; }

  std::size_t Read(void* target, std::size_t size) override {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t count = ::read(descriptor_.Number(), static_cast<char*>(target) + done, size - done);
      if (count < 0 && errno != EINTR) ThrowErrno(errno);
      if (count == 0) break;
      if (count > 0) done += static_cast<std::size_t>(count);
    }
    return done;
  }

 private:
  Descriptor descriptor_;
  std::uint64_t size_;
};

class PosixOutputFile : public OutputFile {
 public:
  PosixOutputFile(int descriptor, std::string temporaryPath, std::string path)
      : descriptor_(descriptor), temporaryPath_(std::move(temporaryPath)), path_(std::move(path)) {}

  ~PosixOutputFile() override {
    if (!committed_) ::unlink(temporaryPath_.c_str());
  }

  std::size_t WriteSome(const void* source, std::size_t size) override {
    for (;;) {
      const ssize_t count = ::write(descriptor_.Number(), source, size);
      if (count > 0) return static_cast<std::size_t>(count);
      if (count == 0) ThrowErrno(ENOSPC);
      if (errno != EINTR) ThrowErrno(errno);
    }
  }

  void Commit() override {
    if (descriptor_.IsOpen()) {
      struct stat old {};
      const bool replaces = ::lstat(path_.c_str(), &old) == 0;
      if (replaces && ::fsync(descriptor_.Number()) != 0) ThrowErrno(errno);
      if (descriptor_.Close() != 0) ThrowErrno(errno);
    }
    if (::rename(temporaryPath_.c_str(), path_.c_str()) != 0) ThrowErrno(errno, path_);
    committed_ = true;
  }

 private:
  Descriptor descriptor_;
  std::string temporaryPath_;
  std::string path_;
  bool committed_ = false;
};

// Beside `nativePath`, with a name that nobody can guess and prepare a link for.
std::string TemporaryPathFor(const std::string& nativePath) {
  std::array<unsigned char, 8> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) ThrowErrno(errno);
  std::string name = "/.quiverion-";
  for (const unsigned char byte : random) {
    name.push_back("0123456789abcdef"[byte >> 4]);
    name.push_back("0123456789abcdef"[byte & 15]);
  }
  return ParentOf(nativePath) + name + ".tmp";
}

// What stands at the place must be something that a save may replace.
void RefuseUnwritableTarget(const std::string& nativePath) {
  struct stat info {};
  if (::stat(nativePath.c_str(), &info) != 0) return;
  const bool readOnly = (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
  if (!S_ISREG(info.st_mode) || readOnly) throw SystemError(ErrorNumber::pathAccess);
  if (::access(nativePath.c_str(), W_OK) != 0) ThrowErrno(errno, nativePath);
}

class PosixFileSystem : public FileSystem {
 public:
  std::unique_ptr<InputFile> OpenForReading(const std::string& path) override {
    const std::string native = OpenablePath(path);
    // O_NONBLOCK: a named pipe must not hold up the run; it is refused below.
    const int descriptor = ::open(native.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) ThrowErrno(errno, native);
    struct stat info {};
    const bool known = ::fstat(descriptor, &info) == 0;
    auto file =
        std::make_unique<PosixInputFile>(descriptor, known ? static_cast<std::uint64_t>(info.st_size) : 0);
    if (!known || !S_ISREG(info.st_mode)) throw SystemError(ErrorNumber::pathAccess);
    return file;
  }

  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path) override {
    std::string native = OpenablePath(path);
    RefuseUnwritableTarget(native);
    std::string temporary = TemporaryPathFor(native);
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (descriptor < 0) {
      const int code = errno;
      // The temporary name never exists beforehand: what is missing is the directory.
      if (code == ENOENT) throw SystemError(ErrorNumber::pathNotFound);
      ThrowErrno(code, native);
    }
    return std::make_unique<PosixOutputFile>(descriptor, std::move(temporary), std::move(native));
  }

  void CreateDirectoryQuietly(const std::string& path) override {
    if (!BeginsWithDriveLetter(path)) ::mkdir(SystemPath(path).c_str(), 0777);
  }

  std::vector<std::string> ListFiles(const std::string& directory) override {
    const std::string native = SystemPath(directory);
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(native.c_str()), ::closedir);
    if (!stream) ThrowErrno(errno, native);
    std::vector<std::string> names;
    for (errno = 0; const dirent* entry = ::readdir(stream.get()); errno = 0) {
      if (entry->d_type == DT_REG ||
          (entry->d_type != DT_DIR && IsOrdinaryFile(stream.get(), entry->d_name))) {
        names.emplace_back(entry->d_name);
      }
    }
    if (errno != 0) ThrowErrno(errno, native);
    return names;
  }

  bool IsDirectory(const std::string& path) override {
    return !BeginsWithDriveLetter(path) && IsDirectoryNative(SystemPath(path));
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
    return static_cast<std::uint64_t>(info.f_frsize) * static_cast<std::uint64_t>(info.f_bavail);
  }

 private:
  static bool IsOrdinaryFile(DIR* directory, const char* name) {
    struct stat info {};
    return ::fstatat(::dirfd(directory), name, &info, 0) == 0 && S_ISREG(info.st_mode);
  }
};

}  // namespace

std::unique_ptr<FileSystem> MakeSystemFileSystem() {
  return std::make_unique<PosixFileSystem>();
}

}  // namespace quiverion
