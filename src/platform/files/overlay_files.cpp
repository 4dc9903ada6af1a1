#include "platform/files/overlay_files.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

// The same for both separators and, as on the system that ignores it, for upper and lower case.
std::string KeyOf(std::string path) {
  for (char& c : path) c = c == '\\' ? '/' : c;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return kPathSeparator == '\\' ? AsciiUpper(path) : path;
}

}  // namespace

// The bytes of a file: pieces that were written, and between them those of the file below.
class OverlayFiles::Content {
 public:
  Content() = default;
  Content(FileSystem& below, std::string path, std::uint64_t size)
      : below_(&below), path_(std::move(path)), size_(size), belowSize_(size) {}

  std::uint64_t Size() const { return size_; }

  // Of a result that nobody reads: its length alone.
  void ForgetBytes(std::uint64_t size) {
    size_ = size;
    isForgotten_ = true;
  }

  std::size_t ReadAt(std::uint64_t position, char* target, std::size_t size) {
    if (position >= size_) return 0;
    if (isForgotten_) throw SystemError(ErrorNumber::pathAccess);
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, size_ - position));
    ReadBelow(position, target, count);
    auto piece = pieces_.upper_bound(position);
    if (piece != pieces_.begin()) --piece;
    for (; piece != pieces_.end() && piece->first < position + count; ++piece) {
      const std::uint64_t begin = std::max(piece->first, position);
      const std::uint64_t end = std::min(piece->first + piece->second.size(), position + count);
      if (begin >= end) continue;
      std::memcpy(target + (begin - position), piece->second.data() + (begin - piece->first), end - begin);
    }
    return count;
  }

  void WriteAt(std::uint64_t position, std::string_view bytes) {
    size_ = std::max(size_, position + bytes.size());
    // A result grows by its last piece; whatever else overlaps gives way to the new bytes.
    auto last = pieces_.upper_bound(position);
    if (last != pieces_.begin() && std::prev(last)->first + std::prev(last)->second.size() == position &&
        (last == pieces_.end() || last->first >= position + bytes.size())) {
      std::prev(last)->second.append(bytes);
      return;
    }
    Cut(position, position + bytes.size());
    pieces_[position] = bytes;
  }

  void Resize(std::uint64_t size) {
    if (size < size_) Cut(size, size_);
    belowSize_ = std::min(belowSize_, size);
    size_ = size;
  }

 private:
  void ReadBelow(std::uint64_t position, char* target, std::size_t count) {
    std::memset(target, 0, count);
    if (below_ == nullptr || position >= belowSize_) return;
    const std::unique_ptr<InputFile> file = below_->OpenForReading(path_);
    file->Seek(position);
    file->Read(target, static_cast<std::size_t>(std::min<std::uint64_t>(count, belowSize_ - position)));
  }

  // No piece has bytes between `begin` and `end` any more.
  void Cut(std::uint64_t begin, std::uint64_t end) {
    auto piece = pieces_.upper_bound(begin);
    if (piece != pieces_.begin()) --piece;
    while (piece != pieces_.end() && piece->first < end) {
      const std::uint64_t pieceEnd = piece->first + piece->second.size();
      if (pieceEnd > end) pieces_[end] = piece->second.substr(static_cast<std::size_t>(end - piece->first));
      if (piece->first >= begin) {
        piece = pieces_.erase(piece);
        continue;
      }
      if (pieceEnd > begin) piece->second.resize(static_cast<std::size_t>(begin - piece->first));
      ++piece;
    }
  }

  FileSystem* below_ = nullptr;
  std::string path_;
  std::uint64_t size_ = 0;
  std::uint64_t belowSize_ = 0;
  bool isForgotten_ = false;
  std::map<std::uint64_t, std::string> pieces_;  // by position; they do not overlap
};

namespace {

// The reading side; `Base` is InputFile or UpdatedFile.
template <class Base>
class ContentFile : public Base {
 public:
  explicit ContentFile(std::shared_ptr<OverlayFiles::Content> content)
      : content_(std::move(content)), size_(content_->Size()) {}

  std::uint64_t Size() const override { return size_; }
  std::size_t Read(void* target, std::size_t size) override {
    const std::size_t count = content_->ReadAt(at_, static_cast<char*>(target), size);
    at_ += count;
    return count;
  }
  void Seek(std::uint64_t position) override { at_ = position; }

 protected:
  std::shared_ptr<OverlayFiles::Content> content_;

 private:
  std::uint64_t size_;
  std::uint64_t at_ = 0;
};

class ContentUpdatedFile : public ContentFile<UpdatedFile> {
 public:
  ContentUpdatedFile(std::shared_ptr<OverlayFiles::Content> content, std::uint64_t freeBytes)
      : ContentFile(std::move(content)), freeBytes_(freeBytes) {}

  std::uint64_t FreeDiskBytes() override { return freeBytes_; }
  std::size_t WriteSomePiecesAt(std::uint64_t position, std::span<const std::string_view> pieces) override {
    const std::string_view piece = FirstPiece(pieces);
    content_->WriteAt(position, piece);
    return piece.size();
  }
  void Close() override {}

 private:
  std::uint64_t freeBytes_;
};

class ContentOutputFile : public OutputFile {
 public:
  using Finish = std::function<void(const ContentOutputFile&)>;
  ContentOutputFile(bool isNew, bool keepsBytes, Finish finish)
      : isNew_(isNew), keepsBytes_(keepsBytes), finish_(std::move(finish)) {}

  std::size_t WriteSome(const void* source, std::size_t size) override {
    if (keepsBytes_) bytes_.append(static_cast<const char*>(source), size);
    size_ += size;
    return size;
  }
  bool IsNew() const override { return isNew_; }
  void Commit() override { finish_(*this); }

  void PutInto(OverlayFiles::Content& content) const {
    if (keepsBytes_) {
      content.WriteAt(content.Size(), bytes_);
    } else {
      content.ForgetBytes(content.Size() + size_);
    }
  }

 private:
  bool isNew_;
  bool keepsBytes_;
  Finish finish_;
  std::string bytes_;
  std::uint64_t size_ = 0;
};

}  // namespace

OverlayFiles::~OverlayFiles() = default;

OverlayFiles::Entry* OverlayFiles::Find(const std::string& path) {
  const auto found = entries_.find(KeyOf(path));
  return found == entries_.end() ? nullptr : &found->second;
}

OverlayFiles::Entry& OverlayFiles::EntryOf(const std::string& path) {
  const auto [place, isNew] = entries_.try_emplace(KeyOf(path));
  Entry& entry = place->second;
  if (isNew) entry = {path, FileExists(below_, path), false, false, nullptr, entries_.size()};
  return entry;
}

bool OverlayFiles::Exists(const std::string& path) {
  if (const Entry* const entry = Find(path)) return entry->content != nullptr;
  return FileExists(below_, path);
}

void OverlayFiles::RequireWritable(const std::string& path) {
  if (IsDirectory(path) || IsReadOnly(path)) throw SystemError(ErrorNumber::pathAccess);
  const std::string directory(DirectoryOf(path));
  if (!directory.empty() && !IsDirectory(directory)) throw SystemError(ErrorNumber::pathNotFound);
}

// The content of an existing file, for changes in place.
std::shared_ptr<OverlayFiles::Content> OverlayFiles::ContentToChange(const std::string& path) {
  Entry& entry = EntryOf(path);
  if (entry.content == nullptr) {
    entry.content = std::make_shared<Content>(below_, path, below_.OpenForReading(path)->Size());
    entry.inPlace = true;
  } else if (entry.isShared) {
    entry.content = std::make_shared<Content>(*entry.content);
  }
  entry.isShared = false;
  return entry.content;
}

std::shared_ptr<const OverlayFiles::State> OverlayFiles::Save() {
  for (auto& [key, entry] : entries_) entry.isShared = true;
  return std::make_shared<const State>(State{entries_, directories_, writable_});
}

void OverlayFiles::Restore(const State& state) {
  entries_ = state.entries;
  journal_.clear();
  directories_ = state.directories;
  writable_ = state.writable;
}

// A file that is gone again before anybody has asked leaves no note.
void OverlayFiles::Note(FileChangeKind kind, const std::string& path) {
  const auto same = [&](const FileChange& change) { return KeyOf(change.path) == KeyOf(path); };
  const auto noted = std::ranges::find_if(journal_, same);
  if (noted == journal_.end()) {
    journal_.push_back({kind, path});
  } else if (kind == FileChangeKind::removed && noted->kind == FileChangeKind::created) {
    journal_.erase(noted);
  } else if (kind == FileChangeKind::removed || noted->kind == FileChangeKind::removed) {
    noted->kind = kind == FileChangeKind::created ? FileChangeKind::replaced : kind;
  }
}

std::vector<FileChange> OverlayFiles::TakeJournal() {
  return std::exchange(journal_, {});
}

std::vector<FileChange> OverlayFiles::Changes() const {
  std::vector<const Entry*> entries;
  for (const auto& [key, entry] : entries_) {
    if (entry.content != nullptr || entry.existedBelow) entries.push_back(&entry);
  }
  std::ranges::sort(entries, {}, &Entry::order);
  std::vector<FileChange> changes;
  for (const Entry* const entry : entries) {
    const FileChangeKind kind = entry->content == nullptr ? FileChangeKind::removed
                                : !entry->existedBelow    ? FileChangeKind::created
                                : entry->inPlace          ? FileChangeKind::extended
                                                          : FileChangeKind::replaced;
    changes.push_back({kind, entry->path});
  }
  return changes;
}

void OverlayFiles::Clear() {
  entries_.clear();
  journal_.clear();
  directories_.clear();
  writable_.clear();
}

std::unique_ptr<InputFile> OverlayFiles::OpenForReading(const std::string& path) {
  const Entry* const entry = Find(path);
  if (entry == nullptr) {
    // The files below do not know the directory.
    if (directories_.contains(KeyOf(std::string(DirectoryOf(path))))) throw SystemError(ErrorNumber::fileNotFound);
    return below_.OpenForReading(path);
  }
  if (entry->content == nullptr) throw SystemError(ErrorNumber::fileNotFound);
  return std::make_unique<ContentFile<InputFile>>(entry->content);
}

std::unique_ptr<OutputFile> OverlayFiles::CreateResultFile(const std::string& path, ExistingFile existing) {
  RequireWritable(path);
  const auto finish = [this, path, existing](const ContentOutputFile& file) {
    const bool exists = Exists(path);
    if (existing == ExistingFile::keep && exists) throw SystemError(ErrorNumber::pathAccess);
    Note(exists ? FileChangeKind::replaced : FileChangeKind::created, path);
    Entry& entry = EntryOf(path);
    entry.inPlace = entry.isShared = false;
    entry.content = std::make_shared<Content>();
    file.PutInto(*entry.content);
  };
  return std::make_unique<ContentOutputFile>(!Exists(path), KeepsContent(path), finish);
}

std::unique_ptr<OutputFile> OverlayFiles::OpenForAppending(const std::string& path) {
  RequireWritable(path);
  const bool isNew = !Exists(path);
  const auto finish = [this, path, isNew](const ContentOutputFile& file) {
    Note(isNew ? FileChangeKind::created : FileChangeKind::extended, path);
    if (isNew) EntryOf(path).content = std::make_shared<Content>();
    file.PutInto(*ContentToChange(path));
  };
  return std::make_unique<ContentOutputFile>(isNew, KeepsContent(path), finish);
}

std::unique_ptr<UpdatedFile> OverlayFiles::OpenForUpdating(const std::string& path) {
  RequireWritable(path);
  if (!Exists(path)) throw SystemError(ErrorNumber::fileNotFound);
  Note(FileChangeKind::extended, path);
  return std::make_unique<ContentUpdatedFile>(ContentToChange(path), FreeDiskBytes(std::string(DirectoryOf(path))));
}

void OverlayFiles::SetFileSize(const std::string& path, std::uint64_t newLength) {
  ContentToChange(path)->Resize(newLength);
}

void OverlayFiles::RemoveFileQuietly(const std::string& path) {
  if (!Exists(path)) return;
  Note(FileChangeKind::removed, path);
  EntryOf(path).content = nullptr;
}

void OverlayFiles::CreateDirectoryQuietly(const std::string& path) {
  const std::string above(DirectoryOf(path));
  if (!IsDirectory(path) && !Exists(path) && (above.empty() || IsDirectory(above))) directories_.insert(KeyOf(path));
}

std::vector<std::string> OverlayFiles::ListFiles(const std::string& directory) {
  std::vector<std::string> names;
  if (!directories_.contains(KeyOf(directory))) names = below_.ListFiles(directory);
  const std::string home = KeyOf(directory);
  for (const auto& [key, entry] : entries_) {
    if (KeyOf(std::string(DirectoryOf(entry.path))) != home) continue;
    const std::string name(FileNameOf(entry.path));
    std::erase_if(names, [&](const std::string& each) { return KeyOf(each) == KeyOf(name); });
    if (entry.content != nullptr) names.push_back(name);
  }
  return names;
}

std::vector<std::string> OverlayFiles::ListDirectories(const std::string& directory) {
  std::vector<std::string> names;
  if (!directories_.contains(KeyOf(directory))) names = below_.ListDirectories(directory);
  for (const std::string& created : directories_) {
    if (DirectoryOf(created) == KeyOf(directory)) names.emplace_back(FileNameOf(created));
  }
  return names;
}

bool OverlayFiles::IsDirectory(const std::string& path) {
  return directories_.contains(KeyOf(path)) || below_.IsDirectory(path);
}

bool OverlayFiles::IsReadOnly(const std::string& path) {
  return Find(path) == nullptr && !writable_.contains(KeyOf(path)) && below_.IsReadOnly(path);
}

void OverlayFiles::ClearReadOnly(const std::string& path) {
  if (IsReadOnly(path)) writable_.insert(KeyOf(path));
}

}  // namespace quiverion
