#include "platform/posix/paths.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "messages/system_error.h"

namespace quiverion::posix {

bool BeginsWithDriveLetter(std::string_view path) {
  if (path.size() < 2 || path[1] != ':') return false;
  const char letter = static_cast<char>(path[0] | 0x20);
  return letter >= 'a' && letter <= 'z';
}

std::string SystemPath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

std::string OpenablePath(const std::string& path) {
  if (BeginsWithDriveLetter(path)) throw SystemError(ErrorNumber::pathNotFound);
  if (path.find('\0') != std::string::npos) throw SystemError(ErrorNumber::pathAccess);
  return SystemPath(path);
}

std::string ParentOf(const std::string& nativePath) {
  const std::size_t last = nativePath.rfind('/');
  if (last == std::string::npos) return ".";
  return last == 0 ? "/" : nativePath.substr(0, last);
}

bool IsDirectoryNative(const std::string& nativePath) {
  struct stat info {};
  return ::stat(nativePath.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

void ThrowErrno(int code, const std::string& nativePath) {
  switch (code) {
    case ENOENT:
      throw SystemError(nativePath.empty() || IsDirectoryNative(ParentOf(nativePath)) ? ErrorNumber::fileNotFound
                                                                                      : ErrorNumber::pathNotFound);
    case ENOTDIR:
      throw SystemError(ErrorNumber::pathNotFound);
    case EACCES:
    case EPERM:
    case EBUSY:
    case ETXTBSY:
      throw SystemError(ErrorNumber::accessDenied);
    case EEXIST:
    case EISDIR:
    case EROFS:
    case ELOOP:
    case EINVAL:
    case ENAMETOOLONG:
      throw SystemError(ErrorNumber::pathAccess);
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      throw SystemError(ErrorNumber::diskFull);
    case EMFILE:
    case ENFILE:
      throw SystemError(ErrorNumber::tooManyFiles);
    case ENOMEM:
      throw SystemError(ErrorNumber::outOfMemory);
    default:
      throw SystemError(ErrorNumber::deviceError, std::generic_category().message(code));
  }
}

}  // namespace quiverion::posix
