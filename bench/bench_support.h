#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "macro/session.h"
#include "support/test_session.h"

namespace quiverion::bench {

/// A temporary directory for the files of one benchmark; removed at the end.
class ScratchDirectory {
 public:
  ScratchDirectory() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / ("quiverion-bench-" + std::string(6, 'X'))).string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~ScratchDirectory() { std::filesystem::remove_all(path_); }
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;

  std::string File(std::string_view name) const { return path_ + "/" + std::string(name); }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

/// A session without windows on the real files of this machine.
struct BenchSession {
  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  test::ScriptedUi ui;
  RunLog log;
  SystemClock clock;
  Session session{*files, ui, log, clock};
  Context& context = session.context;
};

inline void WritePlainly(const std::string& path, std::string_view bytes) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) std::abort();
  ::close(descriptor);
}

/// One open, one read into existing memory, one close: the yardstick of loading.
inline std::size_t ReadPlainly(const std::string& path, std::vector<char>& target) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const ssize_t count = ::read(descriptor, target.data(), target.size());
  ::close(descriptor);
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

}  // namespace quiverion::bench
