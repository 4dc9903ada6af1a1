// A user without aim in the whole program: nothing he does may bring it down, hold it up or reach files elsewhere.
#include <QPlainTextEdit>
#include <filesystem>
#include <iostream>

#include "app/frmMain.h"
#include "app/navigation.h"
#include "generator/sample_files.h"
#include "macro/macro_file.h"
#include "monkey.h"
#include "support/program.h"
#include "support/test_session.h"
#include "windows/modal_script.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::seconds;
using Time = std::chrono::steady_clock;

constexpr std::size_t kStepsOfAWindow = 1500;
constexpr std::size_t kMostFiles = 150;  // each run may double them

class MonkeyTest : public testing::Test {
 protected:
  static samples::SampleField Sample(int index) {
    return samples::MakeSampleField({.index = index, .columns = 8, .rows = 6});
  }
  static std::string Collection(std::size_t count) {
    return samples::CollectionBytes(std::vector<samples::SampleField>(count, Sample(0)),
                                    std::vector<std::string>(count, "C:\\Serie\\ä.dat"));
  }
  static std::string Macro(std::initializer_list<std::int32_t> commands) {
    TestSession session;
    for (const std::int32_t command : commands) session.session.macro.emplace_back(command);
    EXPECT_TRUE(SaveMacroFile(session.session, "/m.mak"));
    return session.files.files["/m.mak"];
  }

  void BuildPlace() {
    ExpectInputIntact();
    for (const auto& entry : fs::directory_iterator(place.Path())) {
      if (entry.path() != fs::path(home)) cli::RemoveTree(entry.path());
    }
    for (const auto& [name, bytes] : content) place.Write(name, bytes);
    fs::create_directory(place.Path() + "leer");
  }

  // What another program or another user does to the files meanwhile.
  void ChangeFiles() {
    const auto name = std::next(content.begin(), static_cast<std::ptrdiff_t>(random() % content.size()))->first;
    if (name.ends_with(".vec")) return;
    const fs::path path = cli::PathOf(place.Path() + name);
    std::error_code ignored;
    switch (random() % 6) {
      case 0:
        fs::remove(path, ignored);
        return;
      case 1:
        fs::resize_file(path, random() % 400, ignored);
        return;
      case 2:
        fs::permissions(path, fs::perms::owner_read, ignored);
        return;
      case 3:
        fs::remove_all(place.Path() + "leer", ignored);
        return;
      default:
        return BuildPlace();
    }
  }

  // No command and no dialog writes files of this kind.
  void ExpectInputIntact() {
    for (const auto& [name, bytes] : content) {
      const bool holds = !name.ends_with(".vec") || !place.Has("serie") || place.Read(name) == bytes;
      if (!holds) Fail(name + " was changed");
    }
  }

  void Fail(const std::string& what) {
    ADD_FAILURE() << what << "\nQUIVERION_SEED=" << Seed() << "\n" << monkey.Past().Text();
  }

  // The game with one window is over at `steps` of the monkey or at `end`.
  bool IsOver(const ConfinedFiles& files, std::size_t steps, Time::time_point end) {
    if (monkey.Steps() % 100 == 0 && place.Files().size() > kMostFiles) BuildPlace();
    if (const std::string heard = Witness::Heard(); !heard.empty()) Fail(heard);
    for (const std::string& path : files.refused) Fail("'" + path + "' was to be changed");
    return HasFailure() || monkey.Steps() >= steps || Time::now() > end;
  }

  // A program from its start to its end.
  void PlayOnce(Time::time_point end) {
    BuildPlace();
    ConfinedFiles files(place.Path());
    const SystemClock clock;
    const std::vector<std::string> drives = {root, place.Path() + "serie", root + "nicht/da"};
    frmMain window({.files = files,
                    .clock = clock,
                    .listDrives = [&] { return drives; },
                    .startDirectory = place.Path() + "serie",
                    .helpFile = HELP_FILE});
    window.show();
    Monkey::Game game;
    game.isOver = [&, steps = monkey.Steps() + kStepsOfAWindow] { return IsOver(files, steps, end); };
    game.otherProgram = [&] { ChangeFiles(); };
    game.fail = [&](const std::string& what) { Fail(what); };
    game.atRest = [&] {
      files.healthy = true;
      ExpectThatItWorks(window);
    };
    try {
      monkey.PlayWith(window, game);
    } catch (const std::exception& error) {
      Fail(std::string("an exception came out of the loop of events: ") + error.what());
    }
    ExpectInputIntact();
    for (const std::string& name : place.Files()) {
      if (name.find(".quiverion-") != std::string::npos) Fail(name + " is left");
    }
  }

  // A macro over one file, by the controls, as if nothing had been before.
  void ExpectThatItWorks(frmMain& window) {
    place.Write("zuletzt/z.vas", samples::VasBytes(Sample(6)));
    place.Write("zuletzt/m.mak", Macro({40001, 20001}));
    window.OpenPaths({place.Path() + "zuletzt/m.mak", place.Path() + "zuletzt/z.vas"});
    ModalScript script;
    script.Expect<QDialog>("quiverion::frmShowLogFile", [](QDialog& log) {
      EXPECT_TRUE(Find<QPlainTextEdit>(log, "RichTextBox").toPlainText().contains("erfolgreich beendet"));
      Press(log, "cmdSave");
      Press(log, "cmdOk");
    });
    script.ExpectBox(QMessageBox::Ok);
    Press(window, "cmdOk");
    EXPECT_TRUE(place.Has("zuletzt/Log.rtf") && window.isVisible()) << monkey.Past().Text();
  }

  void PrintReach(seconds time) const {
    std::cout << "Seed " << Seed() << ": " << monkey.Steps() << " steps in " << time.count() << " s;";
    for (const auto& [name, times] : monkey.Reached()) std::cout << " " << name << " " << times;
    std::cout << std::endl;
  }

  cli::Workplace place;
  std::string root = DirectoryLines(place.Path(), {}).front().path;
  std::string home = place.Path() + "heim";
  std::mt19937 random{Seed()};
  Monkey monkey{Seed(), place.Path()};
  const std::map<std::string, std::string> content = {
      {"serie/a.dat", samples::DatBytes(Sample(1))},
      {"serie/b.vas", samples::VasBytes(Sample(2))},
      {"serie/c.vec", samples::VecBytes(Sample(3), 1)},
      {"serie/kaputt.vas", samples::VasBytes(Sample(2)).substr(0, 200)},
      {"serie/kaputt.vec", "no field"},
      {"serie/notes.txt", "no field"},
      {"Größe 1/Übung ä.vas", samples::VasBytes(Sample(4))},
      {"Größe 1/x y.dat", samples::DatBytes(Sample(5))},
      {"Größe 1/Übung ä.col", Collection(3)},
      {"Größe 1/alles.mak", Macro({20001, 40001, 40102, 20005})},
      {"s.col", Collection(5)},
      {"viele.col", Collection(400)},
      {"kaputt.col", Collection(2).substr(0, 300)},
      {"makro.mak", Macro({40001, 40101, 50101})},
      {"kaputt.mak", std::string("\xFF\xFF\xFF\x7F", 4)},
  };
};

TEST_F(MonkeyTest, FindsNoWayToBringTheProgramDown) {
  const OwnHome ownHome(home);
  const Witness witness(monkey.Past());
  const auto time = ShortOrLong(seconds(8), seconds(600));
  const Time::time_point end = Time::now() + time;
  while (!HasFailure() && Time::now() < end) PlayOnce(end);
  PrintReach(time);
  EXPECT_TRUE(monkey.Steps() > 100 && monkey.Reached().size() > 10) << "the monkey is asleep";
  if (!IsSoak()) return;
  for (const char* const name : {"frmMain",          "frmChooseMacroEvent", "frmPrefixPostfix",  "frmFaultVectors",
                                 "frmEditVector",    "frmMirrorOptions",    "frmXYTrafo",        "frmShowProgress",
                                 "frmShowLogFile",   "frmShowCollection",   "frmHelp",           "QMessageBox",
                                 "QFileDialog",      "QInputDialog",        "QPrintDialog",      "a computation",
                                 "mnuOpenMacroList", "mnuSaveMacroList",    "mnuEditCollection", "mnuAverage",
                                 "mnuStdDeviation",  "mnuAvgUsAndVs",       "mnuAvgUsTimesVs",   "mnuTu",
                                 "mnuDissipation",   "mnuShowHelp",         "mnuHelpIndex",      "mnuAbout"}) {
    EXPECT_TRUE(monkey.Reached().contains(name)) << name;
  }
}

}  // namespace
}  // namespace quiverion::test
