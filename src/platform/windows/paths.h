#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#undef Yield  // a macro that does nothing

#include <string>
#include <string_view>
#include <utility>

/// Names, paths and errors of Windows. For the sources of this folder only.
namespace quiverion::windows {

/// UTF-16 as UTF-8. Half a surrogate pair, which a file name may contain, becomes three bytes that are not UTF-8.
std::string Utf8FromUtf16(std::wstring_view text);

/// The inverse, for every text that the other function returns. Throws SystemError 75 for other bytes that are not
/// UTF-8.
std::wstring Utf16FromUtf8(std::string_view text);

/// The same for display: bytes that are not UTF-8 become U+FFFD.
std::wstring ShownUtf16(std::string_view text);

/// The path for system calls: full, with the prefix "\\?\", so that it may be longer than 260 characters. Throws
/// SystemError 75 if a part has characters that no name can have (a ":" would name a stream inside a file), ends in a
/// blank or a point, or is the name of a device (NUL, CON, ...), which would swallow a result.
std::wstring OpenablePath(const std::string& path);

/// The full path, in the usual notation.
std::wstring FullPath(const std::string& path);

/// Throws the SystemError for a code of GetLastError.
[[noreturn]] void ThrowError(DWORD code);

/// A handle of the system, closed on destruction.
class Handle {
 public:
  explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { Close(); }

  HANDLE Get() const { return handle_; }
  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

  /// False if the system reports that this has failed.
  bool Close() {
    const HANDLE handle = std::exchange(handle_, INVALID_HANDLE_VALUE);
    return handle == INVALID_HANDLE_VALUE || ::CloseHandle(handle) != 0;
  }

 private:
  HANDLE handle_;
};

/// Opens an existing file or directory for queries only, without restricting others. Follows links.
Handle OpenToLook(const std::wstring& path);

/// Whether both are open and the same file or directory.
bool AreSame(const Handle& a, const Handle& b);

}  // namespace quiverion::windows
