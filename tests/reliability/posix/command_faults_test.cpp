#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "cli/commands.h"
#include "generator/sample_files.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

using namespace test;
using Kind = SystemCall::Kind;

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 20, .rows = 15});
}

// A command that writes one file, "ziel/<...>".
struct Command {
  std::string name;
  std::function<int(const std::string& directory)> run;
  std::string target;
  std::string old = {};  // what stood there
};

std::vector<Command> Commands(const std::string& collection) {
  const auto importMacro = [](const std::string& directory) {
    return ImportMacro(directory + "macro.json", directory + "ziel/macro.mak");
  };
  const auto statistic = [](const std::string& directory) {
    return RunStatistic(StatisticKind::mean, directory + "serie.col", directory + "ziel/mean.vas", 0.0);
  };
  const auto remove = [](const std::string& directory) {
    return RemoveFromCollection(directory + "ziel/serie.col", {2, 3, 5});
  };
  std::vector<Command> commands = {{"new macro", importMacro, "ziel/macro.mak"},
                                   {"macro over an old one", importMacro, "ziel/macro.mak", "an old macro"},
                                   {"statistic over an old one", statistic, "ziel/mean.vas", "an old result"},
                                   {"removal", remove, "ziel/serie.col", collection}};
  for (const std::string log : {"ziel/Log.rtf", "ziel/Log.txt"}) {
    const auto run = [log](const std::string& directory) {
      return RunSeries({.macro = directory + "macro.mak", .log = directory + log, .inputs = {directory + "a.vas"}});
    };
    commands.push_back({"log " + log, run, log, "an old log"});
  }
  return commands;
}

class CommandFaults : public testing::Test {
 protected:
  struct Result {
    int code;
    std::string output, error;
    Tree tree;
  };

  void Restore(const Command& command) const {
    std::filesystem::remove_all(directory_);
    place_.Write("w/macro.json", R"([{"EventId": "evtInsertComment", "Comment": "Kommentar"}])");
    place_.Write("w/macro.mak", Bytes().I32(1).I32(40101));
    place_.Write("w/a.vas", samples::VasBytes(Sample(0)));
    place_.Write("w/serie.col", collection_);
    std::filesystem::create_directory(directory_ + "ziel");
    if (!command.old.empty()) place_.Write("w/" + command.target, command.old);
  }

  Result Run(const Command& command, const std::function<int(const SystemCall&)>& before) const {
    Restore(command);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Result result{};
    {
      SystemCalls calls(directory_ + "ziel/");
      calls.largestWrite = 500;
      calls.before = before;
      result.code = command.run(directory_);
    }
    result.output = testing::internal::GetCapturedStdout();
    result.error = testing::internal::GetCapturedStderr();
    result.tree = ReadTree(directory_);
    return result;
  }

  static bool CanFail(const SystemCall& call) { return call.kind != Kind::remove && call.kind != Kind::makeDirectory; }

  // Of a log, whose last lines tell the time that it took, the frame.
  static bool IsWhole(const std::string& path, const std::string& bytes, const std::string& expected) {
    if (path.ends_with(".rtf")) return bytes.starts_with("{\\rtf") && bytes.ends_with("}\r\n");
    if (path.ends_with(".txt")) return bytes.find("erfolgreich beendet") != std::string::npos;
    if (path.ends_with("mean.vas")) return bytes.size() == expected.size();  // tells the time when it was made
    return bytes == expected;
  }

  void ExpectNothingLost(const Command& command, const Result& result, const Result& clean) const {
    for (const auto& [path, bytes] : result.tree) EXPECT_FALSE(IsTemporary(path)) << path;
    const std::string found = result.tree.contains(command.target) ? result.tree.at(command.target) : "";
    if (result.code == 0) {
      EXPECT_TRUE(IsWhole(command.target, found, clean.tree.at(command.target)));
      EXPECT_EQ(result.error, clean.error);
    } else if (command.name == "removal") {
      // Every record that stays is there, whatever has become of the move. What it has left half done counts nowhere.
      const std::string counted = CountedRecords(found), kept = clean.tree.at(command.target);
      const std::size_t size = (collection_.size() - kHeader) / 6, bits = 20 * 15 / 8 + 1;
      for (std::size_t at = kHeader; at < kept.size(); at += size) {
        EXPECT_NE(counted.find(kept.substr(at, size)), std::string::npos);
      }
      for (std::size_t at = kHeader; at < counted.size(); at += size) {
        const bool whole = collection_.find(counted.substr(at, size)) != std::string::npos;
        EXPECT_TRUE(whole || counted.substr(at + size - bits, bits) == std::string(bits, '\0')) << "a mixture";
      }
    } else {
      EXPECT_EQ(found, command.old);
    }
  }

  std::string collection_ = samples::CollectionBytes({Sample(0), Sample(1), Sample(2), Sample(3), Sample(4), Sample(5)},
                                                     {"1", "2", "3", "4", "5", "6"});
  Workplace place_;
  std::string directory_ = place_.Path() + "w/";
};

TEST_F(CommandFaults, LeaveTheOldFileOrTheNewOneAndSayWhy) {
  const std::pair<int, ErrorNumber> faults[] = {{ENOSPC, ErrorNumber::diskFull},
                                                {EMFILE, ErrorNumber::tooManyFiles},
                                                {EIO, ErrorNumber::deviceError},
                                                {EACCES, ErrorNumber::accessDenied},
                                                {EROFS, ErrorNumber::pathAccess}};
  int failures = 0;
  for (const Command& command : Commands(collection_)) {
    int calls = 0;
    const Result clean = Run(command, [&](const SystemCall&) { return ++calls, 0; });
    ASSERT_EQ(clean.code, 0) << command.name << ": " << clean.error;
    for (const auto& [code, number] : faults) {
      for (int from = 0; from < calls; ++from) {
        SCOPED_TRACE(command.name + ": error " + std::to_string(code) + " from call " + std::to_string(from));
        int index = 0;
        bool hit = false, opening = false;
        const Result result = Run(command, [&, fault = code](const SystemCall& call) {
          const bool fails = index++ >= from && CanFail(call);
          if (fails && !hit) opening = call.kind == Kind::open;
          hit = hit || fails;
          return fails ? fault : 0;
        });
        EXPECT_EQ(result.code != 0, hit);
        ExpectNothingLost(command, result, clean);
        EXPECT_EQ(result.error != clean.error, hit) << "it says why";
        const std::string reason = command.target == "ziel/macro.mak" ? (opening ? "Fehler beim Öffnen der Datei"
                                                                                 : "Fehler beim Schreiben in die Datei")
                                                                      : std::string(ErrorDescription(number));
        const bool told = (result.error + result.output).find(reason) != std::string::npos;
        EXPECT_TRUE(!hit || told || result.error.find("Schwerer Fehler") != std::string::npos) << result.error;
        failures += hit ? 1 : 0;
        if (HasFailure()) return;
      }
    }
  }
  std::printf("%d faults\n", failures);
  EXPECT_GT(failures, 150);
}

// It was said to be gone, and stood there without a record.
TEST_F(CommandFaults, ACollectionThatCannotBeDeletedIsNotSaidToBe) {
  const auto removeAll = [](const std::string& directory) {
    return RemoveFromCollection(directory + "ziel/serie.col", {1, 2, 3, 4, 5, 6});
  };
  const Result result = Run({"all", removeAll, "ziel/serie.col", collection_},
                            [](const SystemCall& call) { return call.kind == Kind::remove ? EACCES : 0; });
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.error.find("Zugriff verweigert   (Fehler-Nr. 70)"), std::string::npos) << result.error;
  EXPECT_EQ(result.error.find("gelöscht"), std::string::npos) << result.error;
}

}  // namespace
}  // namespace quiverion::cli
