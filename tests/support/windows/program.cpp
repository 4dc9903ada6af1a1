#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <gtest/gtest.h>
#include <psapi.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

#include "support/stalled_program.h"

namespace quiverion::cli {
namespace {

using namespace windows;

// Quoted so that CommandLineToArgvW restores it.
std::string Quoted(const std::string& argument) {
  std::string quoted = "\"";
  std::size_t backslashes = 0;
  for (const char c : argument + '"') {
    // Backslashes before a quotation mark, including the closing one, are doubled.
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

// Starts a process with these standard streams; if its number is requested, in a hidden console of its own.
Handle Start(const Workplace& place, const std::vector<std::string>& arguments, const Handle& in, const Handle& out,
             const Handle& err, DWORD* id = nullptr) {
  std::string line = Quoted(CLI_PROGRAM);
  for (const std::string& argument : arguments) line += " " + Quoted(argument);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = in.Get();
  startup.hStdOutput = out.Get();
  startup.hStdError = err.Get();
  PROCESS_INFORMATION process{};
  if (::CreateProcessW(nullptr, Utf16FromUtf8(line).data(), nullptr, nullptr, TRUE,
                       id == nullptr ? 0 : CREATE_NO_WINDOW, nullptr, Utf16FromUtf8(place.Path()).c_str(), &startup,
                       &process) == 0) {
    ADD_FAILURE() << line << " cannot be started: " << ::GetLastError();
    return Handle();
  }
  ::CloseHandle(process.hThread);
  if (id != nullptr) *id = process.dwProcessId;
  return Handle(process.hProcess);
}

void SetCode(Outcome& outcome, const Handle& process) {
  DWORD code = 0;
  ::GetExitCodeProcess(process.Get(), &code);
  if (code == STATUS_CONTROL_C_EXIT) {
    outcome.signal = SIGINT;
  } else {
    outcome.code = static_cast<int>(code);
  }
}

// Waits for the process to end, ten minutes at most. Returns its peak memory in kilobytes, which must be read before it
// has ended, because not every system reports it later.
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
  Outcome outcome;
  const Handle running = Start(place, arguments, in, out, err);
  if (!running.IsOpen()) return outcome;
  outcome.peakKilobytes = WaitForEnd(running);
  SetCode(outcome, running);
  out.Close();
  err.Close();
  outcome.out = Content(streams.Path() + "out");
  outcome.err = Content(streams.Path() + "err");
  return outcome;
}

std::vector<int> AbortSignals() {
  return {SIGINT};
}

struct StalledProgram::Running {
  Handle process;
  DWORD id = 0;
  Handle output;  // the reading end

  DWORD Waiting() const {
    DWORD bytes = 0;
    ::PeekNamedPipe(output.Get(), nullptr, 0, nullptr, &bytes, nullptr);
    return bytes;
  }
};

StalledProgram::StalledProgram(const Workplace& place, const std::vector<std::string>& arguments)
    : running_(std::make_unique<Running>()) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  HANDLE ends[2] = {};
  EXPECT_NE(::CreatePipe(&ends[0], &ends[1], &inherited, 4096), 0);
  running_->output = Handle(ends[0]);
  const Handle written(ends[1]);
  ::SetHandleInformation(ends[0], HANDLE_FLAG_INHERIT, 0);
  const Handle nothing(::CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     &inherited, OPEN_EXISTING, 0, nullptr));
  running_->process = Start(place, arguments, nothing, written, nothing, &running_->id);
}

StalledProgram::~StalledProgram() {
  if (running_->process.IsOpen()) ::TerminateProcess(running_->process.Get(), 99);
}

bool StalledProgram::WaitUntilStalled() const {
  DWORD before = 0;
  int same = 0;
  for (int k = 0; k < 6000; ++k) {
    const DWORD waiting = running_->Waiting();
    same = waiting > 0 && waiting == before ? same + 1 : 0;
    if (same == 50) return true;
    before = waiting;
    ::Sleep(10);
  }
  return false;
}

void StalledProgram::Signal(int /*number*/) const {
  // The key reaches all processes of a console, including this process while it is attached.
  static const BOOL heeded = ::SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
  EXPECT_NE(heeded, 0);
  ::FreeConsole();
  EXPECT_NE(::AttachConsole(running_->id), 0);
  EXPECT_NE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), 0);
  ::Sleep(200);
  ::FreeConsole();
  ::AttachConsole(ATTACH_PARENT_PROCESS);
}

Outcome StalledProgram::Finish() {
  Outcome outcome;
  // Its console may have inherited the other end of the pipe and may live longer, so wait for the end of the process.
  for (bool ended = false; !ended || running_->Waiting() > 0;) {
    char block[4096];
    DWORD count = running_->Waiting();
    if (count > 0) {
      ::ReadFile(running_->output.Get(), block, std::min<DWORD>(count, sizeof block), &count, nullptr);
      outcome.out.append(block, count);
    } else {
      ended = ::WaitForSingleObject(running_->process.Get(), 5) == WAIT_OBJECT_0;
    }
  }
  SetCode(outcome, running_->process);
  running_->process.Close();
  return outcome;
}

}  // namespace quiverion::cli
