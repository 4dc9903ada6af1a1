#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>

namespace quiverion::test {

/// A call that changes a file, or reads one that is changed in place.
struct SystemCall {
  enum class Kind { open, read, write, sync, close, rename, resize, remove, makeDirectory };
  Kind kind;
  std::string path;  // for a rename, the new one
  int flags = 0;     // for an open
};

/// While it lives, intercepts the system calls of the program for all files whose path begins with `directory`. So
/// faults of disks, permissions and other processes can be made to happen at an exact call. Only code that is linked
/// with the library `system_calls` is intercepted, and only one object may live at a time.
class SystemCalls {
 public:
  explicit SystemCalls(std::string directory);
  ~SystemCalls();
  SystemCalls(const SystemCalls&) = delete;
  SystemCalls& operator=(const SystemCalls&) = delete;

  /// Called before each call; returns the errno with which it fails, or 0. A failing close still closes the file; other
  /// failing calls do nothing. The function may change files first, or end the process.
  std::function<int(const SystemCall&)> before;

  /// At most so many bytes are written by one call; larger writes become short ones.
  std::size_t largestWrite = std::numeric_limits<std::size_t>::max();

  /// The path of the first call that changed something outside `directory`.
  std::string strayed;

  int Ask(const SystemCall& call);
  bool Watches(const std::string& path) const { return path.starts_with(directory_); }

 private:
  std::string directory_;
};

}  // namespace quiverion::test
