#include "macro/series_files.h"

#include <gtest/gtest.h>

#include "platform/system_error.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

TEST(SeriesFiles, ListsLoadableFilesByNameWithoutRegardToCase) {
  MemoryFileSystem files;
  for (const char* name : {"b2.vas", "B10.VEC", "a.dat", "A.DAT", "Z.vas", "c.Vas", "ä.vas", "a.b.vas", "run.mak",
                           "vas", "x.vas.txt", "notes.vasx", "log.rtf", ".vas", "sub/in.vas"}) {
    files.files["/serie/" + std::string(name)] = "";
  }
  const std::vector<std::string> expected = {".vas",   "a.b.vas", "A.DAT", "a.dat", "B10.VEC",
                                             "b2.vas", "c.Vas",   "Z.vas", "ä.vas"};
  EXPECT_EQ(ListSeriesFiles(files, "/serie/"), expected);
}

TEST(SeriesFiles, ReportsADirectoryThatCannotBeRead) {
  EXPECT_THROW(ListSeriesFiles(*MakeSystemFileSystem(), "/no such directory"), SystemError);
}

}  // namespace
}  // namespace quiverion::test
