// Owners, permissions, links and pipes.
#include <sys/stat.h>
#include <unistd.h>

#include "platform/system_files.h"

namespace quiverion::test {
namespace {

// Saving a private file again made it readable for everybody, and changed its owner when done by the administrator.
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

// A different file at the same path was truncated or deleted.
TEST_F(SystemFiles, AFailedAppendLeavesAloneWhatHasTakenThePlace) {
  Put("w.txt", "old ");
  Put("other.bin", "precious");
  for (const std::string name : {"w.txt", "new.txt"}) {
    auto failing = files_->OpenForAppending(At(name));
    WriteAll(*failing, "half");
    fs::remove(At(name));
    fs::create_symlink("other.bin", At(name));
    failing.reset();
    EXPECT_EQ(Get("other.bin"), "precious");
    EXPECT_TRUE(fs::is_symlink(At(name)));
  }
}

TEST_F(SystemFiles, ALinkStandsForWhatItLeadsTo) {
  Put("old.txt", "old ");
  fs::create_symlink("old.txt", At("link.txt"));
  fs::create_symlink("gone.txt", At("dangling.txt"));
  EXPECT_EQ(AppendError(At("dangling.txt")), 75);
  files_->OpenForAppending(At("link.txt"));
  const auto file = files_->OpenForAppending(At("link.txt"));
  WriteAll(*file, "more");
  file->Commit();
  EXPECT_EQ(Get("old.txt"), "old more");
  EXPECT_TRUE(fs::is_symlink(At("link.txt")));
  files_->RemoveFileQuietly(At("link.txt"));
  EXPECT_EQ(Names(), (NameList{"dangling.txt", "link.txt"})) << "what it leads to is gone";
}

TEST_F(SystemFiles, PipesAndLoopsAreNoFiles) {
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0666), 0);  // nobody writes: opening it must not wait
  fs::create_symlink("loop", At("loop"));
  for (const std::string name : {"pipe", "loop"}) EXPECT_EQ(OpenError(At(name)), 75) << name;
  EXPECT_EQ(CreateError(At("pipe")), 75);
  EXPECT_EQ(AppendError(At("pipe")), 75);
  EXPECT_EQ(ErrorOf([&] { files_->OpenForUpdating(At("pipe")); }), 75);
}

TEST_F(SystemFiles, HiddenDirectoriesAreNotListedButLinksToDirectoriesAre) {
  for (const char* name : {"A", ".hidden"}) fs::create_directory(At(name));
  fs::create_directory_symlink(At("A"), At("link"));
  NameList names = files_->ListDirectories(root_);
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (NameList{"A", "link"}));
}

TEST_F(SystemFiles, OtherPermissionsStayWithoutTheReadOnlyAttribute) {
  Put("x.col", "x");
  ::chmod(At("x.col").c_str(), 0540);
  files_->ClearReadOnly(At("x.col"));
  EXPECT_EQ(fs::status(At("x.col")).permissions(), fs::perms{0740});
}

}  // namespace
}  // namespace quiverion::test
