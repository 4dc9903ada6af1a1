#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"
#include "support/soak.h"

namespace quiverion::test {
namespace {

const std::vector<std::string> kBoth = {"a.vas", "b.vas"};

/// A process that ends at once at any call of the system. All writes are short ones, so that a file ends anywhere.
class Crashes : public testing::Test {
 protected:
  // Runs the series in a process of its own, which is killed in front of its call `number`. False where it has fewer.
  static bool KilledAtCall(const WrittenSeries& series, int number) {
    const pid_t process = ::fork();
    if (process == 0) {
      int calls = 0;
      series.Run(kBoth, {}, [&](const WrittenSeries::Step&, const SystemCall&) {
        return calls++ == number ? ::kill(::getpid(), SIGKILL) : 0;
      });
      ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    return WIFSIGNALED(status);
  }

  // What each path may hold: what it held, what the whole run makes of it, and what only its beginning makes of it.
  void ExpectWholeFiles(const WrittenKind& kind, const Tree& found) const {
    for (const auto& [path, bytes] : states_[0]) EXPECT_TRUE(found.contains(path)) << path;
    for (const auto& [path, bytes] : found) {
      if (IsTemporary(path)) continue;
      const bool grows = path == kind.target && kind.appended;
      const bool whole =
          std::any_of(std::begin(states_), std::end(states_), [&, &path = path, &bytes = bytes](const Tree& state) {
            const auto file = state.find(path);
            if (file == state.end()) return false;
            const auto old = states_[0].find(path);
            if (grows)
              return file->second.starts_with(bytes) && (old == states_[0].end() || bytes.starts_with(old->second));
            return file->second == (path.ends_with(".col") ? CountedRecords(bytes) : bytes);
          });
      EXPECT_TRUE(whole) << path << " of " << bytes.size() << " bytes";
    }
  }

  Tree states_[3];  // before the run, after its first file, after all
  cli::Workplace place;
};

TEST_F(Crashes, LeaveEveryFileAsItWasOrWholeAndTheNextRunWorks) {
  const std::string directory = place.Path() + "serie/";
  int crashes = 0;
  for (const WrittenKind& kind : WrittenKinds(directory)) {
    const WrittenSeries series(kind, directory);
    series.Restore();
    states_[0] = ReadTree(directory);
    states_[1] = series.Run({"a.vas"}).tree;
    series.Restore();
    states_[2] = series.Run(kBoth).tree;
    for (int call = 0, step = ShortOrLong(5, 1);; call += step, ++crashes) {
      SCOPED_TRACE(kind.name + " killed at call " + std::to_string(call));
      series.Restore();
      if (!KilledAtCall(series, call)) break;
      ExpectWholeFiles(kind, ReadTree(directory));
      const auto again = series.Run(kBoth);
      EXPECT_FALSE(again.hadError) << again.log;
      if (HasFailure()) return;
    }
  }
  std::printf("%d crashes\n", crashes);
  EXPECT_GT(crashes, 100);
}

}  // namespace
}  // namespace quiverion::test
