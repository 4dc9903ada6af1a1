#include "app/navigation.h"

#include <gtest/gtest.h>

#include "support/approved.h"
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

TEST(Navigation, DirectoriesDrivesAndWhatLiesAbove) {
  const std::string share = R"(\\s\mess)";
  const std::pair<std::string, std::vector<std::string>> directories[] = {
      {"/", {"b", "A"}}, {"/x/y", {"z"}},    {"/x/", {"z"}},        {"C:\\x", {}},
      {share, {}},       {share + "\\", {}}, {share + "\\a\\b", {}}};
  std::string told;
  for (const auto& [path, names] : directories) told += path + " " + Drawn(DirectoryLines(path, names)) + "\n";
  for (const std::string& path : {share + "\\a.mak", share}) told += ParentDirectory(path) + "\n";
  for (const char* path : {"/home/a", "/media/usb", "/media/usb2/x", "/media/usb3"}) {
    told += std::string(path) + " on " + DriveOf({"/", "/media/usb", "/media/usb2"}, path) + "\n";
  }
  for (const char* path : {"D:\\", "c:\\x"}) told += std::string(path) + " on " + DriveOf({"C:\\"}, path) + "\n";
  test::ExpectApproved("navigation.txt", told);
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
