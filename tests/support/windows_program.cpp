#include "platform/windows_paths.h"
// Behind the header that includes windows.h.
#include <gtest/gtest.h>
#include <psapi.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "support/program.h"

namespace quiverion::cli {
namespace {

using namespace windows;

// As CommandLineToArgvW takes it apart again.
std::string Quoted(const std::string& argument) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument + '"') {
    // Those before a quotation mark, the last one included, count twice.
    if (c == '"') quoted.append(backslashes, '\\');
    backslashes = c == '\\' ? backslashes + 1 : 0;
    if (c == '"') quoted.push_back('\\');
    quoted.push_back(c);
  }
  quoted.erase(quoted.size() - 2, 1);
  return quoted;
}

Handle StreamFile(const std::string& path, DWORD access, DWORD creation) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return Handle(::CreateFileW(Utf16FromUtf8(path).c_str(), access, FILE_SHARE_READ, &inherited, creation,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::string Content(const std::string& path) {
  std::ifstream file(PathOf(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Waits for the process to end, ten minutes at most. Returns the kilobytes that it needed at most: what is asked once it
// has ended is not told everywhere.
long WaitForEnd(const Handle& process) {
  const ULONGLONG end = ::GetTickCount64() + 600000;
  SIZE_T peak = 0;
  do {
    PROCESS_MEMORY_COUNTERS memory{};
    if (::K32GetProcessMemoryInfo(process.Get(), &memory, sizeof memory) != 0) {
      peak = std::max(peak, memory.PeakWorkingSetSize);
    }
    if (::GetTickCount64() > end) ::TerminateProcess(process.Get(), 99);
  } while (::WaitForSingleObject(process.Get(), 10) == WAIT_TIMEOUT);
  return static_cast<long>(peak / 1024);
}

}  // namespace

Outcome RunProgram(const Workplace& place, const std::vector<std::string>& arguments, const std::string& input,
                   const std::string& /*output*/, const Surroundings& /*surroundings*/) {
  const Workplace streams;
  streams.Write("in", input);
  const Handle in = StreamFile(streams.Path() + "in", GENERIC_READ, OPEN_EXISTING);
  Handle out = StreamFile(streams.Path() + "out", GENERIC_WRITE, CREATE_NEW);
  Handle err = StreamFile(streams.Path() + "err", GENERIC_WRITE, CREATE_NEW);
  std::string line = Quoted(CLI_PROGRAM);
  for (const std::string& argument : arguments) line += " " + Quoted(argument);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.Get();
  startup.hStdOutput = out.Get();
  startup.hStdError = err.Get();
  PROCESS_INFORMATION process{};
  Outcome outcome;
  const ULONGLONG start = ::GetTickCount64();
  if (::CreateProcessW(nullptr, Utf16FromUtf8(line).data(), nullptr, nullptr, TRUE, 0, nullptr,
                       Utf16FromUtf8(place.Path()).c_str(), &startup, &process) == 0) {
    ADD_FAILURE() << line << " cannot be started: " << ::GetLastError();
    return outcome;
  }
  const Handle running(process.hProcess), thread(process.hThread);
  outcome.peakKilobytes = WaitForEnd(running);
  DWORD code = 0;
  ::GetExitCodeProcess(running.Get(), &code);
  out.Close();
  err.Close();
  outcome.code = static_cast<int>(code);
  outcome.out = Content(streams.Path() + "out");
  outcome.err = Content(streams.Path() + "err");
  outcome.seconds = static_cast<double>(::GetTickCount64() - start) / 1000;
  return outcome;
}

}  // namespace quiverion::cli
