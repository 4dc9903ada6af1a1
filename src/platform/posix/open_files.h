#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/files/file_system.h"
#include "platform/posix/paths.h"

/// The open files of POSIX systems. For file_system.cpp only.
namespace quiverion::posix {

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }

  // Releases the number without closing it.
  int Release() { return std::exchange(number_, -1); }

  // Closes the file and reports a deferred error, such as a full disk on a network drive.
  int Close() {
    const int result = ::close(number_);
    number_ = -1;
    return result;
  }

 private:
  int number_;
};

static_assert(sizeof(off_t) == 8, "files may be longer than 2 GB");

/// Pieces of one readv or writev.
constexpr std::size_t kMaxPieces = 64;

inline std::uint64_t FreeBytes(const struct statvfs& info) {
  return static_cast<std::uint64_t>(info.f_frsize) * static_cast<std::uint64_t>(info.f_bavail);
}

/// Repeats an interrupted call; returns the bytes written, at least one.
template <class Call>
std::size_t Written(Call call) {
  for (;;) {
    const ssize_t count = call();
    if (count > 0) return static_cast<std::size_t>(count);
    if (count == 0) ThrowErrno(ENOSPC);
    if (errno != EINTR) ThrowErrno(errno);
  }
}

/// The pieces that are not empty, as many as one call accepts.
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

/// The reading side of a file; `Base` is InputFile or UpdatedFile.
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
      // A short read, or more pieces than one call accepts: start again, piece by piece.
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
  using PosixReadableFile::PosixReadableFile;

  std::uint64_t FreeDiskBytes() override {
    struct statvfs info {};
    return ::fstatvfs(descriptor_.Number(), &info) == 0 ? FreeBytes(info) : 0;
  }

  std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) override {
    const WritePieces list(pieces);
    return Written(
        [&] { return ::pwritev(descriptor_.Number(), list.List(), list.Count(), static_cast<off_t>(position)); });
  }

  void Close() override {
    if (descriptor_.Close() != 0) ThrowErrno(errno);
  }
};

/// The common part of the two kinds of written files. They differ in what happens with and without a commit.
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
  // Closes the file, and syncs it first if requested. After a failed flush the data is lost and a second try would not
  // report that, so the first failure is kept.
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
  /// `replaces`: a file exists at the path.
  PosixResultFile(int descriptor, std::string temporaryPath, std::string path, bool replaces, ExistingFile existing)
      : PosixOutputFile(descriptor),
        temporaryPath_(std::move(temporaryPath)),
        path_(std::move(path)),
        replaces_(replaces),
        existing_(existing) {}

  ~PosixResultFile() override {
    if (!committed_) ::unlink(temporaryPath_.c_str());
  }

  bool IsNew() const override { return !replaces_; }

  void Commit() override {
    Flush(replaces_);
    if (Rename() != 0) ThrowErrno(errno, path_);
    committed_ = true;
  }

 private:
  int Rename() const {
    if (existing_ == ExistingFile::keep) {
      const int result = ::renameat2(AT_FDCWD, temporaryPath_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE);
      if (result == 0 || (errno != EINVAL && errno != ENOSYS)) return result;  // else not supported there
    }
    return ::rename(temporaryPath_.c_str(), path_.c_str());
  }

  std::string temporaryPath_;
  std::string path_;
  bool replaces_;
  ExistingFile existing_;
  bool committed_ = false;
};

/// Other processes that append to the file wait until it is closed: so truncating never removes their data.
class PosixAppendedFile : public PosixOutputFile {
 public:
  /// `isNew`: created by this process. `info` has the length to restore.
  PosixAppendedFile(int descriptor, std::string path, bool isNew, const struct stat& info)
      : PosixOutputFile(descriptor), path_(std::move(path)), isNew_(isNew), info_(info), file_(::dup(descriptor)) {}

  // Uses a second descriptor, which stays open if closing the first one fails; another file may be at the path by now.
  // A failure here cannot be reported to anybody.
  ~PosixAppendedFile() override {
    if (committed_) return;
    struct stat there {};
    const bool isThere =
        ::lstat(path_.c_str(), &there) == 0 && there.st_dev == info_.st_dev && there.st_ino == info_.st_ino;
    [[maybe_unused]] const int result = ::ftruncate(file_.Number(), info_.st_size);
    if (isNew_ && info_.st_size == 0 && isThere) ::unlink(path_.c_str());
  }

  bool IsNew() const override { return isNew_; }

  void Commit() override {
    Flush(false);
    committed_ = true;
  }

 private:
  std::string path_;
  bool isNew_;
  struct stat info_;
  Descriptor file_;
  bool committed_ = false;
};

}  // namespace quiverion::posix
