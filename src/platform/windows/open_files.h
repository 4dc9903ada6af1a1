#pragma once

#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "messages/system_error.h"
#include "platform/files/file_system.h"

/// The open files of Windows. For file_system.cpp only.
namespace quiverion::windows {

/// Other processes may do anything with a file that is open here. Processes of this program that change a file exclude
/// each other with a lock; other programs are not restricted.
constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Bytes of one call; the size is limited to 32 bits.
constexpr std::size_t kMaxBlock = std::size_t{1} << 30;

inline std::uint64_t Wide(DWORD high, DWORD low) {
  return std::uint64_t{high} << 32 | low;
}

inline OVERLAPPED AtPosition(std::uint64_t position) {
  OVERLAPPED at{};
  at.Offset = static_cast<DWORD>(position);
  at.OffsetHigh = static_cast<DWORD>(position >> 32);
  return at;
}

/// Data written to a file on another machine may be lost when it is sent, and closing the file does not report that.
/// Returns the error code; ERROR_SUCCESS for a file on this machine, which needs no flush.
inline DWORD SendToOtherMachine(const Handle& file) {
  FILE_REMOTE_PROTOCOL_INFO protocol{};
  const bool isRemote =
      ::GetFileInformationByHandleEx(file.Get(), FileRemoteProtocolInfo, &protocol, sizeof protocol) != 0;
  return !isRemote || ::FlushFileBuffers(file.Get()) != 0 ? ERROR_SUCCESS : ::GetLastError();
}

inline std::uint64_t LengthOf(const Handle& file) {
  LARGE_INTEGER length{};
  if (::GetFileSizeEx(file.Get(), &length) == 0) ThrowError(::GetLastError());
  return static_cast<std::uint64_t>(length.QuadPart);
}

/// Free bytes for this user on the drive of the directory; 0 if unknown.
inline std::uint64_t FreeBytes(const std::wstring& directory) {
  ULARGE_INTEGER available{};
  return ::GetDiskFreeSpaceExW(directory.c_str(), &available, nullptr, nullptr) != 0 ? available.QuadPart : 0;
}

/// The directory of a path from OpenablePath.
inline std::wstring ParentOf(const std::wstring& path) {
  return path.substr(0, path.rfind(L'\\') + 1);
}

/// An unused name in the directory of the file.
inline std::wstring TemporaryPathFor(const std::wstring& path) {
  std::random_device random;  // the generator of the system
  wchar_t name[40];
  std::swprintf(name, std::size(name), L".quiverion-%08x%08x.tmp", random(), random());
  return ParentOf(path) + name;
}

inline void SetEnd(const Handle& file, std::uint64_t length) {
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
  ::SetFileInformationByHandle(file.Get(), FileEndOfFileInfo, &end, sizeof end);
}

// Missing in the headers of the compiler.
constexpr auto kFileDispositionInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr auto kFileRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kRenameReplaces = 1, kRenameAtOnce = 2;

/// Gives the file another name on its drive; without `replaces`, only if no file has it. The handle needs the right to
/// delete. Returns the error code.
inline DWORD RenameOpen(const Handle& file, const std::wstring& path, bool replaces) {
  std::vector<char> buffer(sizeof(FILE_RENAME_INFO) + path.size() * sizeof(wchar_t));
  auto* rename = ::new (buffer.data()) FILE_RENAME_INFO{};
  rename->FileNameLength = static_cast<DWORD>(path.size() * sizeof(wchar_t));
  std::copy(path.begin(), path.end(), rename->FileName);
  const auto as = [&](FILE_INFO_BY_HANDLE_CLASS kind, DWORD flags) -> DWORD {
    std::memcpy(buffer.data(), &flags, sizeof flags);  // the first member of both kinds
    const auto size = static_cast<DWORD>(buffer.size());
    return ::SetFileInformationByHandle(file.Get(), kind, rename, size) != 0 ? ERROR_SUCCESS : ::GetLastError();
  };
  if (!replaces) return as(FileRenameInfo, FALSE);
  // Replaces even a file that others are reading, if the file system supports that.
  static std::atomic<bool> knowsHow = true;
  if (knowsHow) {
    const DWORD code = as(kFileRenameInfoEx, kRenameReplaces | kRenameAtOnce);
    if (code != ERROR_INVALID_PARAMETER && code != ERROR_INVALID_FUNCTION && code != ERROR_NOT_SUPPORTED &&
        code != ERROR_CALL_NOT_IMPLEMENTED && code != ERROR_INVALID_LEVEL) {
      return code;
    }
    knowsHow = false;
  }
  return as(FileRenameInfo, TRUE);
}

/// Sets whether the file is deleted with its last handle, even if the program is killed. The handle needs the right to
/// delete. False if the system cannot do it.
inline bool LetGoWhenClosed(const Handle& file, bool goes) {
  FILE_DISPOSITION_INFO disposition{};
  disposition.DeleteFile = goes ? TRUE : FALSE;
  return ::SetFileInformationByHandle(file.Get(), FileDispositionInfo, &disposition, sizeof disposition) != 0;
}

/// Deletes the file. If the file system keeps it until its last handle is closed, its name becomes free at once. The
/// handle needs the right to delete.
inline void DeleteOpen(const Handle& file, const std::wstring& path) {
  FILE_DISPOSITION_INFO_EX atOnce{};
  atOnce.Flags = FILE_DISPOSITION_FLAG_DELETE | FILE_DISPOSITION_FLAG_POSIX_SEMANTICS;
  if (::SetFileInformationByHandle(file.Get(), kFileDispositionInfoEx, &atOnce, sizeof atOnce) != 0) return;
  const bool isAside = RenameOpen(file, TemporaryPathFor(path), false) == ERROR_SUCCESS;
  if (!LetGoWhenClosed(file, true) && isAside) RenameOpen(file, path, false);
}

/// Writes at `at` (null: at the position of the handle) at least one of `size` > 0 bytes and returns how many.
inline std::size_t WriteOnce(const Handle& file, const void* source, std::size_t size, OVERLAPPED* at = nullptr) {
  DWORD written = 0;
  if (::WriteFile(file.Get(), source, static_cast<DWORD>(std::min(size, kMaxBlock)), &written, at) == 0) {
    ThrowError(::GetLastError());
  }
  if (written == 0) throw SystemError(ErrorNumber::diskFull);
  return written;
}

/// The reading side of a file; `Base` is InputFile or UpdatedFile. It keeps its own position, which writes do not
/// change.
template <class Base>
class WindowsReadableFile : public Base {
 public:
  /// Without a `size`, it is determined on first use, because most files are opened only to check that this is
  /// possible.
  explicit WindowsReadableFile(Handle file, std::optional<std::uint64_t> size = std::nullopt)
      : file_(std::move(file)), size_(size) {}

  std::uint64_t Size() const override {
    if (!size_) size_ = LengthOf(file_);
    return *size_;
  }

  std::size_t Read(void* target, std::size_t size) override {
    std::size_t done = 0;
    GoTo(position_);
    while (done < size) {
      DWORD count = 0;
      const auto wanted = static_cast<DWORD>(std::min(size - done, kMaxBlock));
      if (::ReadFile(file_.Get(), static_cast<char*>(target) + done, wanted, &count, nullptr) == 0) {
        ThrowError(::GetLastError());
      }
      if (count == 0) break;
      done += count;
      place_ = position_ += count;
    }
    return done;
  }

  void Seek(std::uint64_t position) override { position_ = position; }

 protected:
  // Moves the position of the handle if necessary. Calls with an explicit position (OVERLAPPED) cost more.
  void GoTo(std::uint64_t place) {
    LARGE_INTEGER distance{};
    distance.QuadPart = static_cast<LONGLONG>(place);
    if (place != place_ && ::SetFilePointerEx(file_.Get(), distance, nullptr, FILE_BEGIN) == 0) {
      ThrowError(::GetLastError());
    }
    place_ = place;
  }

  Handle file_;
  std::uint64_t place_ = 0;

 private:
  mutable std::optional<std::uint64_t> size_;
  std::uint64_t position_ = 0;
};

using WindowsInputFile = WindowsReadableFile<InputFile>;

class WindowsUpdatedFile : public WindowsReadableFile<UpdatedFile> {
 public:
  WindowsUpdatedFile(Handle file, std::uint64_t size, std::wstring directory)
      : WindowsReadableFile(std::move(file), size), directory_(std::move(directory)) {}

  std::uint64_t FreeDiskBytes() override { return FreeBytes(directory_); }

  std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) override {
    GoTo(position);
    const std::string_view piece = FirstPiece(pieces);
    const std::size_t count = WriteOnce(file_, piece.data(), piece.size());
    place_ += count;
    return count;
  }

  void Close() override {
    const DWORD code = SendToOtherMachine(file_);
    if (!file_.Close()) ThrowError(::GetLastError());
    if (code != ERROR_SUCCESS) ThrowError(code);
  }

 private:
  std::wstring directory_;
};

/// A result that replaces no file. It has its name at once, but nobody can open it before it is complete, and until
/// then it is deleted with its handle, so nothing is left of it whatever happens. A temporary name would need one more
/// lookup and a rename, which on shares and in wine take most of the time of a small result.
class WindowsNewFile : public OutputFile {
 public:
  /// `file` is not shared and is deleted when it is closed.
  explicit WindowsNewFile(Handle file) : file_(std::move(file)) {}

  std::size_t WriteSome(const void* source, std::size_t size) override { return WriteOnce(file_, source, size); }

  bool IsNew() const override { return true; }

  void Commit() override {
    if (flushError_ == ERROR_SUCCESS) flushError_ = SendToOtherMachine(file_);
    if (flushError_ != ERROR_SUCCESS) ThrowError(flushError_);
    if (!LetGoWhenClosed(file_, false)) ThrowError(::GetLastError());
    file_.Close();
  }

 private:
  Handle file_;
  DWORD flushError_ = ERROR_SUCCESS;
};

/// A result that replaces a file, or that must not replace one. It has a temporary name until it is complete.
class WindowsResultFile : public OutputFile {
 public:
  /// `file` has a temporary name in the directory of `path` and the right to delete. `replaces`: a file exists at
  /// `path`.
  WindowsResultFile(Handle file, std::wstring path, bool replaces, ExistingFile existing)
      : file_(std::move(file)), path_(std::move(path)), replaces_(replaces), existing_(existing) {}

  ~WindowsResultFile() override {
    if (!committed_) DeleteOpen(file_, path_);
  }

  std::size_t WriteSome(const void* source, std::size_t size) override { return WriteOnce(file_, source, size); }

  bool IsNew() const override { return !replaces_; }

  void Commit() override {
    // After a failed flush the data is lost and a second try would not report that, so the first failure is kept.
    if (flushError_ == ERROR_SUCCESS) flushError_ = Flush();
    if (flushError_ != ERROR_SUCCESS) ThrowError(flushError_);
    if (const DWORD code = Rename(); code != ERROR_SUCCESS) ThrowError(code);
    committed_ = true;
    file_.Close();
  }

 private:
  DWORD Flush() const {
    if (!replaces_) return SendToOtherMachine(file_);
    return ::FlushFileBuffers(file_.Get()) != 0 ? ERROR_SUCCESS : ::GetLastError();
  }

  // Scanners and indexers briefly open the file at the path, or the one just written.
  DWORD Rename() const {
    for (int tries = 50;; --tries) {
      const DWORD code = RenameOpen(file_, path_, existing_ == ExistingFile::replace);
      if (tries == 0 || (code != ERROR_ACCESS_DENIED && code != ERROR_SHARING_VIOLATION)) return code;
      ::Sleep(20);
    }
  }

  Handle file_;
  std::wstring path_;
  bool replaces_;
  ExistingFile existing_;
  DWORD flushError_ = ERROR_SUCCESS;
  bool committed_ = false;
};

/// Other processes that append to the file wait until it is closed: so truncating never removes their data.
class WindowsAppendedFile : public OutputFile {
 public:
  /// `isNew`: created by this process, by a handle that may delete it. `length` is the length to restore.
  WindowsAppendedFile(Handle file, std::wstring path, bool isNew, std::uint64_t length)
      : file_(std::move(file)), path_(std::move(path)), isNew_(isNew), length_(length) {}

  ~WindowsAppendedFile() override {
    if (!file_.IsOpen()) return;
    SetEnd(file_, length_);
    if (isNew_ && length_ == 0) DeleteOpen(file_, path_);
  }

  std::size_t WriteSome(const void* source, std::size_t size) override {
    // After anything that a program that ignores the lock may have added.
    OVERLAPPED atEnd = AtPosition(~std::uint64_t{0});
    return WriteOnce(file_, source, size, &atEnd);
  }

  bool IsNew() const override { return isNew_; }

  void Commit() override {
    if (const DWORD code = SendToOtherMachine(file_); code != ERROR_SUCCESS) ThrowError(code);
    if (!file_.Close()) ThrowError(::GetLastError());
  }

 private:
  Handle file_;
  std::wstring path_;
  bool isNew_;
  std::uint64_t length_;
};

}  // namespace quiverion::windows
