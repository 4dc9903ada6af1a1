// What the program needs from its environment besides files.
#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iterator>

#include "messages/system_error.h"
#include "platform/posix/paths.h"
#include "platform/process/environment.h"

namespace quiverion {
namespace {

volatile std::sig_atomic_t signalSeen = 0;  // the only state a signal handler may touch
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
volatile std::sig_atomic_t caught[std::size(kSignals)] = {};

extern "C" void HandleSignal(int /*number*/) {
  signalSeen = 1;
  for (std::size_t k = 0; k < std::size(kSignals); ++k) {
    if (caught[k] != 0) std::signal(kSignals[k], SIG_DFL);
  }
}

int DescriptorOf(StandardStream stream) {
  return stream == StandardStream::output ? STDOUT_FILENO : STDERR_FILENO;
}

std::string NumericLocaleName() {
  for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return {};
}

// A locale may be named without being installed (for example on a compute node); then its language decides.
bool LanguageWritesComma(std::string_view localeName) {
  constexpr std::array<std::string_view, 12> languages = {"de", "fr", "it", "es", "nl", "pt",
                                                          "pl", "cs", "da", "nb", "sv", "fi"};
  return localeName.size() > 2 && localeName[2] == '_' &&
         std::find(languages.begin(), languages.end(), localeName.substr(0, 2)) != languages.end();
}

}  // namespace

std::vector<std::string> CommandLineArguments(int argc, char** argv) {
  return {argv + std::min(argc, 1), argv + argc};  // a program may be started without even its name
}

bool IsTerminal(StandardStream stream) {
  return ::isatty(DescriptorOf(stream)) == 1;
}

bool WriteToStream(StandardStream stream, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(DescriptorOf(stream), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

char EnvironmentDecimalSeparator() {
  const std::string name = NumericLocaleName();
  if (name.empty()) return '.';
  const locale_t locale = ::newlocale(LC_NUMERIC_MASK, name.c_str(), nullptr);
  if (locale == nullptr) return LanguageWritesComma(name) ? ',' : '.';
  const char separator = *::nl_langinfo_l(RADIXCHAR, locale);
  ::freelocale(locale);
  return separator == ',' ? ',' : '.';
}

std::string AbsolutePath(const std::string& path) {
  const std::string native = posix::SystemPath(path);
  const bool drive = native.size() > 1 && native[1] == ':';
  if (native.starts_with('/') || drive) return path;
  std::error_code ignored;
  std::string current = std::filesystem::current_path(ignored).string();
  std::size_t start = 0;
  while (native.compare(start, 2, "./") == 0) start += 2;
  if (start == native.size() || native.substr(start) == ".") return current;
  if (!current.ends_with('/')) current.push_back('/');
  return current + path.substr(start);
}

bool IsSameFile(const std::string& a, const std::string& b) {
  if (a == b) return true;
  std::error_code failed;
  const std::filesystem::path first = posix::SystemPath(a), second = posix::SystemPath(b);
  if (std::filesystem::equivalent(first, second, failed) && !failed) return true;
  if (std::filesystem::exists(first, failed) || std::filesystem::exists(second, failed)) return false;
  const auto firstPlace = std::filesystem::weakly_canonical(first, failed);
  return !failed && firstPlace == std::filesystem::weakly_canonical(second, failed) && !failed;
}

std::string FileNameKey(std::string_view name) {
  return std::string(name);
}

std::string ReadStandardInput() {
  std::string content;
  std::array<char, 65536> block;
  for (;;) {
    const ssize_t count = ::read(STDIN_FILENO, block.data(), block.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw SystemError(ErrorNumber::deviceError);
    if (count == 0) return content;
    content.append(block.data(), static_cast<std::size_t>(count));
  }
}

void CatchAbortRequests() {
  for (std::size_t k = 0; k < std::size(kSignals); ++k) {
    caught[k] = std::signal(kSignals[k], HandleSignal) != SIG_IGN ? 1 : 0;
    if (caught[k] == 0) std::signal(kSignals[k], SIG_IGN);  // whoever started the program wants it ignored
  }
}

bool AbortRequested() {
  return signalSeen != 0;
}

void PrepareProcess() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0) continue;
    // Takes the lowest free number. Opened in the opposite direction, so that reading or writing still fails.
    [[maybe_unused]] const int taken = ::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
#ifdef __GLIBC__
  ::mallopt(M_MMAP_THRESHOLD, 32 * 1024 * 1024);  // the largest there is
  ::mallopt(M_TRIM_THRESHOLD, 256 * 1024 * 1024);
#endif
}

void UseCallersConsole() {}

}  // namespace quiverion
