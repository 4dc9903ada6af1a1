#pragma once

#include <string>
#include <string_view>

/// Paths and errors of POSIX systems. For the sources of this folder only.
namespace quiverion::posix {

bool BeginsWithDriveLetter(std::string_view path);

/// With the system's separators.
std::string SystemPath(const std::string& path);

/// The native form of a path that is to be opened. Throws SystemError if it has a drive letter, or contains a zero
/// byte, at which the system would end the name.
std::string OpenablePath(const std::string& path);

/// The directory of a native path.
std::string ParentOf(const std::string& nativePath);

bool IsDirectoryNative(const std::string& nativePath);

/// Throws the SystemError for an errno. `nativePath` serves to distinguish a missing file from a missing directory.
[[noreturn]] void ThrowErrno(int code, const std::string& nativePath = {});

}  // namespace quiverion::posix
