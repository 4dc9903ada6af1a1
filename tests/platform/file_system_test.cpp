#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "platform/file_system.h"
#include "platform/text.h"
#include "support/error_of.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;

class SystemFiles : public testing::Test {
 protected:
  SystemFiles() {
    std::string pattern = (fs::temp_directory_path() / ("quiverion-test-" + std::string(6, 'X'))).string();
    root_ = ::mkdtemp(pattern.data());
  }
  ~SystemFiles() override {
    fs::permissions(root_, fs::perms::owner_all);
    fs::remove_all(root_);
  }

  std::string At(const std::string& name) const { return root_ + "/" + name; }

  void Put(const std::string& name, const std::string& content) const {
    std::ofstream(At(name), std::ios::binary) << content;
  }

  std::string Get(const std::string& name) const {
    std::ifstream file(At(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // Everything in the directory, the temporary files included.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(root_)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  void WriteAll(OutputFile& file, std::string_view bytes) const {
    while (!bytes.empty()) bytes.remove_prefix(file.WriteSome(bytes.data(), bytes.size()));
  }

  int OpenError(const std::string& path) {
    return ErrorOf([&] { files_->OpenForReading(path); });
  }
  int CreateError(const std::string& path) {
    return ErrorOf([&] { files_->CreateResultFile(path, ExistingFile::replace); });
  }
  int AppendError(const std::string& path) {
    return ErrorOf([&] { files_->OpenForAppending(path); });
  }

  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  std::string root_;
};

using NameList = std::vector<std::string>;

// A private file became one for everybody when it was saved again, and the administrator's when he did it.
TEST_F(SystemFiles, AReplacedFileKeepsItsOwnerAndPermissions) {
  for (const unsigned mode : {0600u, 0640u, 0666u}) {
    Put("x.vas", "old");
    fs::permissions(At("x.vas"), fs::perms{mode});
    const bool given = ::chown(At("x.vas").c_str(), 1234, 4321) == 0;  // only the administrator can
    const auto file = files_->CreateResultFile(At("x.vas"), ExistingFile::replace);
    WriteAll(*file, "new");
    file->Commit();
    EXPECT_EQ(Get("x.vas"), "new");
    EXPECT_EQ(fs::status(At("x.vas")).permissions(), fs::perms{mode});
    struct stat info {};
    ASSERT_EQ(::stat(At("x.vas").c_str(), &info), 0);
    EXPECT_TRUE(!given || (info.st_uid == 1234 && info.st_gid == 4321));
  }
}

TEST_F(SystemFiles, AResultIsNotWrittenOverWhatItMayNotReplace) {
  Put("locked.vas", "kept");
  fs::permissions(At("locked.vas"), fs::perms::owner_read);
  fs::create_directory(At("folder"));
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0666), 0);
  const std::pair<std::string, int> cases[] = {{At("locked.vas"), 75},    {At("folder"), 75},
                                               {At("folder/"), 75},       {At("pipe"), 75},
                                               {At("missing/x.vas"), 76}, {At("locked.vas/x.vas"), 76},
                                               {"C:\\data\\x.vas", 76},   {At(std::string("x\0.vas", 6)), 75},
                                               {At("missing\\x.vas"), 76}};
  for (const auto& [path, number] : cases) {
    EXPECT_EQ(CreateError(path), number) << path;
    EXPECT_EQ(AppendError(path), number) << path;
    EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(path); }), number) << path;
  }
  EXPECT_EQ(Get("locked.vas"), "kept");
  EXPECT_EQ(Names(), (NameList{"folder", "locked.vas", "pipe"}));
}

TEST_F(SystemFiles, WhatWasAppendedStaysOnlyWithACommit) {
  Put("old.txt", "old ");
  fs::create_symlink("old.txt", At("link.txt"));
  fs::create_symlink("gone.txt", At("dangling.txt"));
  const auto append = [&](const std::string& name, bool commit) {
    const auto file = files_->OpenForAppending(At(name));
    WriteAll(*file, "more ");
    WriteAll(*file, "lines ");
    if (commit) file->Commit();
  };
  for (const std::string name : {"old.txt", "new.txt", "link.txt"}) append(name, false);
  EXPECT_EQ(Get("old.txt"), "old ");
  EXPECT_EQ(Names(), (NameList{"dangling.txt", "link.txt", "old.txt"}));
  for (const std::string name : {"old.txt", "new.txt", "link.txt"}) append(name, true);
  EXPECT_EQ(Get("old.txt"), "old more lines more lines ");
  EXPECT_EQ(Get("new.txt"), "more lines ");
  EXPECT_TRUE(fs::is_symlink(At("link.txt")));
  EXPECT_EQ(AppendError(At("dangling.txt")), 75);
}

// What another process had appended meanwhile was cut off with what had failed, and a file that had taken the place.
TEST_F(SystemFiles, AFailedAppendTakesBackOnlyItsOwn) {
  Put("w.txt", "old ");
  Put("other.bin", "precious");
  auto failing = files_->OpenForAppending(At("w.txt"));
  WriteAll(*failing, "half");
  std::thread other([&] {
    const auto file = files_->OpenForAppending(At("w.txt"));
    EXPECT_FALSE(file->IsNew());
    WriteAll(*file, "theirs");
    file->Commit();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  failing.reset();
  other.join();
  EXPECT_EQ(Get("w.txt"), "old theirs");
  for (const std::string name : {"w.txt", "new.txt"}) {
    failing = files_->OpenForAppending(At(name));
    WriteAll(*failing, "half");
    fs::remove(At(name));
    fs::create_symlink("other.bin", At(name));
    failing.reset();
    EXPECT_EQ(Get("other.bin"), "precious");
    EXPECT_TRUE(fs::is_symlink(At(name)));
  }
}

TEST_F(SystemFiles, AFileIsReadAndChangedInPlace) {
  EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(At("c.col")); }), 53);
  EXPECT_TRUE(Names().empty());
  Put("c.col", "0123456789");
  const auto file = files_->OpenForUpdating(At("c.col"));
  EXPECT_EQ(file->Size(), 10u);
  EXPECT_EQ(file->FreeDiskBytes(), files_->FreeDiskBytes(root_));
  char read[4] = {};
  file->Seek(7);
  EXPECT_EQ(file->Read(read, 2), 2u);
  const std::vector<std::string_view> pieces = {"", "ab", "", "cd"};
  EXPECT_EQ(file->WriteSomePiecesAt(2, pieces), 4u);
  EXPECT_EQ(file->Read(read + 2, 2), 1u) << "writing moves no read";
  EXPECT_EQ(std::string_view(read, 3), "789");
  EXPECT_EQ(Get("c.col"), "01abcd6789");
  EXPECT_EQ(file->WriteSomePiecesAt(12, pieces), 4u);
  EXPECT_EQ(Get("c.col"), std::string("01abcd6789\0\0abcd", 16));
  files_->SetFileSize(At("c.col"), 3);
  file->Close();
  EXPECT_EQ(Get("c.col"), "01a");
  files_->RemoveFileQuietly(At("c.col"));
  try {
    files_->SetFileSize(At("c.col"), 3);
    ADD_FAILURE() << "there is no file";
  } catch (const SystemError& error) {
    EXPECT_EQ(error.Description(), "Fehler beim Öffnen der Datei zum Einstellen der neuen Dateigröße!");
  }
  files_->RemoveFileQuietly(At("c.col"));
  Put("real", "x");
  fs::create_symlink("real", At("link"));
  files_->RemoveFileQuietly(At("link"));
  EXPECT_EQ(Names(), NameList{"link"}) << "what it leads to is gone";
  fs::remove(At("link"));
  EXPECT_TRUE(Names().empty());
}

TEST_F(SystemFiles, AFileIsUpdatedByOneAtATime) {
  for (const bool removed : {false, true}) {
    Put("c.col", "12");
    auto first = files_->OpenForUpdating(At("c.col"));
    std::atomic<bool> opened = false;
    std::thread other([&] {
      const int error = ErrorOf([&] { EXPECT_EQ(files_->OpenForUpdating(At("c.col"))->Size(), 5u); });
      EXPECT_EQ(error, removed ? 53 : 0);
      opened = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_FALSE(opened);
    const std::vector<std::string_view> pieces = {"345"};
    if (removed) {
      files_->RemoveFileQuietly(At("c.col"));
    } else {
      first->WriteSomePiecesAt(2, pieces);
    }
    first.reset();
    other.join();
  }
}

// Where two begin the same file, the second must find it.
TEST_F(SystemFiles, AResultDoesNotReplaceWhatAppearedMeanwhile) {
  const auto file = files_->CreateResultFile(At("c.col"), ExistingFile::keep);
  WriteAll(*file, "second");
  Put("c.col", "first");
  EXPECT_EQ(ErrorOf([&] { file->Commit(); }), 75);
  EXPECT_EQ(Get("c.col"), "first");
  fs::remove(At("c.col"));
  file->Commit();
  EXPECT_EQ(Get("c.col"), "second");
}

TEST_F(SystemFiles, WhatIsNoReadableFileIsRefused) {
  fs::create_directory(At("folder"));
  Put("file", "x");
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0666), 0);  // nobody writes: opening it must not wait
  fs::create_symlink("loop", At("loop"));
  const std::pair<std::string, int> cases[] = {{At("folder"), 75},
                                               {At("pipe"), 75},
                                               {At("gone.vas"), 53},
                                               {At("gone/x.vas"), 76},
                                               {At("file/x.vas"), 76},
                                               {"C:\\x.vas", 76},
                                               {"z:x.vas", 76},
                                               {At(std::string("file\0", 5)), 75},
                                               {At("loop"), 75},
                                               {At("gone\\x.vas"), 76},
                                               {At(std::string(300, 'x')), 75}};
  for (const auto& [path, number] : cases) EXPECT_EQ(OpenError(path), number) << path;
  EXPECT_FALSE(FileExists(*files_, At("folder")));
  EXPECT_TRUE(FileExists(*files_, At("file")));
}

TEST_F(SystemFiles, BothSeparatorsLeadToTheSameFile) {
  CreatePathDirectories(*files_, At("a\\b/c\\x.vas"));
  EXPECT_TRUE(fs::is_directory(At("a/b/c")));
  EXPECT_TRUE(files_->IsDirectory(At("a\\b")));
  const auto file = files_->CreateResultFile(At("a\\b\\c\\x.vas"), ExistingFile::replace);
  WriteAll(*file, "here");
  file->Commit();
  EXPECT_EQ(Get("a/b/c/x.vas"), "here");
  EXPECT_EQ(ReadWholeFile(*files_, At("a/b\\c/x.vas")), "here");
  EXPECT_EQ(Names(), NameList{"a"});
}

TEST_F(SystemFiles, DirectoriesAreListedWithoutHiddenOnesAndFiles) {
  for (const char* name : {"b", "A", ".hidden"}) fs::create_directory(At(name));
  Put("file", "x");
  fs::create_directory_symlink(At("A"), At("link"));
  NameList names = files_->ListDirectories(root_);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (NameList{"A", "b", "link"}));
  EXPECT_EQ(ErrorOf([&] { files_->ListDirectories(At("file")); }), 76);
  EXPECT_EQ(ErrorOf([&] { files_->ListDirectories("C:\\"); }), 76);
}

TEST_F(SystemFiles, TheReadOnlyAttributeIsTakenOffAndAllOthersStay) {
  Put("x.col", "x");
  ::chmod(At("x.col").c_str(), 0540);
  EXPECT_TRUE(files_->IsReadOnly(At("x.col")));
  files_->ClearReadOnly(At("x.col"));
  EXPECT_FALSE(files_->IsReadOnly(At("x.col")));
  EXPECT_EQ(fs::status(At("x.col")).permissions(), fs::perms{0740});
  EXPECT_FALSE(files_->IsReadOnly(At("gone")));
  EXPECT_EQ(ErrorOf([&] { files_->ClearReadOnly(At("gone")); }), 53);
}

}  // namespace
}  // namespace quiverion::test
