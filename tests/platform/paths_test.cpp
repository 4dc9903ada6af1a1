#include "platform/paths.h"

#include <gtest/gtest.h>

#include "support/memory_file_system.h"

namespace quiverion::test {
namespace {

TEST(Paths, AreSplitAtTheLastSeparatorOfEitherKind) {
  struct Case {
    std::string_view path, directory, name;
  };
  const Case cases[] = {{"C:\\a\\b.vas", "C:\\a", "b.vas"},
                        {"a/b\\c", "a/b", "c"},
                        {"a\\b/c", "a\\b", "c"},
                        {"b.vas", "", "b.vas"},
                        {"dir/", "dir", ""},
                        {"/x", "", "x"},
                        {"\\\\pc\\x", "\\\\pc", "x"},
                        {"", "", ""}};
  for (const Case& c : cases) {
    EXPECT_EQ(DirectoryOf(c.path), c.directory) << c.path;
    EXPECT_EQ(FileNameOf(c.path), c.name) << c.path;
  }
}

TEST(Paths, SplitAFileNameAtItsLastPoint) {
  struct Case {
    std::string_view name, base, extension;
  };
  const Case cases[] = {{"a.vas", "a", "VAS"}, {"a.b.Dat", "a.b", "DAT"}, {"a", "a", "A"}, {".vas", "", "VAS"},
                        {"a.", "a", ""},       {"x.väs", "x", "VäS"},     {"", "", ""}};
  for (const Case& c : cases) {
    EXPECT_EQ(BaseNameOf(c.name), c.base) << c.name;
    EXPECT_EQ(ExtensionOf(c.name), c.extension) << c.name;
  }
}

TEST(Paths, GetOneSeparatorAtTheEnd) {
  const std::string own(1, kPathSeparator);
  EXPECT_EQ(WithSeparator("a"), "a" + own);
  EXPECT_EQ(WithSeparator("a\\"), "a\\");
  EXPECT_EQ(WithSeparator("a/"), "a/");
}

TEST(CreatePathDirectories, CreatesEveryDirectoryWithBothSeparators) {
  const std::pair<std::string, std::set<std::string>> cases[] = {
      {"x.vas", {}},
      {"a\\b/c\\x.vas", {"a", "a/b", "a/b/c"}},
      {"/a/b/x.vas", {"/a", "/a/b"}},
      {"a/b/", {"a", "a/b"}},
  };
  for (const auto& [path, directories] : cases) {
    MemoryFileSystem files;
    CreatePathDirectories(files, path);
    EXPECT_EQ(files.directories, directories) << path;
  }
}

}  // namespace
}  // namespace quiverion::test
