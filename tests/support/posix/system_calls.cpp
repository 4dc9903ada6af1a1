#include "support/system_calls.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <map>
#include <vector>

// The linker redirects the program's calls of `name` to __wrap_name, and __real_name to the system (option --wrap).
extern "C" {
int __real_open(const char* path, int flags, ...);
int __real_close(int descriptor);
ssize_t __real_read(int descriptor, void* target, size_t size);
ssize_t __real_readv(int descriptor, const iovec* pieces, int count);
ssize_t __real_write(int descriptor, const void* source, size_t size);
ssize_t __real_writev(int descriptor, const iovec* pieces, int count);
ssize_t __real_pwritev(int descriptor, const iovec* pieces, int count, off_t position);
int __real_fsync(int descriptor);
int __real_rename(const char* from, const char* to);
int __real_renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags);
int __real_unlink(const char* path);
int __real_truncate(const char* path, off_t length);
int __real_ftruncate(int descriptor, off_t length);
int __real_mkdir(const char* path, mode_t mode);
}

namespace quiverion::test {
namespace {

SystemCalls* active = nullptr;
std::map<int, std::string> openFiles;  // opened for writing

using Kind = SystemCall::Kind;

// True if the call must fail; errno is set.
bool Fails(Kind kind, const std::string& path, int flags = 0) {
  if (active == nullptr) return false;
  const int code = active->Ask({kind, path, flags});
  errno = code;
  return code != 0;
}

bool FailsOn(Kind kind, int descriptor) {
  const auto file = openFiles.find(descriptor);
  return file != openFiles.end() && Fails(kind, file->second);
}

// The part of the pieces that one call may write.
std::vector<iovec> Shortened(const iovec* pieces, int count, int descriptor) {
  std::vector<iovec> list(pieces, pieces + count);
  if (active == nullptr || !openFiles.contains(descriptor)) return list;
  std::size_t left = active->largestWrite;
  for (iovec& piece : list) left -= piece.iov_len = std::min(piece.iov_len, left);
  return list;
}

}  // namespace

SystemCalls::SystemCalls(std::string directory) : directory_(std::move(directory)) {
  active = this;
}

SystemCalls::~SystemCalls() {
  active = nullptr;
  openFiles.clear();
}

int SystemCalls::Ask(const SystemCall& call) {
  if (Watches(call.path)) return before ? before(call) : 0;
  const bool isParent = call.kind == Kind::makeDirectory && directory_.starts_with(call.path);  // which exists
  if (strayed.empty() && !isParent) strayed = call.path;
  return 0;
}

}  // namespace quiverion::test

using namespace quiverion::test;

extern "C" {

int __wrap_open(const char* path, int flags, ...) {
  std::va_list rest;
  va_start(rest, flags);
  const auto mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
  va_end(rest);
  const bool writes = active != nullptr && (flags & O_ACCMODE) != O_RDONLY;
  if (writes && Fails(Kind::open, path, flags)) return -1;
  const int descriptor = __real_open(path, flags, mode);
  if (writes && descriptor >= 0 && active->Watches(path)) openFiles[descriptor] = path;
  return descriptor;
}

int __wrap_close(int descriptor) {
  const bool fails = FailsOn(Kind::close, descriptor);
  const int code = errno;
  openFiles.erase(descriptor);
  const int result = __real_close(descriptor);
  if (!fails) return result;
  errno = code;
  return -1;
}

ssize_t __wrap_read(int descriptor, void* target, size_t size) {
  return FailsOn(Kind::read, descriptor) ? -1 : __real_read(descriptor, target, size);
}

ssize_t __wrap_readv(int descriptor, const iovec* pieces, int count) {
  return FailsOn(Kind::read, descriptor) ? -1 : __real_readv(descriptor, pieces, count);
}

ssize_t __wrap_write(int descriptor, const void* source, size_t size) {
  const iovec piece = {const_cast<void*>(source), size};
  return FailsOn(Kind::write, descriptor)
             ? -1
             : __real_write(descriptor, source, Shortened(&piece, 1, descriptor)[0].iov_len);
}

ssize_t __wrap_writev(int descriptor, const iovec* pieces, int count) {
  return FailsOn(Kind::write, descriptor)
             ? -1
             : __real_writev(descriptor, Shortened(pieces, count, descriptor).data(), count);
}

ssize_t __wrap_pwritev(int descriptor, const iovec* pieces, int count, off_t position) {
  return FailsOn(Kind::write, descriptor)
             ? -1
             : __real_pwritev(descriptor, Shortened(pieces, count, descriptor).data(), count, position);
}

int __wrap_fsync(int descriptor) {
  if (FailsOn(Kind::sync, descriptor)) return -1;
  return openFiles.contains(descriptor) ? 0 : __real_fsync(descriptor);  // no test can check what the disk keeps
}

int __wrap_rename(const char* from, const char* to) {
  return Fails(Kind::rename, to) ? -1 : __real_rename(from, to);
}

int __wrap_renameat2(int fromDirectory, const char* from, int toDirectory, const char* to, unsigned flags) {
  return Fails(Kind::rename, to) ? -1 : __real_renameat2(fromDirectory, from, toDirectory, to, flags);
}

int __wrap_unlink(const char* path) {
  return Fails(Kind::remove, path) ? -1 : __real_unlink(path);
}

int __wrap_truncate(const char* path, off_t length) {
  return Fails(Kind::resize, path) ? -1 : __real_truncate(path, length);
}

int __wrap_ftruncate(int descriptor, off_t length) {
  return FailsOn(Kind::resize, descriptor) ? -1 : __real_ftruncate(descriptor, length);
}

int __wrap_mkdir(const char* path, mode_t mode) {
  return Fails(Kind::makeDirectory, path) ? -1 : __real_mkdir(path, mode);
}

}  // extern "C"
