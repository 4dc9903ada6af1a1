#include <atomic>
#include <chrono>
#include <thread>

#include "platform/system_files.h"

namespace quiverion::test {
namespace {

// Errors of reading, writing, appending and changing in place.
TEST_F(SystemFiles, WhatIsNoFileIsRefused) {
  Put("locked.vas", "kept");
  fs::permissions(At("locked.vas"), fs::perms::owner_read);
  fs::create_directory(At("folder"));
  const struct {
    std::string path;
    int reading, writing;
  } cases[] = {{At("locked.vas"), 0, 75},
               {At("folder"), 75, 75},
               {At("folder/"), 75, 75},
               {At("missing/x.vas"), 76, 76},
               {At("missing\\x.vas"), 76, 76},
               {At("locked.vas/x.vas"), 76, 76},
               {"Q:\\data\\x.vas", 76, 76},
               {"q:x.vas", 76, 76},
               {At(std::string("x\0.vas", 6)), 75, 75}};
  for (const auto& [path, reading, writing] : cases) {
    EXPECT_EQ(OpenError(path), reading) << path;
    EXPECT_EQ(CreateError(path), writing) << path;
    EXPECT_EQ(AppendError(path), writing) << path;
    EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(path); }), writing) << path;
  }
  EXPECT_EQ(OpenError(At("gone.vas")), 53);
  EXPECT_EQ(OpenError(At(std::string(300, 'x'))), 75);
  EXPECT_FALSE(FileExists(*files_, At("folder")));
  EXPECT_TRUE(FileExists(*files_, At("locked.vas")));
  EXPECT_EQ(Get("locked.vas"), "kept");
  EXPECT_EQ(Names(), (NameList{"folder", "locked.vas"}));
}

TEST_F(SystemFiles, WhatWasAppendedStaysOnlyWithACommit) {
  Put("old.txt", "old ");
  const auto append = [&](const std::string& name, bool commit) {
    const auto file = files_->OpenForAppending(At(name));
    WriteAll(*file, "more ");
    WriteAll(*file, "lines ");
    if (commit) file->Commit();
  };
  for (const std::string name : {"old.txt", "new.txt"}) append(name, false);
  EXPECT_EQ(Get("old.txt"), "old ");
  EXPECT_EQ(Names(), NameList{"old.txt"});
  for (const std::string name : {"old.txt", "new.txt"}) append(name, true);
  EXPECT_EQ(Get("old.txt"), "old more lines ");
  EXPECT_EQ(Get("new.txt"), "more lines ");
}

// Truncating a failed append also removed what another process had appended meanwhile.
TEST_F(SystemFiles, AFailedAppendTakesBackOnlyItsOwn) {
  Put("w.txt", "old ");
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
  const auto writeAt = [&](std::uint64_t position) {  // some: one piece or several
    std::size_t count = file->WriteSomePiecesAt(position, pieces);
    if (count == 2) count += file->WriteSomePiecesAt(position + 2, std::span(pieces).last(1));
    EXPECT_EQ(count, 4u);
  };
  writeAt(2);
  EXPECT_EQ(file->Read(read + 2, 2), 1u) << "writing moves no read";
  EXPECT_EQ(std::string_view(read, 3), "789");
  EXPECT_EQ(Get("c.col"), "01abcd6789");
  writeAt(12);
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

// If two processes create the same file, the second must find it.
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

TEST_F(SystemFiles, DirectoriesAreListedWithoutFiles) {
  for (const char* name : {"b", "A"}) fs::create_directory(At(name));
  Put("file", "x");
  NameList names = files_->ListDirectories(root_);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (NameList{"A", "b"}));
  EXPECT_EQ(ErrorOf([&] { files_->ListDirectories(At("file")); }), 76);
  EXPECT_EQ(ErrorOf([&] { files_->ListDirectories("Q:\\"); }), 76);
}

TEST_F(SystemFiles, TheReadOnlyAttributeIsTakenOff) {
  Put("x.col", "x");
  fs::permissions(At("x.col"), fs::perms::owner_read);
  EXPECT_TRUE(files_->IsReadOnly(At("x.col")));
  EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(At("x.col")); }), 75);
  files_->ClearReadOnly(At("x.col"));
  EXPECT_FALSE(files_->IsReadOnly(At("x.col")));
  EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(At("x.col")); }), 0);
  EXPECT_FALSE(files_->IsReadOnly(At("gone")));
  EXPECT_EQ(ErrorOf([&] { files_->ClearReadOnly(At("gone")); }), 53);
}

}  // namespace
}  // namespace quiverion::test
