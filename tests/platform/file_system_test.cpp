#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/file_system.h"
#include "platform/text.h"
#include "support/error_of.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;

class SystemFiles : public testing::Test {
 protected:
  SystemFiles() {
    std::string pattern = (fs::temp_directory_path() / "quiverion-test-XXXXXX").string();
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
    return ErrorOf([&] { files_->CreateResultFile(path); });
  }

  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  std::string root_;
};

using NameList = std::vector<std::string>;

TEST_F(SystemFiles, AResultAppearsOnlyWithItsCommit) {
  {
    const auto file = files_->CreateResultFile(At("new.vas"));
    WriteAll(*file, "half");
    EXPECT_FALSE(fs::exists(At("new.vas")));
    EXPECT_EQ(Names().size(), 1u) << "the temporary file lies beside its place";
  }
  EXPECT_EQ(Names(), NameList{});
  const auto file = files_->CreateResultFile(At("new.vas"));
  WriteAll(*file, "whole");
  file->Commit();
  EXPECT_EQ(Get("new.vas"), "whole");
  EXPECT_EQ(Names(), NameList{"new.vas"});
}

TEST_F(SystemFiles, AnOldFileStaysUntilTheCommitReplacesIt) {
  Put("old.vas", "a longer measurement");
  { WriteAll(*files_->CreateResultFile(At("old.vas")), "part"); }
  EXPECT_EQ(Get("old.vas"), "a longer measurement");
  const auto file = files_->CreateResultFile(At("old.vas"));
  WriteAll(*file, "new");
  EXPECT_EQ(Get("old.vas"), "a longer measurement");
  file->Commit();
  EXPECT_EQ(Get("old.vas"), "new");
  EXPECT_EQ(Names(), NameList{"old.vas"});
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
  for (const auto& [path, number] : cases) EXPECT_EQ(CreateError(path), number) << path;
  EXPECT_EQ(Get("locked.vas"), "kept");
  EXPECT_EQ(Names(), (NameList{"folder", "locked.vas", "pipe"}));
}

TEST_F(SystemFiles, ALinkIsReplacedButWhatItLeadsToIsKept) {
  Put("original.vas", "kept");
  fs::create_symlink("original.vas", At("link.vas"));
  fs::create_symlink("gone", At("dangling.vas"));
  fs::create_directory(At("folder"));
  fs::create_symlink("folder", At("linked.vas"));
  for (const std::string name : {"link.vas", "dangling.vas"}) {
    const auto file = files_->CreateResultFile(At(name));
    WriteAll(*file, "new");
    file->Commit();
    EXPECT_EQ(Get(name), "new");
  }
  EXPECT_EQ(Get("original.vas"), "kept");
  EXPECT_EQ(CreateError(At("linked.vas")), 75);
  EXPECT_EQ(Names(), (NameList{"dangling.vas", "folder", "link.vas", "linked.vas", "original.vas"}));
}

TEST_F(SystemFiles, ACommitThatFailsLeavesNothing) {
  EXPECT_EQ(ErrorOf([&] {
              const auto file = files_->CreateResultFile(At(std::string(300, 'x')));
              WriteAll(*file, "content");
              file->Commit();
            }),
            75);
  EXPECT_EQ(Names(), NameList{});
  const std::string longest(255, 'x');  // the temporary name is not built from it
  const auto file = files_->CreateResultFile(At(longest));
  file->Commit();
  EXPECT_EQ(Names(), NameList{longest});
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

TEST_F(SystemFiles, ReadsTheBytesAndTellsTheSize) {
  std::string content(100000, '\0');
  for (std::size_t k = 0; k < content.size(); ++k) content[k] = static_cast<char>(k * 7);
  Put("Größe.vas", content);
  EXPECT_EQ(ReadWholeFile(*files_, At("Größe.vas")), content);
  Put("empty", "");
  EXPECT_EQ(ReadWholeFile(*files_, At("empty")), "");
  const auto file = files_->OpenForReading(At("Größe.vas"));
  EXPECT_EQ(file->Size(), content.size());
  std::string part(70000, '\0');
  EXPECT_EQ(file->Read(part.data(), 70000), 70000u);
  EXPECT_EQ(file->Read(part.data(), 70000), 30000u);
  EXPECT_EQ(part.substr(0, 30000), content.substr(70000));
  EXPECT_EQ(file->Read(part.data(), 1), 0u);
}

TEST_F(SystemFiles, ReadsAndWritesSeveralPiecesInTheirOrder) {
  for (const std::size_t count : {1u, 5u, 64u, 65u, 200u}) {  // more than the system takes at once
    std::vector<std::string> pieces(count);
    std::string all;
    for (std::size_t k = 0; k < count; ++k) {
      pieces[k].assign(k + 1 == count ? 5 : k % 4 * 700, static_cast<char>('0' + k % 64));
      all += pieces[k];
    }
    const auto output = files_->CreateResultFile(At("pieces"));
    std::vector<std::string_view> views(pieces.begin(), pieces.end());
    for (std::span<std::string_view> rest = views; !rest.empty();) {
      std::size_t written = rest.front().empty() ? 0 : output->WriteSomePieces(rest);
      while (!rest.empty() && written >= rest.front().size()) {
        written -= rest.front().size();
        rest = rest.subspan(1);
      }
      if (!rest.empty()) rest.front().remove_prefix(written);
    }
    output->Commit();
    ASSERT_TRUE(Get("pieces") == all) << count;

    for (const std::size_t missing : {0u, 1u, 3u}) {  // the file ends where the pieces do, or before
      Put("pieces", all.substr(missing));
      for (std::string& piece : pieces) piece.assign(piece.size(), '?');
      const std::vector<std::span<char>> places(pieces.begin(), pieces.end());
      EXPECT_EQ(files_->OpenForReading(At("pieces"))->ReadPieces(places), all.size() - missing);
      std::string read;
      for (const std::string& piece : pieces) read += piece;
      EXPECT_TRUE(read == all.substr(missing) + std::string(missing, '?')) << count;
    }
  }
}

TEST_F(SystemFiles, BothSeparatorsLeadToTheSameFile) {
  CreatePathDirectories(*files_, At("a\\b/c\\x.vas"));
  EXPECT_TRUE(fs::is_directory(At("a/b/c")));
  EXPECT_TRUE(files_->IsDirectory(At("a\\b")));
  const auto file = files_->CreateResultFile(At("a\\b\\c\\x.vas"));
  WriteAll(*file, "here");
  file->Commit();
  EXPECT_EQ(Get("a/b/c/x.vas"), "here");
  EXPECT_EQ(ReadWholeFile(*files_, At("a/b\\c/x.vas")), "here");
  EXPECT_EQ(Names(), NameList{"a"});
}

TEST_F(SystemFiles, ListsOrdinaryFilesOnly) {
  Put("b.vas", "");
  Put("\xFC.vas", "");  // no UTF-8: passes through
  fs::create_directory(At("folder"));
  fs::create_symlink("b.vas", At("link.vas"));
  fs::create_symlink("folder", At("linked folder"));
  fs::create_symlink("gone", At("dangling"));
  ASSERT_EQ(::mkfifo(At("pipe").c_str(), 0666), 0);
  NameList names = files_->ListFiles(root_);
  std::sort(names.begin(), names.end(), FileNameLess);
  EXPECT_EQ(names, (NameList{"b.vas", "link.vas", "\xFC.vas"}));
  EXPECT_EQ(OpenError(At("\xFC.vas")), 0);
  EXPECT_EQ(ErrorOf([&] { files_->ListFiles(At("gone/deep")); }), 76);
}

TEST_F(SystemFiles, KnowsItsDrive) {
  EXPECT_EQ(files_->KindOfDrive(root_), DriveKind::other);
  EXPECT_GT(files_->FreeDiskBytes(root_), 0u);
  EXPECT_EQ(files_->FreeDiskBytes(At("gone")), 0u);
  EXPECT_FALSE(files_->IsDirectory("C:\\"));
  EXPECT_FALSE(files_->IsDirectory(At("gone")));
}

}  // namespace
}  // namespace quiverion::test
