// The window of a collection, opened through the menu of the main window.
#include <QLabel>

#include "dialogs/frmShowCollection.h"
#include "support/collection_bytes.h"
#include "support/test_session.h"
#include "window_fixture.h"

namespace quiverion::test {
namespace {

class CollectionWindow : public MainWindow {
 protected:
  // A collection of fields named 1, 2, ..., each of `columns` x 2 vectors.
  static std::string Collection(int count, int columns = 3) {
    std::vector<samples::SampleField> fields;
    std::vector<std::string> names;
    for (int k = 1; k <= count; ++k) {
      fields.push_back(samples::MakeSampleField({.index = k, .columns = columns, .rows = 2}));
      names.push_back(std::to_string(k));
    }
    return samples::CollectionBytes(fields, names);
  }
  // Opens the window of s.col for `action`. Expect what opens meanwhile before calling this.
  void Use(std::function<void(QDialog&)> action) {
    place.Write("s.dat", "");
    script.ExpectFile(place.Path() + "s.dat");  // the extension is replaced
    script.Expect<QDialog>("quiverion::frmShowCollection", std::move(action));
    Trigger("mnuEditCollection");
  }
  static QListWidget& List(QDialog& dialog) { return Find<QListWidget>(dialog, "lstCollectedFiles"); }
  static void Select(QDialog& dialog, const std::vector<int>& numbers) {
    List(dialog).clearSelection();
    for (const int number : numbers) List(dialog).item(number - 1)->setSelected(true);
  }
};

TEST_F(CollectionWindow, ListsTheFieldsAndRemovesTheSelectedOnes) {
  place.Write("s.col", Collection(5));
  Open();
  Use([&](QDialog& dialog) {
    EXPECT_EQ(FromQt(Find<QLabel>(dialog, "lblCollectionInfo").text()),
              "Name der Kollektion:  " + place.Path() +
                  "s.col\nInhalt:  5 Vektorfelder gesammelt\nGröße der Vektorfelder:  3 x 2");
    ExpectReadable(dialog);
    EXPECT_GE(Find<QLabel>(dialog, "lblCollectionInfo").height(), 3 * dialog.fontMetrics().lineSpacing());
    script.ExpectBox(QMessageBox::Ok);
    Press(dialog, "cmdDelete");
    Select(dialog, {2, 5});
    script.ExpectBox(QMessageBox::Yes);
    Find<QPushButton>(dialog, "cmdDelete").setFocus();
    Press(dialog, "cmdDelete");
    EXPECT_EQ(dialog.cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(Lines(List(dialog)), "1|4|3|");
    EXPECT_TRUE(Find<QLabel>(dialog, "lblCollectionInfo").text().contains("3 Vektorfelder"));
    Select(dialog, {1});
    script.ExpectBox(QMessageBox::No);
    Press(dialog, "cmdDelete");
    EXPECT_EQ(Lines(List(dialog)), "1|4|3|");
    script.ExpectBox(QMessageBox::Yes);
    dialog.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Delete);
    EXPECT_EQ(Lines(List(dialog)), "3|4|");
    Press(dialog, "cmdOk");
  });
  EXPECT_EQ(place.Read("s.col").size(), kHeader + 2 * kRecord);
  EXPECT_TRUE(Get<QPushButton>("cmdOk").isVisible() && !Get<QProgressBar>("ProgressBar").isVisible());
  EXPECT_TRUE(window->cursor().shape() == Qt::ArrowCursor && !TheSession().context.busy);
}

TEST(CollectionWindowInMemory, WaitsWithItsHourglassWhileItReads) {
  TestSession program;
  program.files.files["s.col"] = samples::CollectionBytes({samples::MakeSampleField({})}, {"a\tb"});
  frmShowCollection window(program.context, "s.col");
  program.ui.onAsk = [&window](const Message&) {
    EXPECT_EQ(window.cursor().shape(), Qt::WaitCursor);
    EXPECT_FALSE(Find<QPushButton>(window, "cmdDelete").isEnabled());
  };
  program.files.readFailsAt["s.col"] = 100;
  EXPECT_FALSE(window.FillListBox());
  EXPECT_EQ(program.ui.messages.size(), 1u);
  program.files.readFailsAt.clear();
  EXPECT_TRUE(window.FillListBox());
  EXPECT_EQ(FromQt(Find<QListWidget>(window, "lstCollectedFiles").item(0)->text()), "a?b");
}

TEST_F(CollectionWindow, EndsTheProgramWhereTheFileCannotBeShortened) {
  auto memory = std::make_unique<MemoryFileSystem>();
  memory->files["/m/s.col"] = Collection(2);
  memory->faults.setFileSize = true;
  files = std::move(memory);
  drives = {"/"};
  Open();
  script.Expect<QDialog>("quiverion::frmShowCollection", [this](QDialog& dialog) {
    Select(dialog, {1});
    script.ExpectBox(QMessageBox::Yes);
    script.ExpectBox(QMessageBox::Ok);
    Press(dialog, "cmdDelete");
  });
  window->OpenPaths({"/m/s.col"});
  EXPECT_TRUE(window->IsQuitting());
}

TEST_F(CollectionWindow, DeletesAnEmptiedCollectionAndCloses) {
  place.Write("s.col", Collection(2));
  Open();
  Use([&](QDialog& dialog) {
    List(dialog).selectAll();
    script.ExpectBox(QMessageBox::Yes);
    script.ExpectBox(QMessageBox::Ok);
    Press(dialog, "cmdDelete");
    EXPECT_FALSE(dialog.isVisible());
  });
  EXPECT_FALSE(place.Has("s.col"));
}

TEST_F(CollectionWindow, ReadsTheFileAgainWhenItIsResized) {
  place.Write("s.col", Collection(2));
  Open();
  Use([&](QDialog& dialog) {
    Select(dialog, {1});
    place.Write("s.col", Collection(3));
    dialog.resize(800, 500);
    EXPECT_EQ(Lines(List(dialog)), "1|2|3|");
    EXPECT_TRUE(List(dialog).selectedItems().isEmpty());
    place.Write("s.col", "gone");
    script.Expect<QMessageBox>("QMessageBox", [&dialog](QMessageBox& box) {
      dialog.resize(710, 500);  // one message is enough
      box.accept();
    });
    dialog.resize(700, 500);
    EXPECT_FALSE(dialog.isVisible());
  });
}

// The list at the time of the question counts: if another program has moved the records since, nothing is removed, even
// if the window has been resized meanwhile and shows them.
TEST_F(CollectionWindow, RemovesNothingFromACollectionThatHasChanged) {
  place.Write("s.col", Collection(3));
  Open();
  Use([&](QDialog& dialog) {
    Select(dialog, {1});
    script.Expect<QMessageBox>("QMessageBox", [&](QMessageBox& box) {
      EXPECT_EQ(cli::RunProgram(place, {"collection", "remove", "s.col", "1"}).code, 0);
      dialog.resize(dialog.width() + 10, dialog.height());
      EXPECT_EQ(Lines(List(dialog)), "3|2|");
      box.button(QMessageBox::Yes)->click();
    });
    script.ExpectBox(QMessageBox::Ok);
    Press(dialog, "cmdDelete");
    EXPECT_EQ(Lines(List(dialog)), "3|2|");
    Press(dialog, "cmdOk");
  });
}

}  // namespace
}  // namespace quiverion::test
