// Files and directories by Windows calls.
#include "platform/windows/open_files.h"
// After the header that includes windows.h.
#include <array>
#include <optional>
#include <vector>

#include "messages/system_error.h"
#include "platform/files/file_system.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

using namespace windows;

constexpr DWORD kNotThere = INVALID_FILE_ATTRIBUTES;
constexpr DWORD kOutOfSight = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

Handle Open(const std::wstring& path, DWORD access, DWORD sharing, DWORD creation) {
  return Handle(::CreateFileW(path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool IsDirectoryNative(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  return attributes != kNotThere && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// For a directory, and for writing to a read-only file, the system reports that access was denied.
[[noreturn]] void ThrowOpenError(DWORD code, const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  const bool wrongKind =
      attributes != kNotThere && (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0;
  if (code == ERROR_ACCESS_DENIED && wrongKind) throw SystemError(ErrorNumber::pathAccess);
  // A path whose "directory" is a file.
  if (code == ERROR_FILE_NOT_FOUND && !IsDirectoryNative(ParentOf(path))) throw SystemError(ErrorNumber::pathNotFound);
  ThrowError(code);
}

// For files that are created: "no such file" means that the directory is missing or that something forbids the new
// file.
[[noreturn]] void ThrowCreateError(DWORD code, const std::wstring& path) {
  if (code != ERROR_FILE_NOT_FOUND) ThrowError(code);
  ThrowError(IsDirectoryNative(ParentOf(path)) ? ERROR_ACCESS_DENIED : ERROR_PATH_NOT_FOUND);
}

// Whether the open file is still the one at the path. Not every server reports that a file is about to be deleted, so
// if others have had it locked meanwhile, it is compared with the file at the path.
bool IsAt(const std::wstring& path, const Handle& file, bool othersHadIt) {
  FILE_STANDARD_INFO info{};
  const bool known = ::GetFileInformationByHandleEx(file.Get(), FileStandardInfo, &info, sizeof info) != 0;
  if (known && info.DeletePending != FALSE) return false;
  return !othersHadIt || AreSame(file, OpenToLook(path));
}

// Waits until no other process has locked the file, then locks it: one byte far beyond its end, which does not affect
// readers. Not forever, because anybody who may read a file can lock it. True if it has waited.
bool Lock(const Handle& file) {
  const ULONGLONG end = ::GetTickCount64() + 30000;
  for (int k = 0; ::GetTickCount64() < end; ++k) {
    OVERLAPPED at = AtPosition(std::uint64_t{1} << 62);
    constexpr DWORD flags = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    if (::LockFileEx(file.Get(), flags, 0, 1, 0, &at) != 0) return k > 0;
    const DWORD code = ::GetLastError();
    if (code != ERROR_LOCK_VIOLATION && code != ERROR_IO_PENDING) return false;  // a file system without locks
    ::Sleep(2);
  }
  throw SystemError(ErrorNumber::accessDenied, "ein anderes Programm hält die Datei gesperrt");
}

// Opens and locks an existing file to change it in place; the result is not open if there is none. Throws SystemError
// if it is read-only or not a regular file.
Handle OpenTarget(const std::wstring& path, DWORD access) {
  for (int k = 0;; ++k) {
    Handle file = Open(path, access, kShared, OPEN_EXISTING);
    if (!file.IsOpen()) {
      const DWORD code = ::GetLastError();
      if (code == ERROR_FILE_NOT_FOUND && IsDirectoryNative(ParentOf(path))) return file;
      ThrowOpenError(code, path);
    }
    if (::GetFileType(file.Get()) != FILE_TYPE_DISK) throw SystemError(ErrorNumber::pathAccess);
    // A server with another system may allow this to users with all rights.
    if ((::GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0) throw SystemError(ErrorNumber::pathAccess);
    const bool hasWaited = Lock(file);
    if (IsAt(path, file, hasWaited)) return file;  // else the owner of the lock has deleted it
    if (k == 100) throw SystemError(ErrorNumber::accessDenied);
    file.Close();
    ::Sleep(10);
  }
}

// Attributes and permissions that a result takes over from the file it replaces.
struct Replaced {
  DWORD attributes = FILE_ATTRIBUTE_NORMAL;
  std::vector<BYTE> permissions;  // empty: inherited from the directory
};

// Whether the list has entries that are not inherited from the directory.
bool IsOfItsOwn(SECURITY_DESCRIPTOR_CONTROL control, PACL list) {
  if ((control & SE_DACL_PROTECTED) != 0 || list == nullptr) return true;
  for (DWORD k = 0; k < list->AceCount; ++k) {
    void* entry = nullptr;
    if (::GetAce(list, k, &entry) != 0 && (static_cast<ACE_HEADER*>(entry)->AceFlags & INHERITED_ACE) == 0) return true;
  }
  return false;
}

// The security descriptor of an open file that has permissions of its own; empty for others, because a copy would no
// longer follow the directory.
std::vector<BYTE> OwnPermissions(const Handle& file) {
  DWORD size = 0;
  ::GetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<BYTE> descriptor(size);
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  BOOL isThere = FALSE, isDefault = FALSE;
  PACL list = nullptr;
  const bool isKnown =
      size > 0 &&
      ::GetKernelObjectSecurity(file.Get(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) != 0 &&
      ::GetSecurityDescriptorControl(descriptor.data(), &control, &revision) != 0 &&
      ::GetSecurityDescriptorDacl(descriptor.data(), &isThere, &list, &isDefault) != 0;
  if (!isKnown || !IsOfItsOwn(control, list)) descriptor.clear();
  return descriptor;
}

std::optional<Replaced> CheckTarget(const std::wstring& path) {
  const DWORD attributes = ::GetFileAttributesW(path.c_str());
  if (attributes == kNotThere) return std::nullopt;
  if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0) {
    throw SystemError(ErrorNumber::pathAccess);
  }
  const Handle file = Open(path, GENERIC_WRITE, kShared, OPEN_EXISTING);
  if (!file.IsOpen()) ThrowOpenError(::GetLastError(), path);
  if (::GetFileType(file.Get()) != FILE_TYPE_DISK) throw SystemError(ErrorNumber::pathAccess);
  constexpr DWORD kept = kOutOfSight | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED | FILE_ATTRIBUTE_ENCRYPTED;
  return Replaced{attributes & kept, OwnPermissions(file)};
}

class WindowsFileSystem : public FileSystem {
 public:
  std::unique_ptr<InputFile> OpenForReading(const std::string& path) override {
    const std::wstring native = OpenablePath(path);
    Handle file = Open(native, GENERIC_READ, kShared, OPEN_EXISTING);
    if (!file.IsOpen()) ThrowOpenError(::GetLastError(), native);
    // Device names have been refused before, but a server may have pipes.
    const bool isOfServer = native.starts_with(LR"(\\?\UNC\)");
    if (isOfServer && ::GetFileType(file.Get()) != FILE_TYPE_DISK) throw SystemError(ErrorNumber::pathAccess);
    return std::make_unique<WindowsInputFile>(std::move(file));
  }

  std::unique_ptr<OutputFile> CreateResultFile(const std::string& path, ExistingFile existing) override {
    std::wstring native = OpenablePath(path);
    if (native.ends_with(L'\\')) ThrowOpenError(ERROR_ACCESS_DENIED, native);
    if (existing == ExistingFile::replace) {
      Handle file = Open(native, GENERIC_WRITE | DELETE, 0, CREATE_NEW);
      if (file.IsOpen()) {
        if (LetGoWhenClosed(file, true)) return std::make_unique<WindowsNewFile>(std::move(file));
        DeleteOpen(file, native);
      }
    }
    auto old = CheckTarget(native);
    SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
    if (old && !old->permissions.empty()) security.lpSecurityDescriptor = old->permissions.data();
    const DWORD attributes = old && old->attributes != 0 ? old->attributes : FILE_ATTRIBUTE_NORMAL;
    Handle file(::CreateFileW(TemporaryPathFor(native).c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, &security,
                              CREATE_NEW, attributes, nullptr));
    if (!file.IsOpen()) ThrowCreateError(::GetLastError(), native);
    return std::make_unique<WindowsResultFile>(std::move(file), std::move(native), old.has_value(), existing);
  }

  std::unique_ptr<OutputFile> OpenForAppending(const std::string& path) override {
    const std::wstring native = OpenablePath(path);
    for (;;) {
      Handle file = OpenTarget(native, GENERIC_WRITE);
      const bool isNew = !file.IsOpen();
      if (isNew) {
        file = Open(native, GENERIC_WRITE | DELETE, kShared, CREATE_NEW);
        if (!file.IsOpen()) {
          const DWORD code = ::GetLastError();
          if (code == ERROR_FILE_EXISTS) continue;  // another process has created it meanwhile
          ThrowCreateError(code, native);
        }
        Lock(file);
      }
      const std::uint64_t length = LengthOf(file);
      return std::make_unique<WindowsAppendedFile>(std::move(file), native, isNew, length);
    }
  }

  std::unique_ptr<UpdatedFile> OpenForUpdating(const std::string& path) override {
    const std::wstring native = OpenablePath(path);
    Handle file = OpenTarget(native, GENERIC_READ | GENERIC_WRITE);
    if (!file.IsOpen()) throw SystemError(ErrorNumber::fileNotFound);
    const std::uint64_t length = LengthOf(file);
    return std::make_unique<WindowsUpdatedFile>(std::move(file), length, ParentOf(native));
  }

  void SetFileSize(const std::string& path, std::uint64_t newLength) override {
    // Shared, because the code that truncates a collection has it open and locked.
    Handle file = OpenQuietly(path, GENERIC_WRITE);
    if (!file.IsOpen()) FailStep("Fehler beim Öffnen der Datei zum Einstellen der neuen Dateigröße!");
    auto high = static_cast<LONG>(newLength >> 32);
    ::SetLastError(NO_ERROR);
    const DWORD low = ::SetFilePointer(file.Get(), static_cast<LONG>(newLength & 0xFFFFFFFF), &high, FILE_BEGIN);
    if (low == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR) {
      if (!file.Close()) {
        FailStep("Fehler beim Schließen der Datei nach dem Versuch den Dateizeiger zu setzen!");
      }
      FailStep("Fehler beim Positionieren des Dateizeigers!");
    }
    if (::SetEndOfFile(file.Get()) == 0) FailStep("Fehler beim Setzen des neuen Dateiendes!");
    if (!file.Close()) FailStep("Fehler beim Schließen der Datei nach dem Setzen der neuen Dateigröße!");
  }

  void RemoveFileQuietly(const std::string& path) override {
    // If the path is a link, the file it leads to is deleted.
    const auto native = QuietPath(path);
    if (!native) return;
    const Handle file = Open(*native, DELETE, kShared, OPEN_EXISTING);
    if (file.IsOpen()) DeleteOpen(file, *native);
  }

  void CreateDirectoryQuietly(const std::string& path) override {
    if (const auto native = QuietPath(path)) ::CreateDirectoryW(native->c_str(), nullptr);
  }

  std::vector<std::string> ListFiles(const std::string& directory) override {
    return ListEntries(directory, [](DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0; });
  }

  std::vector<std::string> ListDirectories(const std::string& directory) override {
    return ListEntries(directory, [](DWORD attributes) { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; });
  }

  bool IsDirectory(const std::string& path) override {
    const auto native = QuietPath(path);
    return native && IsDirectoryNative(*native);
  }

  bool IsReadOnly(const std::string& path) override {
    const auto native = QuietPath(path);
    const DWORD attributes = native ? ::GetFileAttributesW(native->c_str()) : kNotThere;
    return attributes != kNotThere && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
  }

  void ClearReadOnly(const std::string& path) override {
    const std::wstring native = OpenablePath(path);
    const DWORD attributes = ::GetFileAttributesW(native.c_str());
    if (attributes == kNotThere ||
        ::SetFileAttributesW(native.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) == 0) {
      ThrowOpenError(::GetLastError(), native);
    }
  }

  DriveKind KindOfDrive(const std::string& directory) override {
    return ::GetDriveTypeA(DriveOf(directory).c_str()) == DRIVE_CDROM ? DriveKind::cdRom : DriveKind::other;
  }

  std::uint64_t FreeDiskBytes(const std::string& directory) override {
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, clusters = 0;
    if (::GetDiskFreeSpaceA(DriveOf(directory).c_str(), &sectorsPerCluster, &bytesPerSector, &freeClusters,
                            &clusters) == 0) {
      return 0;
    }
    return std::uint64_t{sectorsPerCluster} * bytesPerSector * freeClusters;
  }

 private:
  [[noreturn]] static void FailStep(const char* description) {
    throw SystemError::Saying(ErrorNumber::deviceError, description);
  }

  // None for a path that no call accepts.
  static std::optional<std::wstring> QuietPath(const std::string& path) {
    try {
      return OpenablePath(path);
    } catch (const SystemError&) {
      return std::nullopt;
    }
  }

  static Handle OpenQuietly(const std::string& path, DWORD access) {
    const auto native = QuietPath(path);
    return native ? Open(*native, access, kShared, OPEN_EXISTING) : Handle();
  }

  // "C:\"; for a server, something that the system does not know.
  static std::string DriveOf(const std::string& directory) { return WithOwnSeparators(directory.substr(0, 3)); }

  // Names of the visible entries with the wanted attributes.
  template <class Wanted>
  static std::vector<std::string> ListEntries(const std::string& directory, Wanted wanted) {
    std::wstring native = OpenablePath(directory);
    if (!native.ends_with(L'\\')) native.push_back(L'\\');
    WIN32_FIND_DATAW entry;
    const HANDLE search = ::FindFirstFileExW((native + L'*').c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch,
                                             nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search == INVALID_HANDLE_VALUE) {
      const DWORD code = ::GetLastError();
      if (code == ERROR_FILE_NOT_FOUND && IsDirectoryNative(native)) return {};  // an empty root has not even "."
      // For a file, the system reports that its name is not that of a directory.
      ThrowError(code == ERROR_FILE_NOT_FOUND || code == ERROR_INVALID_NAME ? ERROR_PATH_NOT_FOUND : code);
    }
    const std::unique_ptr<void, decltype(&::FindClose)> closer(search, ::FindClose);
    std::vector<std::string> names;
    do {
      const std::wstring_view name = entry.cFileName;
      if (name == L"." || name == L".." || (entry.dwFileAttributes & kOutOfSight) != 0) continue;
      if (wanted(entry.dwFileAttributes)) names.push_back(Utf8FromUtf16(name));
    } while (::FindNextFileW(search, &entry) != 0);
    if (const DWORD code = ::GetLastError(); code != ERROR_NO_MORE_FILES) ThrowError(code);
    return names;
  }
};

}  // namespace

std::unique_ptr<FileSystem> MakeSystemFileSystem() {
  return std::make_unique<WindowsFileSystem>();
}

}  // namespace quiverion
