// What the program asks of its surroundings beyond files.
#include "platform/windows_paths.h"
// Behind the header that includes windows.h.
#include <shellapi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <memory>

#include "platform/environment.h"
#include "platform/paths.h"
#include "platform/system_error.h"
#include "platform/windows_memory.h"

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

// Asked for every piece of a log: a question to another process each time.
bool GoesToConsole(StandardStream stream) {
  static const bool isConsole[] = {IsConsole(HandleOf(StandardStream::output)),
                                   IsConsole(HandleOf(StandardStream::error))};
  return isConsole[stream == StandardStream::output ? 0 : 1];
}

bool WriteToConsole(HANDLE console, std::wstring_view text) {
  while (!text.empty()) {
    DWORD written = 0;
    const auto block = static_cast<DWORD>(std::min<std::size_t>(text.size(), 8000));
    if (::WriteConsoleW(console, text.data(), block, &written, nullptr) == 0 || written == 0) return false;
    text.remove_prefix(written);
  }
  return true;
}

// The files that an argument with "*" or "?" in its last part stands for, which the command interpreter leaves to the
// programs; the argument itself where there are none.
std::vector<std::string> Expanded(const std::string& argument) {
  std::vector<std::string> paths;
  const std::string_view pattern = FileNameOf(argument);
  if (pattern.find_first_of("*?") != std::string_view::npos) {
    WIN32_FIND_DATAW entry;
    const HANDLE search = ::FindFirstFileW(Utf16FromUtf8(argument).c_str(), &entry);
    const bool found = search != INVALID_HANDLE_VALUE;
    for (bool more = found; more; more = ::FindNextFileW(search, &entry) != 0) {
      if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
      paths.push_back(DirectoryPrefixOf(argument) + Utf8FromUtf16(entry.cFileName));
    }
    if (found) ::FindClose(search);
    std::sort(paths.begin(), paths.end());
  }
  if (paths.empty()) paths.push_back(argument);
  return paths;
}

std::atomic<bool> abortRequested = false;

// Runs in a thread of its own.
BOOL WINAPI HandleConsoleEvent(DWORD event) {
  const bool first = !abortRequested.exchange(true);
  if (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) return first ? TRUE : FALSE;
  // The process ends when this returns, or after some seconds: time to finish the running command.
  ::Sleep(INFINITE);
  return TRUE;
}

}  // namespace

std::vector<std::string> CommandLineArguments(int /*argc*/, char** /*argv*/) {
  // What main gets is in the code page of the machine and has lost what that lacks.
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&::LocalFree)> words(::CommandLineToArgvW(::GetCommandLineW(), &count),
                                                              ::LocalFree);
  std::vector<std::string> arguments;
  for (int k = 1; words && k < count; ++k) {
    for (std::string& path : Expanded(Utf8FromUtf16(words.get()[k]))) arguments.push_back(std::move(path));
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
    return Utf8FromUtf16(FullPath(path.empty() ? "." : path));
  } catch (const SystemError&) {
    return path;  // opening it will say what is wrong
  }
}

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  try {
    return AreSame(OpenToLook(OpenablePath(a)), OpenToLook(OpenablePath(b)));
  } catch (const SystemError&) {
    return false;
  }
}

std::string ReadStandardInput() {
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  std::string content;
  std::array<char, 65536> block;
  for (;;) {
    DWORD count = 0;
    if (::ReadFile(input, block.data(), static_cast<DWORD>(block.size()), &count, nullptr) == 0) {
      const DWORD code = ::GetLastError();
      if (code != ERROR_BROKEN_PIPE) ThrowError(code);  // the other end of a pipe is done
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
  // A drive without a medium is an error of the call, not a box of the system.
  ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  for (const StandardStream stream : {StandardStream::output, StandardStream::error}) {
    DWORD mode = 0;
    const HANDLE handle = HandleOf(stream);
    if (::GetConsoleMode(handle, &mode) != 0) ::SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
  }
}

}  // namespace quiverion
