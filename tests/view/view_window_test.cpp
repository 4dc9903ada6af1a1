// The viewer's window by mouse and keys.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QComboBox>
#include <QInputDialog>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSlider>
#include <QSpinBox>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableView>
#include <filesystem>

#include "generator/foreign_files.h"
#include "generator/sample_files.h"
#include "support/program.h"
#include "view/field_view.h"
#include "view/frmView.h"
#include "windows/modal_script.h"

namespace quiverion::test {
namespace {

class ViewWindow : public testing::Test {
 protected:
  ViewWindow() {
    for (int k = 0; k < 3; ++k) place.Write("serie/f" + std::to_string(k) + ".vas", Bytes({.index = k}));
    place.Write("serie/f1b.vas", Bytes({}).substr(0, 300));
    place.Write("serie/g.txt", "no field");
  }

  ~ViewWindow() override {
    window.reset();
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
  }

  static std::string Bytes(samples::SampleOptions options) {
    options.columns = 20;
    options.rows = 12;
    samples::SampleField field = samples::MakeSampleField(options);
    field.showTable = field.showHeader = field.showCoordSystem = false;
    field.showVectorField = true;
    field.background = 0;
    return samples::VasBytes(field);
  }

  frmView& Open(const std::vector<std::string>& names) {
    window = std::make_unique<frmView>(ViewServices{*files, clock, [this] { ++helpCalls; }});
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    std::vector<std::string> paths;
    for (const std::string& name : names) paths.push_back(place.At(name));
    window->OpenPaths(paths);
    return *window;
  }

  FieldView& View() { return Find<FieldView>(*window, "FieldView"); }
  std::string Text(const char* label) { return FromQt(Find<QLabel>(*window, label).text()); }
  std::string Status() { return FromQt(window->statusBar()->currentMessage()); }
  void Key(Qt::Key key) {
    window->activateWindow();
    View().setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(&View(), key);
  }
  void Trigger(const char* action) { window->findChild<QAction*>(action)->trigger(); }

  // The place of a grid point, found by asking what is under the mouse.
  QPoint PlaceOf(const std::string& point) {
    for (int y = 0; y < View().height(); y += 3) {
      for (int x = 0; x < View().width(); x += 3) {
        QTest::mouseMove(&View(), {x, y});
        if (Status().starts_with(point)) return {x, y};
      }
    }
    ADD_FAILURE() << point << " is nowhere";
    return {};
  }

  cli::Workplace place;
  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  SystemClock clock;
  ModalScript script;
  int helpCalls = 0;
  std::unique_ptr<frmView> window;
};

TEST_F(ViewWindow, PagesThroughTheDirectory) {
  Open({"serie/f1.vas"});
  EXPECT_EQ(Text("lblFile"), "2 von 4   f1.vas");
  const std::pair<Qt::Key, const char*> keys[] = {
      {Qt::Key_Right, "3 von 4   f1b.vas"}, {Qt::Key_Right, "4 von 4   f2.vas"},
      {Qt::Key_Right, "4 von 4   f2.vas"},  {Qt::Key_PageUp, "1 von 4   f0.vas"},
      {Qt::Key_Left, "1 von 4   f0.vas"},   {Qt::Key_PageDown, "4 von 4   f2.vas"}};
  for (const auto& [key, expected] : keys) {
    Key(key);
    EXPECT_EQ(Text("lblFile"), expected);
  }
  Find<QSlider>(*window, "sldSeries").setValue(1);
  EXPECT_EQ(window->CurrentPath(), place.At("serie/f1.vas"));
  EXPECT_EQ(FromQt(window->windowTitle()), "f1.vas - QuiverionView");
  Trigger("mnuTable");
  for (const char* const page : {"pageTable", "pageTexts", "pageProfile"}) {
    Find<QTabWidget>(*window, "tabPages").setCurrentWidget(&Find<QWidget>(*window, page));
    QApplication::processEvents();
    ExpectReadable(*window);
  }
}

TEST_F(ViewWindow, ADamagedFileIsSaidInItsPlace) {
  Open({"serie/f1b.vas"});
  EXPECT_FALSE(View().HasField());
  EXPECT_TRUE(Find<QPlainTextEdit>(*window, "txtTexts").toPlainText().contains("!!! FEHLER !!!"));
  Key(Qt::Key_Right);
  EXPECT_TRUE(View().HasField());
  std::filesystem::remove_all(place.Path() + "serie");
  Key(Qt::Key_Left);
  EXPECT_FALSE(View().HasField()) << "gone meanwhile";
  Trigger("mnuReload");
  Open({"nirgends"});
  EXPECT_EQ(Text("lblFile"), "1 von 1   nirgends");
  place.Write("leer/x.txt", "");
  Open({"leer"});
  EXPECT_EQ(Text("lblFile"), "");
  Key(Qt::Key_Right);
  Trigger("mnuReload");
}

TEST_F(ViewWindow, ReadsValuesAndDifferences) {
  Open({"serie/f0.vas"});
  const QPoint a = PlaceOf("i 3  j 2  "), b = PlaceOf("i 9  j 7  ");
  EXPECT_NE(Status().find("gültig (1)"), std::string::npos) << Status();
  QTest::mouseClick(&View(), Qt::LeftButton, {}, a);
  EXPECT_TRUE(Text("lblPoints").starts_with("i 3  j 2  x ")) << Text("lblPoints");
  EXPECT_EQ(Text("lblPoints").find("Abstand"), std::string::npos);
  QTest::mouseClick(&View(), Qt::LeftButton, {}, b);
  EXPECT_NE(Text("lblPoints").find("\nAbstand "), std::string::npos);
  Key(Qt::Key_Right);
  EXPECT_EQ(Text("lblPoints").find("i 3  j 2  x "), 0u) << "the same points in the next field";
  Key(Qt::Key_Right);
  EXPECT_TRUE(Text("lblPoints").empty()) << "the damaged field has no points";
  QTest::mouseClick(&View(), Qt::LeftButton, {}, a);
  Key(Qt::Key_PageUp);
  QTest::mouseClick(&View(), Qt::LeftButton, {}, a);
  Key(Qt::Key_Escape);
  EXPECT_TRUE(Text("lblPoints").empty());
}

void Drag(QWidget& view, QPoint from, QPoint to, Qt::KeyboardModifiers keys) {
  QTest::mousePress(&view, Qt::LeftButton, keys, from);
  for (const QPoint at : {(from + to) / 2, to}) {
    QMouseEvent move(QEvent::MouseMove, at, view.mapToGlobal(at), Qt::NoButton, Qt::LeftButton, keys);
    QApplication::sendEvent(&view, &move);
  }
  QTest::mouseRelease(&view, Qt::LeftButton, keys, to);
}

TEST_F(ViewWindow, ZoomsMovesAndMeasures) {
  Open({"serie/f0.vas"});
  const QPoint a = PlaceOf("i 3  j 2  "), b = PlaceOf("i 9  j 7  ");
  const auto under = [&](QPoint at) {
    QTest::mouseMove(&View(), at + QPoint(1, 0));
    QTest::mouseMove(&View(), at);
    return Status();
  };
  const std::string atA = under(a), atB = under(b);
  QWheelEvent wheel(a, View().mapToGlobal(a), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&View(), &wheel);
  EXPECT_EQ(under(a), atA) << "the point under the mouse stays";
  EXPECT_NE(under(b), atB);
  Key(Qt::Key_Home);
  EXPECT_EQ(under(b), atB);
  Drag(View(), a, b, {});
  EXPECT_EQ(under(b), atA) << "the point follows the mouse";
  Key(Qt::Key_Home);
  Drag(View(), a, b, Qt::ShiftModifier);
  EXPECT_NE(under(b), atB) << "the band fills the plot";
  Key(Qt::Key_Home);
  Drag(View(), a, b, Qt::ControlModifier);
  EXPECT_EQ(FromQt(Find<QTabWidget>(*window, "tabPages").currentWidget()->objectName()), "pageProfile");
  Press(*window, "cmdCopyProfile");
  const QString profile = QGuiApplication::clipboard()->text();
  EXPECT_TRUE(profile.startsWith("s [mm]\ti\tj\tx [mm]")) << FromQt(profile);
  EXPECT_TRUE(profile.section('\n', 1, 1).contains("\t3\t2\t") && profile.section('\n', -2, -2).contains("\t9\t7\t"))
      << FromQt(profile);
}

TEST_F(ViewWindow, ShowsAndCopiesTheTable) {
  samples::SampleField field = samples::MakeSampleField({.columns = 3, .rows = 2});
  field.showTable = true;
  place.Write("serie/t.vas", samples::VasBytes(field));
  Open({"serie/t.vas"});
  auto& table = Find<QTableView>(*window, "tblVectors");
  ASSERT_TRUE(table.isVisible()) << "the file asks for it";
  EXPECT_EQ(table.model()->rowCount(), 6);
  table.setFocus();
  table.selectRow(4);
  QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
  const QString text = QGuiApplication::clipboard()->text();
  EXPECT_TRUE(text.startsWith("i\tj\tx [mm]\ty [mm]\tu [m/s]\tv [m/s]\tBetrag [m/s]\tStatus\n2\t2\t")) << FromQt(text);
  EXPECT_EQ(text.count('\n'), 2);
}

TEST_F(ViewWindow, SavesWhatItShows) {
  Open({"serie/f0.vas"});
  const std::pair<const char*, const char*> formats[] = {{"bild", "\x89PNG"}, {"b.svg", "<?xml"}, {"c.pdf", "%PDF"}};
  for (const auto& [name, beginning] : formats) {
    script.ExpectFile(place.At(name));
    Trigger("mnuSavePicture");
  }
  for (const auto& [name, beginning] : formats) {
    const std::string full = std::string(name) == "bild" ? "bild.png" : name;
    EXPECT_TRUE(place.Read(full).starts_with(beginning)) << full;
  }
  script.ExpectFile(place.At("bild.png"));
  script.ExpectBox(QMessageBox::No);
  Trigger("mnuSavePicture");
  script.ExpectFile(place.At("f0.vas/x.png"));
  place.Write("f0.vas", "");
  script.ExpectBox(QMessageBox::Ok);
  Trigger("mnuSavePicture");
  EXPECT_NE(script.said.find("Das Bild kann nicht gespeichert werden"), std::string::npos) << script.said;
  Trigger("mnuCopyPicture");
  EXPECT_EQ(QGuiApplication::clipboard()->image().width(), 2 * View().width());
}

TEST_F(ViewWindow, AsksForLimitsAndAVector) {
  Open({"serie/f0.vas"});
  Key(Qt::Key_5);
  EXPECT_EQ(FromQt(Find<QComboBox>(*window, "cboBackground").currentText()), "Vorticity");
  const auto answer = [this](const char* text) {
    script.Expect<QInputDialog>("QInputDialog", [text](QInputDialog& dialog) {
      dialog.setTextValue(text);
      dialog.accept();
    });
  };
  const auto hasLabel = [this](std::string_view text) {
    const Picture picture = View().PictureForPaper();
    return std::ranges::any_of(picture.labels,
                               [&](const Label& label) { return label.text.find(text) != std::string::npos; });
  };
  answer("5; 3");
  script.ExpectBox(QMessageBox::Ok);
  answer("-1234,5; 3000");
  Trigger("mnuLimits");
  EXPECT_TRUE(hasLabel("3000"));
  answer("2,5; -1");
  Trigger("mnuSubtractVector");
  EXPECT_TRUE(hasLabel("abzüglich (2,5; -1) m/s"));
  Trigger("mnuSubtractMean");
  EXPECT_TRUE(hasLabel("abzüglich"));
  Trigger("mnuSubtractNothing");
  EXPECT_FALSE(hasLabel("abzüglich"));
  Key(Qt::Key_1);
  EXPECT_FALSE(hasLabel("3000"));
}

TEST_F(ViewWindow, PlaysUntilItIsClosed) {
  Open({"serie/f0.vas"});
  Find<QSpinBox>(*window, "spnRate").setValue(30);
  Key(Qt::Key_Space);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Text("lblFile") == "4 von 4   f2.vas"; }));
  EXPECT_TRUE(QTest::qWaitFor([&] { return Text("lblFile") == "1 von 4   f0.vas"; })) << "it begins again";
  window->close();
  EXPECT_FALSE(window->findChild<QAction*>("mnuPlay")->isChecked());
}

TEST_F(ViewWindow, OpensFilesOfOtherProgramsWithoutAnImport) {
  const auto bytes = [](std::string_view sample, int index) {
    return samples::ForeignSampleOf(sample).bytes(samples::MakeSampleField({.index = index, .columns = 9, .rows = 6}));
  };
  for (const char* name : {"d/B1.txt", "d/B02.txt", "d/B3.txt"}) place.Write(name, bytes("davis8.txt", 1));
  place.Write("d/liesmich.txt", "Versuch 3");
  place.Write("d/L1.vec", bytes("insight.vec", 2));
  const std::string zone = "ZONE I=2 J=2\n0 0 1 2\n1 0 1 2\n0 1 1 2\n1 1 1 2\n";
  place.Write("d/zonen1.plt", "VARIABLES = x y u v\n" + zone + zone + zone);
  place.Write("d/zonen2.plt", "VARIABLES = x y u v\n" + zone);
  const std::size_t before = place.Files().size();
  const auto takenFor = [this] { return FromQt(window->statusBar()->findChild<QLabel*>()->text()); };
  Open({"d/B3.txt"});
  EXPECT_EQ(Text("lblFile"), "3 von 3   B3.txt") << "names that differ in their digits are a series";
  EXPECT_TRUE(View().HasField());
  EXPECT_TRUE(takenFor().starts_with("DaVis 8.1.6 (Text mit Dezimalkomma), 9 x 6, Positionen in mm")) << takenFor();
  Open({"d/L1.vec"});
  EXPECT_TRUE(takenFor().starts_with("Insight (Tecplot), 9 x 6")) << takenFor();
  EXPECT_TRUE(Find<QPlainTextEdit>(*window, "txtTexts").toPlainText().contains("Importiert aus 'L1.vec'"));
  // The fields of one file follow each other, then comes the next file.
  Open({"d/zonen1.plt"});
  EXPECT_EQ(Text("lblFile"), "1 von 4   zonen1.plt, Feld 1");
  Key(Qt::Key_Right);
  Key(Qt::Key_Right);
  EXPECT_EQ(Text("lblFile"), "3 von 4   zonen1.plt, Feld 3");
  EXPECT_TRUE(takenFor().starts_with("Tecplot, 3 Felder, 2 x 2")) << takenFor();
  Trigger("mnuReload");
  EXPECT_EQ(Text("lblFile"), "3 von 4   zonen1.plt, Feld 3");
  Key(Qt::Key_Right);
  EXPECT_EQ(Text("lblFile"), "4 von 4   zonen2.plt");
  place.Write("d/zonen1.plt", "VARIABLES = x y u v\n" + zone.substr(0, 40));
  Open({"d/zonen1.plt"});
  EXPECT_FALSE(View().HasField());
  EXPECT_TRUE(Find<QPlainTextEdit>(*window, "txtTexts").toPlainText().contains("Zeile 6: "));
  EXPECT_EQ(takenFor(), "");
  EXPECT_EQ(place.Files().size(), before) << "it only reads";
}

TEST_F(ViewWindow, OpensDroppedFiles) {
  Open({"serie/f0.vas"});
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(PathToQt(place.At("serie/f2.vas"))),
                QUrl::fromLocalFile(PathToQt(place.At("serie/f0.vas")))});
  QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(window.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(window.get(), &drop);
  EXPECT_TRUE(QTest::qWaitFor([&] { return Text("lblFile") == "1 von 2   f2.vas"; }));
  Trigger("mnuShowHelp");
  EXPECT_EQ(helpCalls, 1);
}

}  // namespace
}  // namespace quiverion::test
