#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>

namespace quiverion::test {

/// A call by which the program changes a file, or reads one that it changes in place.
struct SystemCall {
  enum class Kind { open, read, write, sync, close, rename, resize, remove, makeDirectory };
  Kind kind;
  std::string path;  // of a rename the new one
  int flags = 0;     // of an open
};

/// Steps between the program's code and the system while it lives, for all files whose path begins with `directory`:
/// the faults of disks, permissions and other processes happen at the exact call where they are wanted. Only calls of
/// code that is linked with the library `system_calls` pass here, and only one object may live at a time.
class SystemCalls {
 public:
  explicit SystemCalls(std::string directory);
  ~SystemCalls();
  SystemCalls(const SystemCalls&) = delete;
  SystemCalls& operator=(const SystemCalls&) = delete;

  /// Asked before each call: the errno with which it fails, or 0. A close that fails closes all the same, and nothing is
  /// done by the others. May change the world beforehand, or end the process.
  std::function<int(const SystemCall&)> before;

  /// So many bytes go to the system with one call; the rest is a short write.
  std::size_t largestWrite = std::numeric_limits<std::size_t>::max();

  /// What a file or a directory was opened for, made, renamed or removed outside `directory`: the first such call's path.
  std::string strayed;

  int Ask(const SystemCall& call);
  bool Watches(const std::string& path) const { return path.starts_with(directory_); }

 private:
  std::string directory_;
};

}  // namespace quiverion::test
