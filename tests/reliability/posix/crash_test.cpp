#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include "cli/commands.h"
#include "generator/sample_files.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"
#include "support/soak.h"

namespace quiverion::test {
namespace {

const std::vector<std::string> kBoth = {"a.vas", "b.vas"};

/// A process that is killed at any system call. All writes are short, so that a file can end anywhere.
class Crashes : public testing::Test {
 protected:
  // Runs the series in a child process, which is killed before its call `number`. False if it makes fewer calls.
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

  // The allowed contents of each path: before the run, after the whole run, and after its first file.
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

// Every record that stays is there, whatever has become of the move. What a removal has left half done counts nowhere.
TEST_F(Crashes, ARemovalLosesNoOtherRecord) {
  const std::string path = place.Path() + "serie.col";
  std::vector<samples::SampleField> fields;
  for (int k = 0; k < 6; ++k) fields.push_back(samples::MakeSampleField({.index = k, .columns = 20, .rows = 15}));
  const std::string whole = samples::CollectionBytes(fields, {"1", "2", "3", "4", "5", "6"});
  const std::size_t size = (whole.size() - kHeader) / 6, bits = 20 * 15 / 8 + 1;
  const auto remove = [&](const std::function<int(int call, const SystemCall&)>& before) {
    SystemCalls calls(place.Path());
    calls.largestWrite = 500;
    calls.before = [&, number = 0](const SystemCall& call) mutable { return before(number++, call); };
    return cli::RemoveFromCollection(path, {2, 3, 5});
  };
  const auto check = [&] {
    const std::string counted = CountedRecords(place.Read("serie.col"));
    for (const std::size_t kept : {0u, 3u, 5u}) {
      EXPECT_NE(counted.find(whole.substr(kHeader + kept * size, size)), std::string::npos);
    }
    for (std::size_t at = kHeader; at < counted.size(); at += size) {
      const bool isWhole = whole.find(counted.substr(at, size)) != std::string::npos;
      EXPECT_TRUE(isWhole || counted.substr(at + size - bits, bits) == std::string(bits, '\0')) << "a mixture";
    }
  };
  int hits = 1;
  for (int from = 0; hits > 0 && !HasFailure(); ++from) {
    SCOPED_TRACE(from);
    hits = 0;
    for (const Fault& fault : kFaults) {
      place.Write("serie.col", whole);
      testing::internal::CaptureStderr();
      bool hit = false;
      const int code = remove([&](int call, const SystemCall& system) {
        const bool fails = call >= from && system.kind != SystemCall::Kind::remove;
        hit = hit || fails;
        return fails ? fault.code : 0;
      });
      const std::string said = testing::internal::GetCapturedStderr();
      const bool reason = said.find(ErrorDescription(fault.number)) != std::string::npos;
      EXPECT_TRUE((code != 0) == hit && (reason || said.find("Schwerer Fehler") != std::string::npos) == hit) << said;
      hits += hit ? 1 : 0;
      check();
    }
    place.Write("serie.col", whole);
    if (const pid_t process = ::fork(); process == 0) {
      remove([&](int call, const SystemCall&) { return call == from ? ::kill(::getpid(), SIGKILL) : 0; });
      ::_exit(0);
    }
    ::wait(nullptr);
    check();
  }
}

// It was reported as deleted, but existed without a record.
TEST_F(Crashes, ACollectionThatCannotBeDeletedIsNotSaidToBe) {
  place.Write("serie.col", samples::CollectionBytes({samples::MakeSampleField({.columns = 2, .rows = 2})}, {"1"}));
  testing::internal::CaptureStderr();
  SystemCalls calls(place.Path());
  calls.before = [](const SystemCall& call) { return call.kind == SystemCall::Kind::remove ? EACCES : 0; };
  EXPECT_EQ(cli::RemoveFromCollection(place.Path() + "serie.col", {1}), 1);
  const std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("Zugriff verweigert   (Fehler-Nr. 70)"), std::string::npos) << said;
  EXPECT_EQ(said.find("gelöscht"), std::string::npos) << said;
}

}  // namespace
}  // namespace quiverion::test
