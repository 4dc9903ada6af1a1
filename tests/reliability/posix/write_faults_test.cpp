#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

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

const Names kBoth = {"a.vas", "b.vas"};

// One of the calls that a command makes for one file of the series.
struct Moment {
  int file;   // counted from 1
  int index;  // among the calls of the command for this file
  SystemCall call;
};

bool CanFail(const SystemCall& call) {
  return call.kind != Kind::makeDirectory && call.kind != Kind::remove && call.kind != Kind::resize;
}

// A failed append leaves something after the counted records of a collection.
Tree Counted(Tree tree) {
  for (auto& [path, bytes] : tree) {
    if (path.ends_with(".col")) bytes = CountedRecords(bytes);
  }
  return tree;
}

class WriteFaults : public testing::Test {
 protected:
  void Examine(const WrittenKind& kind, const WrittenSeries& series) {
    series.Restore();
    const Tree untouched = Counted(ReadTree(directory));
    const auto clean = [&](const Names& names) { return series.Restore(), series.Run(names); };
    const auto both = clean(kBoth), first = clean({"a.vas"}), second = clean({"b.vas"});
    ASSERT_FALSE(both.hadError) << both.log;
    const std::vector<Moment> moments = Moments(series);
    ASSERT_GE(moments.size(), 8u);
    const auto syncs = std::ranges::count(moments, Kind::sync, [](const Moment& moment) { return moment.call.kind; });
    EXPECT_EQ(syncs, kind.before.contains("ziel/b.vas") || kind.target == "a.vas" ? 2 : 0) << "each replaced file";
    for (const Fault& fault : kFaults) {
      for (const Moment& moment : moments) {
        SCOPED_TRACE(kind.name + ": error " + std::to_string(fault.code) + " at call " + std::to_string(moment.index) +
                     " of file " + std::to_string(moment.file));
        const auto result = RunWith(series, fault, moment);
        ++faults_;
        const bool asks = fault.number == ErrorNumber::diskFull || fault.number == ErrorNumber::tooManyFiles;
        const Kind call = moment.call.kind;
        if (fault.once && asks && (call == Kind::write || call == Kind::rename || call == Kind::read)) {
          EXPECT_EQ(result.log, both.log);
          EXPECT_EQ(result.tree, both.tree);
          EXPECT_EQ(result.boxes.size(), 1u);
          continue;
        }
        const bool closesInPlace = kind.isCollection && !IsTemporary(moment.call.path) && call == Kind::close;
        const bool aborts = asks && call != Kind::open && !closesInPlace;
        EXPECT_TRUE(result.hadError);
        EXPECT_EQ(result.aborted, aborts);
        EXPECT_EQ(result.boxes.size(), aborts ? fault.answers.size() + 1 : 0);
        // What the following command and the other file wrote is there; if the first file's failure ends the run,
        // nothing has come of the second.
        Tree expected = closesInPlace ? both.tree : (moment.file == 1 ? second : first).tree;
        for (const char* next : {"a_next.vas", "b_next.vas"}) {
          if (!aborts) expected[next] = both.tree.at(next);
        }
        EXPECT_EQ(Counted(result.tree), aborts && moment.file == 1 ? untouched : Counted(expected));
        const std::string reason(ErrorDescription(fault.number));
        const bool isSilent = kind.appended && aborts;  // its Cancel is not logged
        EXPECT_TRUE(isSilent || result.log.find(reason) != std::string::npos) << result.log;
        if (HasFailure()) return;
      }
    }
    Tell(series, kFaults[5], moments.front());
    Tell(series, kFaults[5], moments[2]);
    if (kind.name == "new VAS") Tell(series, kFaults[1], moments[2]), Tell(series, kFaults[3], moments[2]);
  }

  // What a run with this fault says, for the approved text.
  void Tell(const WrittenSeries& series, const Fault& fault, const Moment& moment) {
    const auto result = RunWith(series, fault, moment);
    told_ += result.log;
    for (const Message& box : result.boxes) told_ += box.title + "|" + box.text + "\r\n";
    told_ += "\r\n";
  }

  // The calls at which something can fail; of the writes of a file, the first, the middle and the last one.
  static std::vector<Moment> Moments(const WrittenSeries& series) {
    std::vector<Moment> all;
    series.Restore();
    int calls[3] = {};
    series.Run(kBoth, {}, [&](const WrittenSeries::Step& step, const SystemCall& call) {
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
    return series.Run(kBoth, fault.answers, [&](const WrittenSeries::Step& step, const SystemCall& call) {
      if (step.file != moment.file || step.isNext) return 0;
      const int at = index++;
      const bool hit = fault.once ? at == moment.index : at >= moment.index && CanFail(call);
      return hit ? fault.code : 0;
    });
  }

  cli::Workplace place;
  const std::string directory = place.Path() + "serie/";
  std::string told_;
  int faults_ = 0;
};

TEST_F(WriteFaults, LeaveTheOldFileOrTheNewOneAndTheRunGoesOn) {
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    Examine(kind, WrittenSeries(kind, directory));
    if (HasFailure()) return;
  }
  std::printf("%d faults\n", faults_);
  std::erase(told_, '\r');
  cli::ExpectApproved(place, "write_faults.txt", told_);
}

// An obstacle at the path of the target or in place of its directory, and the resulting error.
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
                               {"a file in place of its directory",
                                [](const fs::path& target) {
                                  fs::remove_all(target.parent_path());
                                  std::ofstream(target.parent_path()) << "kept";
                                },
                                ErrorNumber::pathNotFound}};

TEST_F(WriteFaults, AnObstacleIsNamedAndTheRunGoesOn) {
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    const WrittenSeries series(kind, directory);
    series.Restore();
    const Tree clean = series.Run(kBoth).tree;
    for (const Obstacle& obstacle : kObstacles) {
      if (kind.target == "a.vas" && &obstacle != &kObstacles[1]) continue;  // the series itself must exist
      SCOPED_TRACE(kind.name + ": " + obstacle.name);
      series.Restore();
      obstacle.place(directory + kind.target);
      Tree expected = ReadTree(directory);
      const auto result = series.Run(kBoth);
      const bool both = kind.isCollection || kind.appended || obstacle.number == ErrorNumber::pathNotFound;
      const std::string error = "!!! FEHLER !!!", reason(ErrorDescription(obstacle.number));
      EXPECT_NE(result.log.find(reason), std::string::npos) << result.log;
      EXPECT_EQ(result.log.find(error) != result.log.rfind(error), both) << result.log;
      EXPECT_TRUE(result.log.ends_with(MakeTitleLine("Makro-Ausführung FEHLERHAFT beendet") + "\r\n"));
      for (const auto& [path, bytes] : clean) {
        if (path.find("_next") != std::string::npos || (!both && path.find("b.") != std::string::npos)) {
          expected[path] = bytes;
        }
      }
      EXPECT_EQ(result.tree, expected);
      if (HasFailure()) return;
    }
  }
}

// Whatever another process deletes, the series continues, and the log is correct about results.
TEST_F(WriteFaults, ADirectoryThatGoesAwayMeanwhileCostsAtMostItsFile) {
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    if (kind.target == "a.vas") continue;
    const WrittenSeries series(kind, directory);
    for (const Moment& moment : Moments(series)) {
      if (moment.file != 1) continue;
      SCOPED_TRACE(kind.name + " at call " + std::to_string(moment.index));
      series.Restore();
      int index = 0;
      const auto result = series.Run(kBoth, {}, [&](const WrittenSeries::Step& step, const SystemCall&) {
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
