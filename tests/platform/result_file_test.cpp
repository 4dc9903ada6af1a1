#include "platform/result_file.h"

#include <gtest/gtest.h>

#include "support/error_of.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

constexpr std::string_view kContent = "0123456789abcdefghij";

// Writes the content in pieces of different lengths and commits.
void WriteContent(ResultFile& file) {
  for (std::size_t at = 0, length = 0; at < kContent.size(); at += length++) file.Write(kContent.substr(at, length));
  file.Commit();
}

class ResultFiles : public testing::Test {
 protected:
  int Save(UserInterface* ui) {
    return ErrorOf([&] {
      ResultFile file(files_, ui, "out.vas");
      try {
        WriteContent(file);
      } catch (const SystemError&) {
        cancelled_ = file.Cancelled();
        throw;
      }
    });
  }

  MemoryFileSystem files_;
  ScriptedUi ui_;
  bool cancelled_ = false;
};

TEST_F(ResultFiles, RetryGoesOnWhereTheDiskWasFull) {
  for (std::size_t room = 0; room < kContent.size(); ++room) {
    files_.files.clear();
    files_.faults.diskSize = room;
    ui_.messages.clear();
    ui_.defaultAnswer = MessageAnswer::retry;
    int asked = 0;
    // Retry without more room first, then one byte more each time.
    ui_.onAsk = [&](const Message&) { files_.faults.diskSize = ++asked > 1 ? 1 : 0; };
    EXPECT_EQ(Save(&ui_), 0);
    EXPECT_EQ(files_.files["out.vas"], kContent) << room;
    EXPECT_EQ(ui_.messages.size(), kContent.size() - room + 1) << room;
  }
}

TEST_F(ResultFiles, CancelLeavesTheOldFile) {
  for (std::size_t room = 0; room < kContent.size(); ++room) {
    files_.files["out.vas"] = "old";
    files_.faults.diskSize = room;
    ui_.answers = {MessageAnswer::retry, MessageAnswer::cancel};
    cancelled_ = false;
    EXPECT_EQ(Save(&ui_), 61);
    EXPECT_TRUE(cancelled_);
    EXPECT_EQ(files_.files["out.vas"], "old");
    EXPECT_EQ(files_.temporaryFiles, 0);
  }
}

TEST_F(ResultFiles, TheQuestionNamesTheFault) {
  const std::pair<ErrorNumber, std::string_view> cases[] = {
      {ErrorNumber::diskFull, "Fehler: Der Datenträger ist voll!\r\nVersuchen Sie mehr Speicherplatz frei zu machen!"},
      {ErrorNumber::tooManyFiles,
       "Fehler: Es sind zu viele Dateien gleichzeitig geöffnet!\r\n"
       "Versuchen Sie einige Dateien in anderen Anwendungen zu schließen!"}};
  for (const auto& [number, text] : cases) {
    ui_.messages.clear();
    files_.faults.diskSize = 3;
    files_.faults.write = number;
    EXPECT_EQ(Save(&ui_), static_cast<int>(number));
    ASSERT_EQ(ui_.messages.size(), 1u);
    const Message& box = ui_.messages.front();
    EXPECT_EQ(box.title, "QuiverionSeries  -  Fehler beim Schreiben");
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.buttons, MessageButtons::retryCancel);
    EXPECT_EQ(box.icon, MessageIcon::warning);
  }
}

TEST_F(ResultFiles, OtherErrorsAndMissingInterfacesAskNothing) {
  files_.faults.diskSize = 3;
  EXPECT_EQ(Save(nullptr), 61);
  files_.faults.write = ErrorNumber::deviceError;
  EXPECT_EQ(Save(&ui_), 57);
  EXPECT_FALSE(cancelled_);
  files_.faults = {};
  files_.faults.commit = ErrorNumber::accessDenied;
  EXPECT_EQ(Save(&ui_), 70);
  EXPECT_TRUE(ui_.messages.empty());
  EXPECT_FALSE(files_.files.contains("out.vas"));
}

TEST_F(ResultFiles, ACommitOnAFullDiskIsRepeated) {
  files_.faults.commit = ErrorNumber::diskFull;
  files_.faults.commitFailures = 2;
  ui_.defaultAnswer = MessageAnswer::retry;
  EXPECT_EQ(Save(&ui_), 0);
  EXPECT_EQ(ui_.messages.size(), 2u);
  EXPECT_EQ(files_.files["out.vas"], kContent);
}

TEST_F(ResultFiles, BlocksOfEverySizeKeepTheirOrder) {
  std::vector<std::string> blocks;  // kept until the commit
  std::string expected;
  for (std::size_t k = 0; k < 120; ++k) {
    blocks.emplace_back(k % 7 == 0 ? 32768 + k - 60 : k * k, static_cast<char>(' ' + k % 90));
    expected += blocks.back();
  }
  ui_.defaultAnswer = MessageAnswer::retry;
  ui_.onAsk = [&](const Message&) { files_.faults.diskSize = 5003; };
  files_.faults.diskSize = 100;
  ResultFile file(files_, &ui_, "out.vas");
  for (std::size_t k = 0; k < blocks.size(); ++k) {
    if (k / 10 % 2 == 0) {
      file.Write(blocks[k]);
    } else {
      file.WriteKept(blocks[k]);
    }
  }
  file.Commit();
  EXPECT_TRUE(files_.files["out.vas"] == expected);
  EXPECT_GT(ui_.messages.size(), 100u);
}

TEST_F(ResultFiles, MissingDirectoriesAreCreated) {
  ResultFile file(files_, nullptr, "a\\b/out.vas");
  file.Commit();
  EXPECT_TRUE(files_.files.contains("a/b/out.vas"));
}

}  // namespace
}  // namespace quiverion::test
