#include "platform/windows/paths.h"

#include <algorithm>
#include <iterator>

#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"

namespace quiverion::windows {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr DWORD kDiskQuotaExceeded = 1295;  // missing in the headers of the compiler

void AppendUtf16(std::wstring& text, char32_t codePoint) {
  if (codePoint < 0x10000) {
    text.push_back(static_cast<wchar_t>(codePoint));
  } else {
    text.push_back(static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10)));
    text.push_back(static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF)));
  }
}

// Reads three bytes that represent half a surrogate pair; 0 if there are none.
wchar_t TakeSurrogate(std::string_view& text) {
  const auto byte = [text](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  if (text.size() < 3 || byte(0) != 0xED || byte(1) < 0xA0 || byte(1) > 0xBF || (byte(2) & 0xC0) != 0x80) return 0;
  const auto unit = static_cast<wchar_t>(0xD000 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
  text.remove_prefix(3);
  return unit;
}

template <class OnInvalid>
std::wstring ToUtf16(std::string_view text, OnInvalid onInvalid) {
  constexpr std::string_view replacement = "\xEF\xBF\xBD";
  std::wstring units;
  units.reserve(text.size());
  while (!text.empty()) {
    if (const wchar_t surrogate = TakeSurrogate(text); surrogate != 0) {
      units.push_back(surrogate);
      continue;
    }
    const bool isReplacement = text.starts_with(replacement);
    const char32_t codePoint = TakeCodePoint(text);
    if (codePoint == kReplacement && !isReplacement) onInvalid();
    AppendUtf16(units, codePoint);
  }
  return units;
}

// The part of a name that the system checks for devices: without its first "." and what follows, and without blanks
// before that.
bool IsDevice(std::string_view name) {
  std::string stem(TrimBlanks(name.substr(0, name.find('.'))));
  stem = AsciiUpper(stem);
  constexpr std::string_view alone[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  if (std::find(std::begin(alone), std::end(alone), stem) != std::end(alone)) return true;
  if (!stem.starts_with("COM") && !stem.starts_with("LPT")) return false;
  const std::string_view number = std::string_view(stem).substr(3);
  constexpr std::string_view numbers[] = {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "¹", "²", "³"};
  return std::find(std::begin(numbers), std::end(numbers), number) != std::end(numbers);
}

bool IsPlainCharacter(char c) {
  return static_cast<unsigned char>(c) >= 0x20 && std::string_view("<>:\"|?*").find(c) == std::string_view::npos;
}

void CheckParts(std::string_view path) {
  if (path.size() > 1 && path[1] == ':') path.remove_prefix(2);
  if (path.starts_with(R"(\\?\)") || path.starts_with(R"(\\.\)")) throw SystemError(ErrorNumber::pathAccess);
  while (!path.empty()) {
    const std::string_view part = path.substr(0, path.find_first_of("\\/"));
    // The system removes some blanks and points at the end of a name, so the file would get another name.
    const bool isShortened = part != "." && part != ".." && (part.ends_with(' ') || part.ends_with('.'));
    if (!std::all_of(part.begin(), part.end(), IsPlainCharacter) || isShortened || IsDevice(part)) {
      throw SystemError(ErrorNumber::pathAccess);
    }
    path.remove_prefix(std::min(part.size() + 1, path.size()));
  }
}

std::string MessageOf(DWORD code) {
  wchar_t text[512];
  const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                        text, static_cast<DWORD>(std::size(text)), nullptr);
  std::string message = Utf8FromUtf16({text, length});
  while (!message.empty() && static_cast<unsigned char>(message.back()) <= ' ') message.pop_back();
  return message.empty() ? "Windows-Fehler " + std::to_string(code) : message;
}

std::wstring FinalPath(const Handle& file) {
  std::wstring path(32768, L'\0');
  path.resize(::GetFinalPathNameByHandleW(file.Get(), path.data(), static_cast<DWORD>(path.size()), 0));
  return path;
}

}  // namespace

std::string Utf8FromUtf16(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t k = 0; k < text.size(); ++k) {
    char32_t codePoint = text[k];
    const char32_t next = k + 1 < text.size() ? text[k + 1] : 0;
    if (codePoint >= 0xD800 && codePoint < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (next - 0xDC00);
      ++k;
    }
    AppendUtf8(bytes, codePoint);
  }
  return bytes;
}

std::wstring Utf16FromUtf8(std::string_view text) {
  return ToUtf16(text, [] { throw SystemError(ErrorNumber::pathAccess); });
}

std::wstring ShownUtf16(std::string_view text) {
  return ToUtf16(text, [] {});
}

std::wstring FullPath(const std::string& path) {
  if (path.empty()) throw SystemError(ErrorNumber::fileNotFound);
  const std::wstring units = Utf16FromUtf8(path);
  constexpr std::size_t longest = 32000;  // the system's 32767, minus its own prefix
  if (units.size() > longest) throw SystemError(ErrorNumber::pathAccess);
  std::wstring full(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = ::GetFullPathNameW(units.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0) ThrowError(::GetLastError());
    const bool fits = length < full.size();
    full.resize(length);
    if (fits) return full;
  }
}

std::wstring OpenablePath(const std::string& path) {
  CheckParts(path);
  std::wstring full = FullPath(path);
  for (std::size_t begin = 0, end = 0; end < full.size(); begin = end + 1) {
    end = std::min(full.find(L'\\', begin), full.size());
    if (end - begin > 255) throw SystemError(ErrorNumber::pathAccess);  // no name can be longer
  }
  return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

void ThrowError(DWORD code) {
  switch (code) {
    case ERROR_FILE_NOT_FOUND:
      throw SystemError(ErrorNumber::fileNotFound);
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_REM_NOT_LIST:
    case ERROR_NETNAME_DELETED:
    case ERROR_DEV_NOT_EXIST:
      throw SystemError(ErrorNumber::pathNotFound);
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
      throw SystemError(ErrorNumber::accessDenied);
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_WRITE_PROTECT:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BUFFER_OVERFLOW:
    case ERROR_CANT_RESOLVE_FILENAME:
    case ERROR_INVALID_PARAMETER:
      throw SystemError(ErrorNumber::pathAccess);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case kDiskQuotaExceeded:
    case ERROR_FILE_TOO_LARGE:
      throw SystemError(ErrorNumber::diskFull);
    case ERROR_TOO_MANY_OPEN_FILES:
      throw SystemError(ErrorNumber::tooManyFiles);
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_NO_SYSTEM_RESOURCES:
      throw SystemError(ErrorNumber::outOfMemory);
    default:
      throw SystemError(ErrorNumber::deviceError, MessageOf(code));
  }
}

Handle OpenToLook(const std::wstring& path) {
  return Handle(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

bool AreSame(const Handle& a, const Handle& b) {
  BY_HANDLE_FILE_INFORMATION first{}, second{};
  if (::GetFileInformationByHandle(a.Get(), &first) == 0 || ::GetFileInformationByHandle(b.Get(), &second) == 0 ||
      first.dwVolumeSerialNumber != second.dwVolumeSerialNumber || first.nFileIndexHigh != second.nFileIndexHigh ||
      first.nFileIndexLow != second.nFileIndexLow) {
    return false;
  }
  // Some drives have no file numbers and report 0 for each file.
  return (first.nFileIndexHigh | first.nFileIndexLow) != 0 || FinalPath(a) == FinalPath(b);
}

}  // namespace quiverion::windows
