#include "support/memory_file_system.h"

#include <algorithm>
#include <cstring>

#include "platform/files/paths.h"

namespace quiverion::test {
namespace {

std::string Normal(const std::string& path) {
  std::string normal = path;
  std::replace(normal.begin(), normal.end(), '\\', '/');
  return normal;
}

// The reading side; `Base` is InputFile or UpdatedFile.
template <class Base>
class MemoryReadableFile : public Base {
 public:
  MemoryReadableFile(std::string content, std::uint64_t failsAt) : content_(std::move(content)), failsAt_(failsAt) {}

  std::uint64_t Size() const override { return content_.size(); }

  std::size_t Read(void* target, std::size_t size) override {
    const std::size_t count = std::min(size, content_.size() - std::min(at_, content_.size()));
    if (at_ + count > failsAt_) throw SystemError(ErrorNumber::deviceError);
    if (count > 0) std::memcpy(target, content_.data() + at_, count);
    at_ += count;
    return count;
  }

  void Seek(std::uint64_t position) override { at_ = static_cast<std::size_t>(position); }

 protected:
  std::string content_;

 private:
  std::size_t at_ = 0;
  std::uint64_t failsAt_;
};

// Allocates `size` bytes of the disk, or as many as are left.
std::size_t TakeDiskSpace(MemoryFileSystem::Faults& faults, std::size_t size) {
  if (faults.diskSize == 0) throw SystemError(faults.write);
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, faults.diskSize));
  faults.diskSize -= count;
  return count;
}

class MemoryUpdatedFile : public MemoryReadableFile<UpdatedFile> {
 public:
  MemoryUpdatedFile(MemoryFileSystem& system, std::string path, std::uint64_t readFailsAt)
      : MemoryReadableFile(system.files[path], readFailsAt), system_(system), path_(std::move(path)) {
    ++system_.openWrittenFiles;
  }
  ~MemoryUpdatedFile() override { --system_.openWrittenFiles; }

  std::uint64_t FreeDiskBytes() override { return system_.FreeDiskBytes(path_); }

  std::size_t Read(void* target, std::size_t size) override { return MemoryReadableFile::Read(target, size); }

  std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) override {
    const auto first =
        std::find_if(pieces.begin(), pieces.end(), [](std::string_view piece) { return !piece.empty(); });
    const std::size_t count = TakeDiskSpace(system_.faults, first->size());
    const auto at = static_cast<std::size_t>(position);
    if (content_.size() < at + count) content_.resize(at + count, '\0');
    content_.replace(at, count, first->substr(0, count));
    Changed();
    return count;
  }

  void Close() override {}

 private:
  void Changed() {
    const std::lock_guard<std::recursive_mutex> lock(system_.mutex);
    system_.files[path_] = content_;
  }

  MemoryFileSystem& system_;
  std::string path_;
};

class MemoryOutputFile : public OutputFile {
 public:
  // An appended file begins with the existing content.
  MemoryOutputFile(MemoryFileSystem& system, std::string path, ExistingFile existing, std::string content = {})
      : system_(system),
        path_(std::move(path)),
        existing_(existing),
        content_(std::move(content)),
        isNew_(!system.files.contains(path_)) {
    ++system_.openWrittenFiles;
  }
  ~MemoryOutputFile() override { --system_.openWrittenFiles; }

  std::size_t WriteSome(const void* source, std::size_t size) override {
    const std::size_t count = TakeDiskSpace(system_.faults, size);
    content_.append(static_cast<const char*>(source), count);
    return count;
  }

  bool IsNew() const override { return isNew_; }

  void Commit() override {
    const std::lock_guard<std::recursive_mutex> lock(system_.mutex);
    if (existing_ == ExistingFile::keep && system_.files.contains(path_)) throw SystemError(ErrorNumber::pathAccess);
    system_.files[path_] = content_;
  }

 private:
  MemoryFileSystem& system_;
  std::string path_;
  ExistingFile existing_;
  std::string content_;
  bool isNew_;
};

}  // namespace

std::unique_ptr<InputFile> MemoryFileSystem::OpenForReading(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string normal = Normal(path);
  if (const auto error = openErrors.find(normal); error != openErrors.end()) throw SystemError(error->second);
  const auto found = files.find(normal);
  if (found == files.end()) {
    throw SystemError(IsDirectory(std::string(DirectoryOf(normal))) ? ErrorNumber::fileNotFound
                                                                    : ErrorNumber::pathNotFound);
  }
  return std::make_unique<MemoryReadableFile<InputFile>>(found->second, ReadFailsAt(normal));
}

std::uint64_t MemoryFileSystem::ReadFailsAt(const std::string& path) const {
  const auto failing = readFailsAt.find(path);
  return failing == readFailsAt.end() ? std::numeric_limits<std::uint64_t>::max() : failing->second;
}

std::unique_ptr<OutputFile> MemoryFileSystem::CreateResultFile(const std::string& path, ExistingFile existing) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  if (faults.open) throw SystemError(*faults.open);
  const std::string normal = Normal(path);
  if (!IsDirectory(std::string(DirectoryOf(normal)))) throw SystemError(ErrorNumber::pathNotFound);
  return std::make_unique<MemoryOutputFile>(*this, normal, existing);
}

std::unique_ptr<OutputFile> MemoryFileSystem::OpenForAppending(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string normal = WritablePath(path);
  const auto found = files.find(normal);
  return std::make_unique<MemoryOutputFile>(*this, normal, ExistingFile::replace,
                                            found == files.end() ? std::string() : found->second);
}

std::unique_ptr<UpdatedFile> MemoryFileSystem::OpenForUpdating(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string normal = WritablePath(path);
  if (!files.contains(normal)) throw SystemError(ErrorNumber::fileNotFound);
  return std::make_unique<MemoryUpdatedFile>(*this, normal, ReadFailsAt(normal));
}

std::string MemoryFileSystem::WritablePath(const std::string& path) {
  const std::string normal = Normal(path);
  if (const auto error = openErrors.find(normal); error != openErrors.end()) throw SystemError(error->second);
  if (faults.open) throw SystemError(*faults.open);
  if (!IsDirectory(std::string(DirectoryOf(normal)))) throw SystemError(ErrorNumber::pathNotFound);
  return normal;
}

void MemoryFileSystem::SetFileSize(const std::string& path, std::uint64_t newLength) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  if (faults.setFileSize) throw SystemError::Saying(ErrorNumber::deviceError, "not set");
  files.at(Normal(path)).resize(static_cast<std::size_t>(newLength), '\0');
}

void MemoryFileSystem::RemoveFileQuietly(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  files.erase(Normal(path));
}

void MemoryFileSystem::CreateDirectoryQuietly(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string normal = Normal(path);
  if (IsDirectory(std::string(DirectoryOf(normal)))) directories.insert(normal);
}

std::vector<std::string> MemoryFileSystem::ListFiles(const std::string& directory) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string prefix = Normal(WithSeparator(directory));
  std::vector<std::string> names;
  for (const auto& [path, content] : files) {
    if (path.starts_with(prefix) && path.find('/', prefix.size()) == std::string::npos) {
      names.push_back(path.substr(prefix.size()));
    }
  }
  return names;
}

std::vector<std::string> MemoryFileSystem::ListDirectories(const std::string& directory) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  if (!IsDirectory(directory)) throw SystemError(ErrorNumber::pathNotFound);
  const std::string prefix = Normal(WithSeparator(directory));
  std::set<std::string> names;
  const auto add = [&](const std::string& path, bool isDirectory) {
    const std::size_t end = path.find('/', prefix.size());
    if (path.starts_with(prefix) && (isDirectory || end != std::string::npos)) {
      names.insert(path.substr(prefix.size(), end - prefix.size()));
    }
  };
  for (const auto& [path, content] : files) add(path, false);
  for (const std::string& path : directories) add(path, true);
  return {names.begin(), names.end()};
}

bool MemoryFileSystem::IsReadOnly(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  return readOnly.contains(Normal(path));
}

void MemoryFileSystem::ClearReadOnly(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  if (faults.open) throw SystemError(*faults.open);
  readOnly.erase(Normal(path));
}

bool MemoryFileSystem::IsDirectory(const std::string& path) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::string normal = Normal(path);
  if (normal.empty() || normal == "/" || directories.contains(normal)) return true;
  const std::string prefix = Normal(WithSeparator(normal));
  const auto after = files.lower_bound(prefix);
  return after != files.end() && after->first.starts_with(prefix);
}

DriveKind MemoryFileSystem::KindOfDrive(const std::string& /*directory*/) {
  return drive;
}

std::uint64_t MemoryFileSystem::FreeDiskBytes(const std::string& /*directory*/) {
  const std::lock_guard<std::recursive_mutex> lock(mutex);
  const std::uint64_t answer = freeBytes.front();
  if (freeBytes.size() > 1) freeBytes.erase(freeBytes.begin());
  return answer;
}

}  // namespace quiverion::test
