// What the program needs from its environment besides files.
#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <algorithm>
#include <array>
#include <atomic>

#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/windows/memory.h"

// From the C library, which also splits the command line for main. The system's own function is in a library that takes
// longer to load than the program.
extern "C" int __cdecl __wgetmainargs(int* count, wchar_t*** words, wchar_t*** environment, int wildcards,
                                      int* newMode);

namespace quiverion {
namespace {

using namespace windows;

HANDLE HandleOf(StandardStream stream) {
  return ::GetStdHandle(stream == StandardStream::output ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

bool IsConsole(HANDLE handle) {
  DWORD mode = 0;
  return ::GetConsoleMode(handle, &mode) != 0;
}

// Cached, because it is called for every piece of a log and each call asks another process.
bool GoesToConsole(StandardStream stream) {
  static const bool isConsole[] = {IsConsole(HandleOf(StandardStream::output)),
                                   IsConsole(HandleOf(StandardStream::error))};
  return isConsole[stream == StandardStream::output ? 0 : 1];
}

bool WriteToConsole(HANDLE console, std::wstring_view text) {
  while (!text.empty()) {
    DWORD written = 0;
    auto block = static_cast<DWORD>(std::min<std::size_t>(text.size(), 8000));
    if (block < text.size() && IS_HIGH_SURROGATE(text[block - 1])) --block;
    if (::WriteConsoleW(console, text.data(), block, &written, nullptr) == 0 || written == 0) return false;
    text.remove_prefix(written);
  }
  return true;
}

// The way file systems compare names, independent of the language of the user.
std::wstring UpperCase(const std::wstring& text) {
  std::wstring upper(text.size(), L'\0');
  const auto length = static_cast<int>(text.size());
  const int written = ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, text.c_str(), length, upper.data(),
                                      length, nullptr, nullptr, 0);
  return written == length ? upper : text;
}

// Whether the pattern with "*" and "?" matches the name, both in upper case.
bool StandsFor(std::wstring_view pattern, std::wstring_view name) {
  std::size_t p = 0, star = std::wstring_view::npos, behindStar = 0;
  for (std::size_t k = 0; k < name.size();) {
    if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      behindStar = k;
    } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == name[k])) {
      ++p;
      ++k;
    } else if (star != std::wstring_view::npos) {
      p = star + 1;
      k = ++behindStar;  // the star matches one more character
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(L'*', p) == std::wstring_view::npos;
}

// The files that match an argument with "*" or "?" in its last part, which the command interpreter does not expand; the
// argument itself if there are none.
std::vector<std::string> Expanded(const std::string& argument) {
  std::vector<std::string> paths;
  const std::size_t beginOfName = argument.find_last_of("\\/:") + 1;  // 0 if there is no separator
  if (argument.find_first_of("*?", beginOfName) != std::string::npos) {
    std::wstring pattern = UpperCase(ShownUtf16(argument.substr(beginOfName)));
    if (pattern == L"*.*") pattern = L"*";  // means all files by tradition
    WIN32_FIND_DATAW entry;
    const HANDLE search = ::FindFirstFileW(Utf16FromUtf8(argument).c_str(), &entry);
    const bool found = search != INVALID_HANDLE_VALUE;
    for (bool more = found; more; more = ::FindNextFileW(search, &entry) != 0) {
      if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
      // The search also matches short names (RUN01~1.VAS).
      if (!StandsFor(pattern, UpperCase(entry.cFileName))) continue;
      const bool isOption = beginOfName == 0 && entry.cFileName[0] == L'-';  // or would be taken for an option
      paths.push_back((isOption ? ".\\" : argument.substr(0, beginOfName)) + Utf8FromUtf16(entry.cFileName));
    }
    if (found) ::FindClose(search);
    std::sort(paths.begin(), paths.end());
  }
  if (paths.empty()) paths.push_back(argument);
  return paths;
}

std::atomic<bool> abortRequested = false;

// Runs in a separate thread.
BOOL WINAPI HandleConsoleEvent(DWORD event) {
  if (event == CTRL_LOGOFF_EVENT) return TRUE;  // services are told of every user who logs off
  const bool first = !abortRequested.exchange(true);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) {
    if (!first) ::TerminateProcess(::GetCurrentProcess(), STATUS_CONTROL_C_EXIT);
    return TRUE;
  }
  // The process ends when this returns, or after some seconds. So the running command gets time to finish.
  ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/) {
  // The arguments of main are in the code page of the machine and have lost other characters.
  int count = 0, newMode = 0;
  wchar_t **words = nullptr, **environment = nullptr;
  __wgetmainargs(&count, &words, &environment, 0, &newMode);
  std::vector<std::string> arguments;
  for (int k = 1; k < count; ++k) {
    std::string word = Utf8FromUtf16(words[k]);
    // "C:\Messung\" at the end of a line: the backslash has escaped the quotation mark, which no name contains.
    if (word.size() > 1 && word.back() == '"') word.pop_back();
    for (std::string& path : Expanded(word)) arguments.push_back(std::move(path));
  }
  return arguments;
}

bool IsTerminal(StandardStream stream) {
  return GoesToConsole(stream);
}

bool WriteToStream(StandardStream stream, std::string_view bytes) {
  const HANDLE handle = HandleOf(stream);
  if (GoesToConsole(stream)) return WriteToConsole(handle, ShownUtf16(bytes));
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto block = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 30));
    if (::WriteFile(handle, bytes.data(), block, &written, nullptr) == 0 || written == 0) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

char EnvironmentDecimalSeparator() {
  wchar_t separator[8] = L"";
  ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_SDECIMAL, separator, 8);
  return separator[0] == L',' ? ',' : '.';
}

std::string AbsolutePath(const std::string& path) {
  try {
    std::string full = Utf8FromUtf16(FullPath(path.empty() ? "." : path));
    return full.starts_with(R"(\\.\)") ? path : full;  // a device is shown as it was typed
  } catch (const SystemError&) {
    return path;  // opening it will report the error
  }
}

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  try {
    const Handle first = OpenToLook(OpenablePath(a)), second = OpenToLook(OpenablePath(b));
    if (first.IsOpen() && second.IsOpen()) return AreSame(first, second);
    return !first.IsOpen() && !second.IsOpen() && UpperCase(FullPath(a)) == UpperCase(FullPath(b));
  } catch (const SystemError&) {
    return false;
  }
}

std::string FileNameKey(std::string_view name) {
  return Utf8FromUtf16(UpperCase(ShownUtf16(name)));
}

std::string ReadStandardInput() {
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  std::string content;
  std::array<char, 65536> block;
  for (;;) {
    DWORD count = 0;
    if (::ReadFile(input, block.data(), static_cast<DWORD>(block.size()), &count, nullptr) == 0) {
      const DWORD code = ::GetLastError();
      if (code != ERROR_BROKEN_PIPE) ThrowError(code);  // the other end of the pipe has been closed
      return content;
    }
    if (count == 0) return content;
    content.append(block.data(), count);
  }
}

void CatchAbortRequests() {
  ::SetConsoleCtrlHandler(HandleConsoleEvent, TRUE);
}

bool AbortRequested() {
  return abortRequested;
}

void PrepareProcess() {
  windows::KeepFreedMemory();
  // A drive without a medium is an error of the call, not a message box of the system.
  ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  for (const DWORD stream : {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) {
    DWORD mode = 0;
    const HANDLE handle = ::GetStdHandle(stream);
    ::SetLastError(NO_ERROR);
    if (::GetFileType(handle) == FILE_TYPE_UNKNOWN && ::GetLastError() != NO_ERROR) ::SetStdHandle(stream, nullptr);
    if (stream == STD_INPUT_HANDLE) continue;
    if (::GetConsoleMode(handle, &mode) != 0) ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

void UseCallersConsole() {
  const auto openConsole = [] {
    return ::CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                         OPEN_EXISTING, 0, nullptr);
  };
  const HANDLE output = HandleOf(StandardStream::output), error = HandleOf(StandardStream::error);
  const bool keepsOutput = ::GetFileType(output) != FILE_TYPE_UNKNOWN;
  const bool keepsError = ::GetFileType(error) != FILE_TYPE_UNKNOWN;
  if (keepsOutput && keepsError) return;
  // ERROR_ACCESS_DENIED: the process already has a console.
  if (::AttachConsole(ATTACH_PARENT_PROCESS) == 0 && ::GetLastError() != ERROR_ACCESS_DENIED) return;
  // Attaching replaces both handles, even one that leads to a file.
  ::SetStdHandle(STD_OUTPUT_HANDLE, keepsOutput ? output : openConsole());
  ::SetStdHandle(STD_ERROR_HANDLE, keepsError ? error : openConsole());
}

}  // namespace quiverion
