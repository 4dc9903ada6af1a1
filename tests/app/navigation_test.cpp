#include "app/navigation.h"

#include <gtest/gtest.h>

#include "support/memory_file_system.h"
#include "support/slashes.h"

namespace quiverion {
namespace {

using test::WithSlashes;

std::string Drawn(const std::vector<DirectoryLine>& lines) {
  std::string text;
  for (const DirectoryLine& line : lines) {
    text += std::string(static_cast<std::size_t>(line.depth), ' ') + (line.open ? "*" : "") + line.name + "=" +
            line.path + "|";
  }
  return WithSlashes(text);
}

TEST(Navigation, TheDirectoryListLeadsFromTheRootToTheSubdirectories) {
  EXPECT_EQ(Drawn(DirectoryLines("/", {"b", "A"})), "*/=/| A=/A| b=/b|");
  EXPECT_EQ(Drawn(DirectoryLines("/x/y", {"z"})), "*/=/| *x=/x|  *y=/x/y|   z=/x/y/z|");
  EXPECT_EQ(Drawn(DirectoryLines("/x/", {"z"})), "*/=/| *x=/x|  z=/x/z|");
  EXPECT_EQ(Drawn(DirectoryLines("C:\\x", {})), WithSlashes(R"(*C:\=C:\| *x=C:\x|)"));
  const std::string share = R"(\\s\mess)";
  EXPECT_EQ(Drawn(DirectoryLines(share, {})), WithSlashes(R"(*\\s\mess=\\s\mess|)"));
  EXPECT_EQ(Drawn(DirectoryLines(share + "\\", {})), WithSlashes(R"(*\\s\mess=\\s\mess|)"));
  EXPECT_EQ(Drawn(DirectoryLines(share + "\\a\\b", {})),
            WithSlashes(R"(*\\s\mess=\\s\mess| *a=\\s\mess\a|  *b=\\s\mess\a\b|)"));
  EXPECT_EQ(ParentDirectory(share + "\\a.mak"), share);
  EXPECT_EQ(ParentDirectory(share), "");
}

TEST(Navigation, ADriveHoldsWhatLiesBelowIt) {
  const std::vector<std::string> drives = {"/", "/media/usb", "/media/usb2"};
  EXPECT_EQ(DriveOf(drives, "/home/a"), "/");
  EXPECT_EQ(DriveOf(drives, "/media/usb"), "/media/usb");
  EXPECT_EQ(DriveOf(drives, "/media/usb2/x"), "/media/usb2");
  EXPECT_EQ(DriveOf(drives, "/media/usb3"), "/");
  EXPECT_EQ(DriveOf({"C:\\"}, "D:\\"), "");
  EXPECT_EQ(DriveOf({"C:\\"}, "c:\\x"), "C:\\");
}

TEST(Navigation, AVanishedDirectoryGivesWayToTheNearestAboveIt) {
  test::MemoryFileSystem files;
  files.directories = {"/a", "/a/b"};
  EXPECT_EQ(NearestDirectory(files, "/a/b", {"/a"}), "/a/b");
  EXPECT_EQ(NearestDirectory(files, "/a/b/c/d", {"/a"}), "/a/b");
  EXPECT_EQ(NearestDirectory(files, "/x/y", {}), "/");
  EXPECT_EQ(NearestDirectory(files, "D:\\x", {"C:\\", "/a"}), "/a");
}

TEST(Navigation, DroppedFilesAndDirectoriesSelect) {
  test::MemoryFileSystem files;
  files.directories = {"/a"};
  const auto drop = [&](const std::vector<std::string>& paths) {
    const DroppedSelection selection = SelectionOf(files, paths);
    std::string text = selection.directory + (selection.everything ? "*" : "");
    for (const std::string& name : selection.names) text += "|" + name;
    return text;
  };
  EXPECT_EQ(drop({"/a"}), "/a*");
  EXPECT_EQ(drop({"/a/1.vas", "/a/2.DAT", "/a/3.txt", "/b/4.vas", "/a"}), "/a|1.vas|2.DAT");
  EXPECT_EQ(drop({"/1.vec"}), "/|1.vec");
  EXPECT_EQ(drop({"x.txt", "y.vas"}), "");
}

TEST(Navigation, TheHelpFileLiesBesideTheProgram) {
  EXPECT_EQ(WithSlashes(HelpFileOf("", "/opt")), "/opt/Quiverion.hlp");
  EXPECT_EQ(HelpFileOf("::IDESTART x", "/opt/"), "/opt/Quiverion.hlp");
  EXPECT_EQ(HelpFileOf("::IDESTART", "/opt"), "");
}

}  // namespace
}  // namespace quiverion
