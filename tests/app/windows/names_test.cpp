// Names of files are UTF-16, drives are letters, and the system shows "\".
#include "app/drives.h"
#include "app/window_fixture.h"

namespace quiverion::test {
namespace {

TEST(QtPaths, AreShownWithBackslashesAndLoseNothing) {
  EXPECT_EQ(FromQt(PathToQt("C:/Größe/\xF0\x9F\x98\x80.vas")), "C:\\Größe\\\xF0\x9F\x98\x80.vas");
  EXPECT_EQ(PathFromQt("//server/Größe/a.vas"), "\\\\server\\Größe\\a.vas");
  const QString half = QString("C:\\a") + QChar(0xD83D);  // of a pair
  EXPECT_EQ(PathToQt(PathFromQt(half)), half);
}

TEST_F(MainWindow, DrivesAreLetters) {
  drives = MountedDrives();
  for (const std::string& drive : drives) EXPECT_TRUE(drive.size() == 3 && drive.ends_with(":\\")) << drive;
  Open();
  EXPECT_EQ(FromQt(Get<QComboBox>("Drive").currentText()), root);
}

}  // namespace
}  // namespace quiverion::test
