// Names of files are bytes, and Qt itself asks how to print.
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

std::string heard;

// Qt complains where something is printed to a file without a name.
TEST_F(MainWindow, ACancelledPrintDialogPrintsNothing) {
  Open();
  SetMacro({40001});
  Files().selectAll();
  script.Expect<QDialog>("quiverion::frmShowLogFile", [this](QDialog& log) {
    script.Expect<QDialog>("QPrintDialog", [](QDialog& dialog) { dialog.reject(); });
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) { heard += FromQt(text); });
    Press(log, "cmdPrint");
    qInstallMessageHandler(nullptr);
    Press(log, "cmdOk");
  });
  Click("cmdOk");
  EXPECT_EQ(heard.find("QPainter"), std::string::npos) << heard;
}

}  // namespace
}  // namespace quiverion::test
