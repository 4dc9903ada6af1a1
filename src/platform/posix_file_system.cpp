// The one file that knows POSIX file calls. A port to another system replaces it.
#include <dirent.h>
#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
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
      throw SystemError(nativePath.empty() || IsDirectoryNative(ParentOf(nativePath)) ? ErrorNumber::fileNotFound
                                                                                      : ErrorNumber::pathNotFound);
    case ENOTDIR:
      throw SystemError(ErrorNumber::pathNotFound);
    case EACCES:
    case EPERM:
    case EBUSY:
    case ETXTBSY:
      throw SystemError(ErrorNumber::accessDenied);
    case EEXIST:
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

static_assert(sizeof(off_t) == 8, "files may be longer than 2 GB");

// Pieces of one readv or writev.
constexpr std::size_t kMaxPieces = 64;

// Repeats an interrupted call; returns the bytes written, at least one.
template <class Call>
std::size_t Written(Call call) {
  for (;;) {
    const ssize_t count = call();
    if (count > 0) return static_cast<std::size_t>(count);
    if (count == 0) ThrowErrno(ENOSPC);
    if (errno != EINTR) ThrowErrno(errno);
  }
}

// The pieces that are not empty, as many as one call takes.
class WritePieces {
 public:
  explicit WritePieces(std::span<const std::string_view> pieces) {
    for (const std::string_view piece : pieces) {
      if (!piece.empty()) list_[static_cast<std::size_t>(count_++)] = {const_cast<char*>(piece.data()), piece.size()};
      if (static_cast<std::size_t>(count_) == kMaxPieces) break;
    }
  }
  const iovec* List() const { return list_.data(); }
  int Count() const { return count_; }

 private:
  std::array<iovec, kMaxPieces> list_{};
  int count_ = 0;
};

// The reading side of a file; `Base` is InputFile or UpdatedFile.
template <class Base>
class PosixReadableFile : public Base {
 public:
  PosixReadableFile(int descriptor, std::uint64_t size) : descriptor_(descriptor), size_(size) {}

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

  std::size_t ReadPieces(std::span<const std::span<char>> pieces) override {
    std::array<iovec, kMaxPieces> list{};
    std::size_t wanted = 0;
    for (std::size_t k = 0; k < pieces.size() && k < kMaxPieces; ++k) {
      list[k] = {pieces[k].data(), pieces[k].size()};
      wanted += pieces[k].size();
    }
    if (pieces.size() <= kMaxPieces) {
      const ssize_t count = ::readv(descriptor_.Number(), list.data(), static_cast<int>(pieces.size()));
      if (count >= 0 && static_cast<std::size_t>(count) == wanted) return wanted;
      if (count < 0 && errno != EINTR && errno != EINVAL) ThrowErrno(errno);
      // A short read (or more than one call can take): start again, piece by piece.
      if (count > 0 && ::lseek(descriptor_.Number(), -count, SEEK_CUR) < 0) ThrowErrno(errno);
    }
    return InputFile::ReadPieces(pieces);
  }

  void Seek(std::uint64_t position) override {
    if (::lseek(descriptor_.Number(), static_cast<off_t>(position), SEEK_SET) < 0) ThrowErrno(errno);
  }

 protected:
  Descriptor descriptor_;

 private:
  std::uint64_t size_;
};

using PosixInputFile = PosixReadableFile<InputFile>;

class PosixUpdatedFile : public PosixReadableFile<UpdatedFile> {
 public:
  PosixUpdatedFile(int descriptor, std::uint64_t size, bool isNew)
      : PosixReadableFile(descriptor, size), isNew_(isNew) {}

  bool IsNew() const override { return isNew_; }

  std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) override {
    const WritePieces list(pieces);
    return Written(
        [&] { return ::pwritev(descriptor_.Number(), list.List(), list.Count(), static_cast<off_t>(position)); });
  }

  void SetLength(std::uint64_t length) override {
    if (::ftruncate(descriptor_.Number(), static_cast<off_t>(length)) != 0) ThrowErrno(errno);
  }

  void Close() override {
    if (descriptor_.Close() != 0) ThrowErrno(errno);
  }

 private:
  bool isNew_;
};

// What the two kinds of written files share; they differ in what a commit means, and its absence.
class PosixOutputFile : public OutputFile {
 public:
  explicit PosixOutputFile(int descriptor) : descriptor_(descriptor) {}

  std::size_t WriteSome(const void* source, std::size_t size) override {
    return Written([&] { return ::write(descriptor_.Number(), source, size); });
  }

  std::size_t WriteSomePieces(std::span<const std::string_view> pieces) override {
    const WritePieces list(pieces);
    return Written([&] { return ::writev(descriptor_.Number(), list.List(), list.Count()); });
  }

 protected:
  // Closes the file, synced where that is asked for. What was not flushed is not there, and a second try would not say
  // so: the first failure stays.
  void Flush(bool sync) {
    if (descriptor_.IsOpen()) {
      if (sync && ::fsync(descriptor_.Number()) != 0) flushError_ = errno;
      if (descriptor_.Close() != 0 && flushError_ == 0) flushError_ = errno;
    }
    if (flushError_ != 0) ThrowErrno(flushError_);
  }

 private:
  Descriptor descriptor_;
  int flushError_ = 0;
};

class PosixResultFile : public PosixOutputFile {
 public:
  PosixResultFile(int descriptor, std::string temporaryPath, std::string path, bool replaces)
      : PosixOutputFile(descriptor),
        temporaryPath_(std::move(temporaryPath)),
        path_(std::move(path)),
        replaces_(replaces) {}

  ~PosixResultFile() override {
    if (!committed_) ::unlink(temporaryPath_.c_str());
  }

  void Commit() override {
    Flush(replaces_);
    if (::rename(temporaryPath_.c_str(), path_.c_str()) != 0) ThrowErrno(errno, path_);
    committed_ = true;
  }

 private:
  std::string temporaryPath_;
  std::string path_;
  bool replaces_;
  bool committed_ = false;
};

class PosixAppendedFile : public PosixOutputFile {
 public:
  // `oldLength` is empty where the file has just been created.
  PosixAppendedFile(int descriptor, std::string path, std::optional<off_t> oldLength)
      : PosixOutputFile(descriptor), path_(std::move(path)), oldLength_(oldLength) {}

  // By its path: a commit that failed has closed the file. What cannot be taken back stays; there is nobody to tell.
  ~PosixAppendedFile() override {
    if (committed_) return;
    [[maybe_unused]] const int result = oldLength_ ? ::truncate(path_.c_str(), *oldLength_) : ::unlink(path_.c_str());
  }

  void Commit() override {
    Flush(false);
    committed_ = true;
  }

 private:
  std::string path_;
  std::optional<off_t> oldLength_;
  bool committed_ = false;
};

// Names for temporary files that nobody can guess and prepare a link for.
class TemporaryNames {
 public:
  // A path beside `nativePath`.
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
  std::array<unsigned char, 32 * kNameBytes> pool_{};  // one call of the system for many names
  std::size_t used_ = pool_.size();
};

// No bit that lets anybody write: what the read-only attribute is elsewhere. It counts for root as well.
bool IsReadOnly(const struct stat& info) {
  return (info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// What stands at the place must be something that a save may replace or append to. True where something stands there.
bool CheckTarget(const std::string& nativePath) {
  struct stat info {};
  if (::lstat(nativePath.c_str(), &info) != 0) return false;
  // A link is replaced itself; what it leads to must be a file that could be written.
  if (S_ISLNK(info.st_mode) && ::stat(nativePath.c_str(), &info) != 0) return true;
  if (!S_ISREG(info.st_mode) || IsReadOnly(info)) throw SystemError(ErrorNumber::pathAccess);
  if (::access(nativePath.c_str(), W_OK) != 0) ThrowErrno(errno, nativePath);
  return true;
}

struct OpenedTarget {
  int descriptor;
  off_t length;
  bool isNew;
};

// Opens a file that is changed where it lies.
OpenedTarget OpenTarget(const std::string& nativePath, int access, MissingFile missing) {
  const int flags = access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  int descriptor = ::open(nativePath.c_str(), flags);
  const bool creates = descriptor < 0 && errno == ENOENT && missing == MissingFile::create;
  // O_EXCL: only what this call has created is new.
  if (creates) descriptor = ::open(nativePath.c_str(), flags | O_CREAT | O_EXCL, 0666);
  if (descriptor < 0) {
    const int code = errno;
    CheckTarget(nativePath);  // says it as for every other file that is written
    ThrowErrno(code, nativePath);
  }
  struct stat info {};
  if (::fstat(descriptor, &info) != 0 || !S_ISREG(info.st_mode) || (!creates && IsReadOnly(info))) {
    ::close(descriptor);
    throw SystemError(ErrorNumber::pathAccess);
  }
  return {descriptor, info.st_size, creates};
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
    auto file = std::make_unique<PosixInputFile>(descriptor, known ? static_cast<std::uint64_t>(info.st_size) : 0);
    if (!known || !S_ISREG(info.st_mode)) throw SystemError(ErrorNumber::pathAccess);
    return file;
  }

  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path) override {
    std::string native = OpenablePath(path);
    const bool replaces = CheckTarget(native);
    std::string temporary = temporaryNames_.PathFor(native);
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (descriptor < 0) {
      const int code = errno;
      // The temporary name never exists beforehand: what is missing is the directory.
      if (code == ENOENT) throw SystemError(ErrorNumber::pathNotFound);
      ThrowErrno(code, native);
    }
    return std::make_unique<PosixResultFile>(descriptor, std::move(temporary), std::move(native), replaces);
  }

  std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) override {
    std::string native = OpenablePath(path);
    const OpenedTarget target = OpenTarget(native, O_WRONLY | O_APPEND, MissingFile::create);
    const auto oldLength = target.isNew ? std::nullopt : std::optional(target.length);
    return std::make_unique<PosixAppendedFile>(target.descriptor, std::move(native), oldLength);
  }

  std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path, MissingFile missing) override {
    const OpenedTarget target = OpenTarget(OpenablePath(path), O_RDWR, missing);
    return std::make_unique<PosixUpdatedFile>(target.descriptor, static_cast<std::uint64_t>(target.length),
                                              target.isNew);
  }

  void RemoveFileQuietly(const std::string& path) override {
    if (!BeginsWithDriveLetter(path)) ::unlink(SystemPath(path).c_str());
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
      if (entry->d_type == DT_REG || (entry->d_type != DT_DIR && IsOrdinaryFile(stream.get(), entry->d_name))) {
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
  TemporaryNames temporaryNames_;

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
