// Names of files are bytes.
#include "app/window_fixture.h"

namespace quiverion::test {
namespace {

TEST_F(MainWindow, ANameThatIsNoUtf8CanBeEvaluated) {
  const std::string name =
      "m\xFC"
      "hle.vas";
  place.Write("serie/" + name, samples::VasBytes(Sample(3)));
  Open();
  SetMacro({40001, 10001});
  TheSession().macro[1].Set("Prefix", std::string("neu\\"));
  TheSession().macro[1].Set("Postfix", std::string());
  Files().SelectNames({name});
  EXPECT_EQ(Files().SelectedNames(), std::vector<std::string>{name});
  script.Expect<QDialog>("quiverion::frmShowLogFile", [](QDialog& log) { Press(log, "cmdOk"); });
  Click("cmdOk");
  EXPECT_TRUE(place.Has("serie/neu/" + name));
}

}  // namespace
}  // namespace quiverion::test
