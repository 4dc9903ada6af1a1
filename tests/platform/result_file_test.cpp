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
  int Save(UserInterface* ui, Opening opening = Opening::replace) {
    return ErrorOf([&] {
      ResultFile file(files_, ui, "out.vas", opening);
      WriteContent(file);
    });
  }

  MemoryFileSystem files_;
  ScriptedUi ui_;
};

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

}  // namespace
}  // namespace quiverion::test
