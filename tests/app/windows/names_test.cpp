// Names of files are UTF-16, drives are letters, and the system shows "\".
#include <algorithm>

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

TEST_F(MainWindow, ALongPathWithEveryLetterCanBeEvaluated) {
  std::string directory = "serie";
  for (int k = 0; k < 6; ++k) directory += "\\" + std::string(50, static_cast<char>('a' + k));
  const std::string name = "\u0416 \u6F22 \xF0\x9F\x98\x80 ä.vas";
  place.Write(directory + "/" + name, samples::VasBytes(Sample(3)));
  Open();
  ASSERT_TRUE(window->OpenDirectory(place.Path() + directory));
  SetMacro({40001, 10001});
  TheSession().macro[1].Set("Prefix", std::string("neu\\"));
  TheSession().macro[1].Set("Postfix", std::string());
  Files().selectAll();
  EXPECT_EQ(Files().SelectedNames(), std::vector<std::string>{name});
  script.Expect<QDialog>("quiverion::frmShowLogFile", [](QDialog& log) { Press(log, "cmdOk"); });
  Click("cmdOk");
  EXPECT_TRUE(place.Has(directory + "/neu/" + name));
}

}  // namespace
}  // namespace quiverion::test
