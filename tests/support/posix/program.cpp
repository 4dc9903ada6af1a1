#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "support/stalled_program.h"

namespace quiverion::cli {
namespace {

constexpr auto kPause = std::chrono::milliseconds(10);

// An unnamed file, open in all child processes.
class UnnamedFile {
 public:
  UnnamedFile() : file_(std::tmpfile()) {}
  ~UnnamedFile() { std::fclose(file_); }
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  int Descriptor() const { return ::fileno(file_); }
  void Fill(const std::string& content) {
    std::fwrite(content.data(), 1, content.size(), file_);
    std::rewind(file_);
  }
  std::string Content() {
    std::rewind(file_);
    std::string content;
    for (int c; (c = std::fgetc(file_)) != EOF;) content.push_back(static_cast<char>(c));
    return content;
  }

 private:
  std::FILE* file_;
};

void Limit(__rlimit_resource resource, long value) {
  const rlimit limit = {static_cast<rlim_t>(value), static_cast<rlim_t>(value)};
  if (value >= 0) ::setrlimit(resource, &limit);
}

// Never returns in the child.
pid_t Start(const Workplace& place, const std::vector<std::string>& arguments, int input, int output, int error,
            const Surroundings& surroundings = {}) {
  std::vector<char*> words = {const_cast<char*>(CLI_PROGRAM)};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const pid_t process = ::fork();
  if (process != 0) return process;
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(error, STDERR_FILENO);
  ::setenv("LC_ALL", "C", 1);
  ::alarm(600);  // a hanging program is ended by a signal
  for (const int stream : surroundings.closed) ::close(stream);
  ::close_range(3, ~0u, 0);
  Limit(RLIMIT_FSIZE, surroundings.largestFile);
  Limit(RLIMIT_AS, surroundings.memory);
  Limit(RLIMIT_NOFILE, surroundings.openFiles);
  if (::chdir(place.Path().c_str()) == 0) ::execv(CLI_PROGRAM, words.data());
  ::_exit(99);
}

void SetStatus(Outcome& outcome, int status) {
  if (WIFEXITED(status)) outcome.code = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) outcome.signal = WTERMSIG(status);
}

// The value of a line in /proc/<process>/status.
std::string StatusLine(pid_t process, const std::string& name) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(name)) return line.substr(name.size());
  }
  return {};
}

}  // namespace

Outcome RunProgram(const Workplace& place, const std::vector<std::string>& arguments, const std::string& input,
                   const std::string& output, const Surroundings& surroundings) {
  UnnamedFile in, out, err;
  in.Fill(input);
  const int device = output.empty() ? -1 : ::open(output.c_str(), O_WRONLY | O_CLOEXEC);
  const pid_t process =
      Start(place, arguments, in.Descriptor(), device < 0 ? out.Descriptor() : device, err.Descriptor(), surroundings);
  int status = 0;
  rusage usage{};
  ::wait4(process, &status, 0, &usage);
  if (device >= 0) ::close(device);
  Outcome outcome{.out = out.Content(), .err = err.Content(), .peakKilobytes = usage.ru_maxrss};
  SetStatus(outcome, status);
  return outcome;
}

std::vector<int> AbortSignals() {
  return {SIGTERM, SIGINT, SIGHUP};
}

struct StalledProgram::Running {
  pid_t process = -1;
  int output = -1;
};

StalledProgram::StalledProgram(const Workplace& place, const std::vector<std::string>& arguments) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  ::fcntl(ends[1], F_SETPIPE_SZ, 4096);
  const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
  running_ = std::make_unique<Running>(Running{Start(place, arguments, nothing, ends[1], nothing), ends[0]});
  ::close(nothing);
  ::close(ends[1]);
}

StalledProgram::~StalledProgram() {
  if (running_->process > 0) {
    ::kill(running_->process, SIGKILL);
    ::waitpid(running_->process, nullptr, 0);
  }
  ::close(running_->output);
}

bool StalledProgram::WaitUntilStalled() const {
  int before = 0;
  int same = 0;
  for (int k = 0; k < 6000; ++k) {
    int waiting = 0;
    ::ioctl(running_->output, FIONREAD, &waiting);
    const bool asleep = StatusLine(running_->process, "State:").find('S') != std::string::npos;
    same = asleep && waiting > 0 && waiting == before ? same + 1 : 0;
    if (same == 20) return true;
    before = waiting;
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

void StalledProgram::Signal(int number) const {
  ::kill(running_->process, number);
  for (int k = 0; k < 500; ++k) {
    const std::string pending = StatusLine(running_->process, "ShdPnd:");
    const bool ended = StatusLine(running_->process, "State:").find('Z') != std::string::npos;
    if (ended || pending.find_first_not_of("\t0") == std::string::npos) return;
    std::this_thread::sleep_for(kPause);
  }
}

Outcome StalledProgram::Finish() {
  Outcome outcome;
  char block[4096];
  for (ssize_t count; (count = ::read(running_->output, block, sizeof block)) > 0;) {
    outcome.out.append(block, static_cast<std::size_t>(count));
  }
  int status = 0;
  ::waitpid(running_->process, &status, 0);
  running_->process = -1;
  SetStatus(outcome, status);
  return outcome;
}

}  // namespace quiverion::cli
