#pragma once

#include <gtest/gtest.h>

#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>

#include "app/directory_list.h"
#include "app/file_list.h"
#include "app/frmMain.h"
#include "app/navigation.h"
#include "generator/sample_files.h"
#include "support/program.h"
#include "windows/modal_script.h"

namespace quiverion::test {

/// The main window in a temporary directory with a small series: a.dat, b.vas, c.vec.
class MainWindow : public testing::Test {
 protected:
  MainWindow() {
    place.Write("serie/b.vas", samples::VasBytes(Sample(0)));
    place.Write("serie/a.dat", samples::DatBytes(Sample(1)));
    place.Write("serie/C.VEC", samples::VecBytes(Sample(2), 1));
    place.Write("serie/notes.txt", "no field");
    place.Write("leer/x.txt", "");
  }

  /// Closing the window ends the program. It must be restarted for the next test, which could not show modal windows
  /// otherwise.
  ~MainWindow() override {
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    if (!script.said.empty()) cli::ExpectApproved(place, "boxes_" + test + ".txt", script.said);
    script.idle = nullptr;  // it refers to the stack of the test
    window.reset();
    QMetaObject::invokeMethod(
        qApp, [] { QCoreApplication::exit(); }, Qt::QueuedConnection);
    QCoreApplication::exec();
  }

  static samples::SampleField Sample(int index) {
    return samples::MakeSampleField({.index = index, .columns = 5, .rows = 4});
  }

  /// The window, shown and active, in the directory `name`.
  frmMain& Open(const std::string& name = "serie") {
    window = std::make_unique<frmMain>(Machine{.files = *files,
                                               .clock = clock,
                                               .listDrives = [this] { return drives; },
                                               .startDirectory = place.Path() + name,
                                               .helpFile = helpFile});
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    return *window;
  }

  template <class Control>
  Control& Get(const char* name) {
    return Find<Control>(*window, name);
  }
  void Click(const char* button) { Press(*window, button); }
  void Trigger(const char* item) { window->findChild<QAction*>(item)->trigger(); }
  FileList& Files() { return Get<FileList>("Files"); }
  DirectoryList& Directory() { return Get<DirectoryList>("Directory"); }
  QListWidget& MacroList() { return Get<QListWidget>("lstMacroList"); }
  Session& TheSession() { return window->TheSession(); }

  /// The lines of a list, with a "|" after each.
  static std::string Lines(const QAbstractItemView& list) {
    std::string text;
    for (int row = 0; row < list.model()->rowCount(); ++row) {
      text += FromQt(list.model()->index(row, 0).data().toString()) + "|";
    }
    return text;
  }
  void SetMacro(std::initializer_list<std::int32_t> ids) {
    TheSession().macro.clear();
    for (const std::int32_t id : ids) TheSession().macro.emplace_back(id);
    window->ShowMacro(-1);
  }
  int SelectedLine() {
    return MacroList().selectedItems().isEmpty() ? -1 : MacroList().row(MacroList().selectedItems().front());
  }

  struct FaultyClock : SystemClock {
    bool fails = false;
    float SecondsSinceMidnight() const override {
      return fails ? throw std::bad_alloc() : SystemClock::SecondsSinceMidnight();
    }
  };

  cli::Workplace place;
  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  FaultyClock clock;
  std::string root = DirectoryLines(place.Path(), {}).front().path;  // "/" or "C:\"
  std::vector<std::string> drives = {root};
  std::string helpFile = "/opt/Quiverion.hlp";
  ModalScript script;
  std::unique_ptr<frmMain> window;
};

}  // namespace quiverion::test
