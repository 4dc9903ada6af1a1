#include "support/memory_file_system.h"

#include <algorithm>
#include <cstring>

#include "platform/paths.h"

namespace quiverion::test {
namespace {

std::string Normal(const std::string& path) {
  std::string normal = path;
  std::replace(normal.begin(), normal.end(), '\\', '/');
  return normal;
}

class MemoryInputFile : public InputFile {
 public:
  MemoryInputFile(std::string content, std::uint64_t failsAt) : content_(std::move(content)), failsAt_(failsAt) {}

  std::uint64_t Size() const override { return content_.size(); }

  std::size_t Read(void* target, std::size_t size) override {
    const std::size_t count = std::min(size, content_.size() - at_);
    if (at_ + count > failsAt_) throw SystemError(ErrorNumber::deviceError);
    if (count > 0) std::memcpy(target, content_.data() + at_, count);
    at_ += count;
    return count;
  }

 private:
  std::string content_;
  std::size_t at_ = 0;
  std::uint64_t failsAt_;
};

class MemoryOutputFile : public OutputFile {
 public:
  // An appended file begins with the content that is there.
  MemoryOutputFile(MemoryFileSystem& system, std::string path, std::string content = {})
      : system_(system), path_(std::move(path)), content_(std::move(content)) {
    ++system_.temporaryFiles;
  }
  ~MemoryOutputFile() override { --system_.temporaryFiles; }

  std::size_t WriteSome(const void* source, std::size_t size) override {
    auto& left = system_.faults.diskSize;
    if (left == 0) throw SystemError(system_.faults.write);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, left));
    content_.append(static_cast<const char*>(source), count);
    left -= count;
    return count;
  }

  void Commit() override {
    if (system_.faults.commit && system_.faults.commitFailures > 0) {
      --system_.faults.commitFailures;
      throw SystemError(*system_.faults.commit);
    }
    system_.files[path_] = content_;
  }

 private:
  MemoryFileSystem& system_;
  std::string path_;
  std::string content_;
};

}  // namespace

std::unique_ptr<InputFile> MemoryFileSystem::OpenForReading(const std::string& path) {
  const std::string normal = Normal(path);
  if (const auto error = openErrors.find(normal); error != openErrors.end()) throw SystemError(error->second);
  const auto found = files.find(normal);
  if (found == files.end()) {
    throw SystemError(IsDirectory(std::string(DirectoryOf(normal))) ? ErrorNumber::fileNotFound
                                                                    : ErrorNumber::pathNotFound);
  }
  const auto failing = readFailsAt.find(normal);
  const std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
  return std::make_unique<MemoryInputFile>(found->second, failing == readFailsAt.end() ? never : failing->second);
}

std::unique_ptr<OutputFile> MemoryFileSystem::CreateResultFile(const std::string& path) {
  if (faults.open) throw SystemError(*faults.open);
  const std::string normal = Normal(path);
  if (!IsDirectory(std::string(DirectoryOf(normal)))) throw SystemError(ErrorNumber::pathNotFound);
  return std::make_unique<MemoryOutputFile>(*this, normal);
}

std::unique_ptr<OutputFile> MemoryFileSystem::OpenForAppending(const std::string& path) {
  const std::string normal = Normal(path);
  if (const auto error = openErrors.find(normal); error != openErrors.end()) throw SystemError(error->second);
  if (faults.open) throw SystemError(*faults.open);
  if (!IsDirectory(std::string(DirectoryOf(normal)))) throw SystemError(ErrorNumber::pathNotFound);
  const auto found = files.find(normal);
  return std::make_unique<MemoryOutputFile>(*this, normal, found == files.end() ? std::string() : found->second);
}

void MemoryFileSystem::CreateDirectoryQuietly(const std::string& path) {
  const std::string normal = Normal(path);
  if (IsDirectory(std::string(DirectoryOf(normal)))) directories.insert(normal);
}

std::vector<std::string> MemoryFileSystem::ListFiles(const std::string& directory) {
  const std::string prefix = WithSeparator(Normal(directory));
  std::vector<std::string> names;
  for (const auto& [path, content] : files) {
    if (path.starts_with(prefix) && path.find('/', prefix.size()) == std::string::npos) {
      names.push_back(path.substr(prefix.size()));
    }
  }
  return names;
}

bool MemoryFileSystem::IsDirectory(const std::string& path) {
  const std::string normal = Normal(path);
  if (normal.empty() || normal == "/" || directories.contains(normal)) return true;
  const std::string prefix = WithSeparator(normal);
  const auto after = files.lower_bound(prefix);
  return after != files.end() && after->first.starts_with(prefix);
}

DriveKind MemoryFileSystem::KindOfDrive(const std::string& /*directory*/) {
  return drive;
}

std::uint64_t MemoryFileSystem::FreeDiskBytes(const std::string& /*directory*/) {
  const std::uint64_t answer = freeBytes.front();
  if (freeBytes.size() > 1) freeBytes.erase(freeBytes.begin());
  return answer;
}

}  // namespace quiverion::test
