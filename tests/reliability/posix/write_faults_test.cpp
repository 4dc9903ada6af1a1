#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "log/run_log.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"
#include "support/soak.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;
using Kind = SystemCall::Kind;
using Names = std::vector<std::string>;

struct Fault {
  const char* name;
  int code;
  ErrorNumber number;
  bool once;  // else every call from there on, as long as the command takes
  std::vector<MessageAnswer> answers = {};

  bool Asks() const { return number == ErrorNumber::diskFull || number == ErrorNumber::tooManyFiles; }
};

const std::vector<Fault> kFaults = {
    {"a full disk, then room", ENOSPC, ErrorNumber::diskFull, true, {MessageAnswer::retry}},
    {"a full disk", ENOSPC, ErrorNumber::diskFull, false, {MessageAnswer::retry}},
    {"a full quota", EDQUOT, ErrorNumber::diskFull, false},
    {"too many open files", EMFILE, ErrorNumber::tooManyFiles, false},
    {"too many open files, then fewer", EMFILE, ErrorNumber::tooManyFiles, true, {MessageAnswer::retry}},
    {"an I/O error", EIO, ErrorNumber::deviceError, false},
    {"a permission that is gone", EACCES, ErrorNumber::accessDenied, false},
    {"a drive that is read-only now", EROFS, ErrorNumber::pathAccess, false}};

// One of the calls that a command makes for one file of the series.
struct Moment {
  int file;   // counted from 1
  int index;  // among the calls of the command for this file
  SystemCall call;
};

bool CanFail(const SystemCall& call) {
  return call.kind != Kind::makeDirectory && call.kind != Kind::remove && call.kind != Kind::resize;
}

// A failed append leaves something behind the records that a collection counts.
Tree Counted(Tree tree) {
  for (auto& [path, bytes] : tree) {
    if (path.ends_with(".col")) bytes = CountedRecords(bytes);
  }
  return tree;
}

// The log of a run, taken apart at its titles.
struct Sections {
  explicit Sections(const std::string& log) {
    const std::size_t second = log.find(MakeTitleLine("b.vas"));
    const std::size_t end = log.find(MakeTitleLine("Makro-Ausführung erfolgreich beendet"));
    files[0] = log.substr(0, std::min(second, end));
    if (second != std::string::npos) files[1] = log.substr(second, end - second);
  }
  std::string files[2];
};

class WriteFaults : public testing::Test {
 protected:
  void Examine(const WrittenKind& kind, const WrittenSeries& series) {
    series.Restore();
    untouched_ = Counted(ReadTree(place.Path() + "serie/"));
    const auto clean = [&](const Names& names) {
      series.Restore();
      return series.Run(names);
    };
    const auto both = clean({"a.vas", "b.vas"}), first = clean({"a.vas"}), second = clean({"b.vas"});
    ASSERT_FALSE(both.hadError) << both.log;
    const std::vector<Moment> moments = Moments(series);
    ASSERT_GE(moments.size(), 8u);
    const auto syncs = std::count_if(moments.begin(), moments.end(),
                                     [](const Moment& moment) { return moment.call.kind == Kind::sync; });
    EXPECT_EQ(syncs, kind.before.contains("ziel/b.vas") || kind.target == "a.vas" ? 2 : 0) << "each replaced file";
    for (const Fault& fault : kFaults) {
      for (const Moment& moment : moments) {
        SCOPED_TRACE(kind.name + ": " + fault.name + " at call " + std::to_string(moment.index) + " (kind " +
                     std::to_string(static_cast<int>(moment.call.kind)) + ") of file " + std::to_string(moment.file));
        const auto result = RunWith(series, fault, moment);
        ++faults_;
        for (const Message& box : result.boxes) ExpectQuestion(box, fault.number);
        const bool recovers =
            fault.once && fault.Asks() &&
            (moment.call.kind == Kind::write || moment.call.kind == Kind::rename || moment.call.kind == Kind::read);
        if (recovers) {
          EXPECT_EQ(result.log, both.log);
          EXPECT_EQ(result.tree, both.tree);
          EXPECT_EQ(result.boxes.size(), 1u);
          continue;
        }
        const bool closesInPlace =
            kind.isCollection && !IsTemporary(moment.call.path) && moment.call.kind == Kind::close;
        const bool aborts = fault.Asks() && moment.call.kind != Kind::open && !closesInPlace;
        EXPECT_TRUE(result.hadError);
        EXPECT_EQ(result.aborted, aborts);
        EXPECT_EQ(result.boxes.size(), aborts ? fault.answers.size() + 1 : 0);
        const auto& other = moment.file == 1 ? second : first;
        ExpectFiles(moment, aborts, result, closesInPlace ? both : other, both);
        const Sections clear(both.log);
        const Sections expected(closesInPlace ? both.log : other.log);
        const std::string failed =
            Failed(kind, TextOf(fault), moment.call.kind == Kind::open, clear.files[moment.file - 1], aborts);
        std::string log = moment.file == 1 ? failed : clear.files[0] + failed;
        if (moment.file == 1 && !aborts) log += expected.files[1];
        log += MakeTitleLine(aborts ? "Makro-Ausführung frühzeitig ABGEBROCHEN nach FEHLER"
                                    : "Makro-Ausführung FEHLERHAFT beendet") +
               "\r\n";
        EXPECT_EQ(result.log, log);
        if (HasFailure()) return;
      }
    }
  }

  static void ExpectQuestion(const Message& box, ErrorNumber number) {
    EXPECT_EQ(box.title, "QuiverionSeries  -  Fehler beim Schreiben");
    EXPECT_EQ(box.text, number == ErrorNumber::diskFull
                            ? "Fehler: Der Datenträger ist voll!\r\nVersuchen Sie mehr Speicherplatz frei zu machen!"
                            : "Fehler: Es sind zu viele Dateien gleichzeitig geöffnet!\r\n"
                              "Versuchen Sie einige Dateien in anderen Anwendungen zu schließen!");
    EXPECT_TRUE(box.buttons == MessageButtons::retryCancel && box.icon == MessageIcon::warning);
  }

  // The calls where something can fail: of the writes of a file the first, the middle and the last one.
  static std::vector<Moment> Moments(const WrittenSeries& series) {
    std::vector<Moment> all;
    series.Restore();
    int calls[3] = {};
    series.Run({"a.vas", "b.vas"}, {}, [&](const WrittenSeries::Step& step, const SystemCall& call) {
      if (!step.isNext) all.push_back({step.file, calls[step.file]++, call});
      return 0;
    });
    std::vector<Moment> moments;
    for (const int file : {1, 2}) {
      std::vector<Moment> writes;
      for (const Moment& moment : all) {
        if (moment.file != file || !CanFail(moment.call)) continue;
        (moment.call.kind == Kind::write ? writes : moments).push_back(moment);
        EXPECT_TRUE(!IsTemporary(moment.call.path) || moment.call.kind != Kind::open ||
                    (moment.call.flags & (O_EXCL | O_CREAT | O_NOFOLLOW)) == (O_EXCL | O_CREAT | O_NOFOLLOW));
      }
      for (std::size_t k = 0; k < writes.size(); ++k) {
        const bool chosen = k == 0 || k == writes.size() / 2 || k + 1 == writes.size();
        if (chosen || IsSoak()) moments.push_back(writes[k]);
      }
    }
    return moments;
  }

  static WrittenSeries::Result RunWith(const WrittenSeries& series, const Fault& fault, const Moment& moment) {
    series.Restore();
    int index = 0;
    return series.Run({"a.vas", "b.vas"}, fault.answers, [&](const WrittenSeries::Step& step, const SystemCall& call) {
      if (step.file != moment.file || step.isNext) return 0;
      const int at = index++;
      const bool hit = fault.once ? at == moment.index : at >= moment.index && CanFail(call);
      return hit ? fault.code : 0;
    });
  }

  // `other`: the run without the file that failed; what the following command and the other file wrote is there.
  void ExpectFiles(const Moment& moment, bool aborts, const WrittenSeries::Result& result,
                   const WrittenSeries::Result& other, const WrittenSeries::Result& both) const {
    Tree expected = other.tree;
    const auto take = [&](const std::string& path) { expected[path] = both.tree.at(path); };
    if (!aborts) {
      take("a_next.vas");
      take("b_next.vas");
    }
    // Where the first file's failure ends the run, nothing has come of the second.
    EXPECT_EQ(Counted(result.tree), aborts && moment.file == 1 ? untouched_ : Counted(expected));
  }

  static std::string TextOf(const Fault& fault) {
    const bool named = fault.number == ErrorNumber::deviceError;
    return ErrorText(SystemError(fault.number, named ? std::generic_category().message(fault.code) : ""));
  }

  // The section of a file in the log where the command fails, from that of a file where all went well.
  static std::string Failed(const WrittenKind& kind, const std::string& error, bool opens, const std::string& section,
                            bool aborts) {
    const std::size_t start = section.find("... fertig", section.find(kind.announcement)) + 4;
    const std::size_t next = section.find("Datei speichern unter", start);
    EXPECT_NE(next, std::string::npos) << section;
    if (kind.appended && aborts) return section.substr(0, start);  // of its Cancel nothing is said
    const std::string path =
        kind.command.Find("FileName") != nullptr ? kind.command.Text("FileName") : PathIn(section, kind);
    const std::string sentence = opens ? std::string(kind.openFailed)
                                       : std::string(kind.writeFailedIn) + path +
                                             "' kann nicht gespeichert werden, da während des " +
                                             "Schreibens folgender Fehler aufgetreten ist:";
    return section.substr(0, start) + "!!! FEHLER !!!\r\n" + sentence + "\r\n    " + error + "\r\n" +
           std::string(kind.afterFailure) + (aborts ? "" : section.substr(next));
  }

  // The path that the announcement names.
  static std::string PathIn(const std::string& section, const WrittenKind& kind) {
    const std::size_t quote = section.find('\'', section.find(kind.announcement)) + 1;
    return section.substr(quote, section.find('\'', quote) - quote);
  }

  cli::Workplace place;
  Tree untouched_;
  int faults_ = 0;
};

TEST_F(WriteFaults, LeaveTheOldFileOrTheNewOneAndTheRunGoesOn) {
  const std::string directory = place.Path() + "serie/";
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    const WrittenSeries series(kind, directory);
    Examine(kind, series);
    if (HasFailure()) return;
  }
  std::printf("%d faults\n", faults_);
}

// What stands at the target's place, or becomes of its directory, and the error it is refused with.
struct Obstacle {
  const char* name;
  void (*place)(const fs::path& target);
  ErrorNumber number;
};

const Obstacle kObstacles[] = {{"a directory at its place",
                                [](const fs::path& target) {
                                  fs::remove(target);
                                  fs::create_directories(target / "full");
                                },
                                ErrorNumber::pathAccess},
                               {"a read-only file at its place",
                                [](const fs::path& target) {
                                  std::ofstream(target, std::ios::app).flush();
                                  fs::permissions(target, fs::perms::owner_read);
                                },
                                ErrorNumber::pathAccess},
                               {"a device at its place",
                                [](const fs::path& target) {
                                  fs::remove(target);
                                  fs::create_symlink("/dev/full", target);
                                },
                                ErrorNumber::pathAccess},
                               {"a file in place of its directory",
                                [](const fs::path& target) {
                                  fs::remove_all(target.parent_path());
                                  std::ofstream(target.parent_path()) << "kept";
                                },
                                ErrorNumber::pathNotFound}};

TEST_F(WriteFaults, AnObstacleIsNamedAndTheRunGoesOn) {
  const std::string directory = place.Path() + "serie/";
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    const WrittenSeries series(kind, directory);
    series.Restore();
    const auto clean = series.Run({"a.vas", "b.vas"});
    const Sections clear(clean.log);
    for (const Obstacle& obstacle : kObstacles) {
      if (kind.target == "a.vas" && &obstacle != &kObstacles[1]) continue;  // the series itself must be there
      SCOPED_TRACE(kind.name + ": " + obstacle.name);
      series.Restore();
      obstacle.place(directory + kind.target);
      const Tree before = ReadTree(directory);
      const auto result = series.Run({"a.vas", "b.vas"});
      const bool both = kind.isCollection || kind.appended || obstacle.number == ErrorNumber::pathNotFound;
      std::string log;
      for (const int file : {0, 1}) {
        const bool fails = file == 0 || both;
        log += fails ? Failed(kind, ErrorText(SystemError(obstacle.number)), true, clear.files[file], false)
                     : clear.files[file];
      }
      EXPECT_EQ(result.log, log + MakeTitleLine("Makro-Ausführung FEHLERHAFT beendet") + "\r\n");
      Tree expected = before;
      for (const auto& [path, bytes] : clean.tree) {
        if (path.find("_next") != std::string::npos || (!both && path.find("b.") != std::string::npos)) {
          expected[path] = bytes;
        }
      }
      EXPECT_EQ(result.tree, expected);
      if (HasFailure()) return;
    }
  }
}

// Whatever becomes of what another process has deleted: the series goes on, and the log is right about results.
TEST_F(WriteFaults, ADirectoryThatGoesAwayMeanwhileCostsAtMostItsFile) {
  const std::string directory = place.Path() + "serie/";
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    if (kind.target == "a.vas") continue;
    const WrittenSeries series(kind, directory);
    for (const Moment& moment : Moments(series)) {
      if (moment.file != 1) continue;
      SCOPED_TRACE(kind.name + " at call " + std::to_string(moment.index));
      series.Restore();
      int index = 0;
      const auto result = series.Run({"a.vas", "b.vas"}, {}, [&](const WrittenSeries::Step& step, const SystemCall&) {
        if (step.file == 1 && !step.isNext && index++ == moment.index) fs::remove_all(directory + "ziel");
        return 0;
      });
      const bool failed = result.log.find("Pfad nicht gefunden   (Fehler-Nr. 76)") != std::string::npos;
      EXPECT_EQ(result.hadError, failed) << result.log;
      EXPECT_TRUE(kind.isCollection || kind.appended || result.tree.contains(kind.target) != failed);
      for (const char* path : {"a_next.vas", "b_next.vas"}) EXPECT_TRUE(result.tree.contains(path));
      for (const auto& [path, bytes] : result.tree) EXPECT_FALSE(IsTemporary(path));
      if (HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace quiverion::test
