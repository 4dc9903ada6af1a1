#include "platform/files/overlay_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "support/memory_file_system.h"

namespace quiverion::test {
namespace {

void WriteAll(OutputFile& file, std::string_view bytes) {
  while (!bytes.empty()) bytes.remove_prefix(file.WriteSome(bytes.data(), bytes.size()));
  file.Commit();
}

// What a program does to a file, and whether that failed.
std::string Step(FileSystem& files, const std::string& path, unsigned action, const std::string& bytes) {
  try {
    switch (action % 7) {
      case 0:
        WriteAll(*files.CreateResultFile(path, ExistingFile::replace), bytes);
        break;
      case 1:
        WriteAll(*files.CreateResultFile(path, ExistingFile::keep), bytes);
        break;
      case 2:
        WriteAll(*files.OpenForAppending(path), bytes);
        break;
      case 3: {
        const auto file = files.OpenForUpdating(path);
        const std::string_view pieces[] = {"", bytes};
        file->WriteSomePiecesAt(action / 7 % 9, pieces);
        file->Close();
        break;
      }
      case 4:
        if (FileExists(files, path)) files.SetFileSize(path, action / 7 % 12);
        break;
      case 5:
        files.RemoveFileQuietly(path);
        break;
      default:
        files.CreateDirectoryQuietly("/neu");
    }
    return "done";
  } catch (const SystemError& error) {
    return ErrorText(error);
  }
}

std::string ContentOf(FileSystem& files, const std::string& path) {
  return FileExists(files, path) ? ReadWholeFile(files, path) : "(none)";
}

// The overlay and real files must not differ in anything that a program can see, and the files below must not change.
TEST(OverlayFiles, BehaveAsIfTheyWereTheFilesBelow) {
  std::mt19937 random(1);
  const std::string paths[] = {"/da/alt.col", "/da/alt.vas", "/da/neu.vas", "\\da\\neu.vas",
                               "/neu/x.vas",  "/nie/y.vas",  "/da/nur.txt"};
  for (int round = 0; round < 400; ++round) {
    MemoryFileSystem below;
    below.files = {{"/da/alt.col", "Kollektion"}, {"/da/alt.vas", "Feld"}, {"/da/nur.txt", "lesen"}};
    below.readOnly = {"/da/nur.txt"};
    MemoryFileSystem real = below;
    const auto before = below.files;
    OverlayFiles overlay(below);
    std::shared_ptr<const OverlayFiles::State> saved = overlay.Save();
    MemoryFileSystem realThen = real;
    for (int step = 0; step < 16; ++step) {
      if (const unsigned turn = random() % 8; turn == 0) {
        saved = overlay.Save();
        realThen = real;
      } else if (turn == 1) {
        overlay.Restore(*saved);
        real = realThen;
      }
      const std::string& path = paths[random() % std::size(paths)];
      const auto action = static_cast<unsigned>(random());
      const std::string bytes(1 + random() % 9, static_cast<char>('a' + step));
      // The memory files do not know that a read-only file refuses.
      if (path == "/da/nur.txt" && action % 7 != 6) continue;
      ASSERT_EQ(Step(overlay, path, action, bytes), Step(real, path, action, bytes)) << path << " " << action % 7;
      for (const std::string& each : paths) ASSERT_EQ(ContentOf(overlay, each), ContentOf(real, each)) << each;
      for (const char* const directory : {"/da", "/neu"}) {
        ASSERT_EQ(overlay.IsDirectory(directory), real.IsDirectory(directory));
        if (!real.IsDirectory(directory)) continue;
        auto names = overlay.ListFiles(directory), expected = real.ListFiles(directory);
        std::ranges::sort(names);
        std::ranges::sort(expected);
        ASSERT_EQ(names, expected);
      }
    }
    EXPECT_EQ(below.files, before);
  }
}

TEST(OverlayFiles, ListWhatWouldHaveHappened) {
  MemoryFileSystem below;
  below.files = {{"/a/alt.vas", "1"}, {"/a/alt.col", "2"}, {"/a/weg.vas", "3"}, {"/a/fest.vas", "4"}};
  below.readOnly = {"/a/fest.vas"};
  OverlayFiles overlay(below);
  WriteAll(*overlay.OpenForAppending("/a/alt.col"), "x");
  WriteAll(*overlay.CreateResultFile("/a/neu.vas", ExistingFile::replace), "x");
  WriteAll(*overlay.CreateResultFile("/a/alt.vas", ExistingFile::replace), "");
  WriteAll(*overlay.CreateResultFile("/a/kurz.tmp", ExistingFile::replace), "x");
  overlay.RemoveFileQuietly("/a/kurz.tmp");
  overlay.RemoveFileQuietly("/a/weg.vas");
  EXPECT_THROW(overlay.CreateResultFile("/a/fest.vas", ExistingFile::replace), SystemError);
  using Kind = FileChangeKind;
  const std::vector<FileChange> expected = {{Kind::extended, "/a/alt.col"},
                                            {Kind::created, "/a/neu.vas"},
                                            {Kind::replaced, "/a/alt.vas"},
                                            {Kind::removed, "/a/weg.vas"}};
  EXPECT_EQ(overlay.Changes(), expected);
  EXPECT_EQ(overlay.TakeJournal(), expected);
  WriteAll(*overlay.CreateResultFile("/a/neu.vas", ExistingFile::replace), "y");
  EXPECT_EQ(overlay.TakeJournal(), (std::vector<FileChange>{{Kind::replaced, "/a/neu.vas"}}));
  overlay.Clear();
  EXPECT_TRUE(overlay.Changes().empty());
  EXPECT_EQ(ContentOf(overlay, "/a/weg.vas"), "3");
}

// What nobody reads needs no memory, but is listed.
TEST(OverlayFiles, KeepOnlyTheContentsThatAreRead) {
  MemoryFileSystem below;
  below.files = {{"/a/lang.txt", "12"}};
  OverlayFiles overlay(below);
  overlay.KeepContentsOf([](const std::string& path) { return path.ends_with(".col"); });
  WriteAll(*overlay.CreateResultFile("/a/neu.vas", ExistingFile::replace), "bytes");
  WriteAll(*overlay.OpenForAppending("/a/lang.txt"), "345");
  WriteAll(*overlay.CreateResultFile("/a/neu.col", ExistingFile::replace), "bytes");
  EXPECT_EQ(overlay.Changes().size(), 3u);
  EXPECT_EQ(overlay.OpenForReading("/a/lang.txt")->Size(), 5u);
  EXPECT_THROW(ContentOf(overlay, "/a/neu.vas"), SystemError);
  EXPECT_EQ(ContentOf(overlay, "/a/neu.col"), "bytes");
}

}  // namespace
}  // namespace quiverion::test
