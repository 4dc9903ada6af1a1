#include "statistics/collect.h"

#include <gtest/gtest.h>

#include "collection_fixture.h"
#include "field/formats/load_original_file.h"
#include "generator/sample_files.h"
#include "support/approved.h"

namespace quiverion::test {
namespace {

const std::string kBegin = "Vektorfeld für Statistik sammeln in 'C.col'... ";

std::string Collected(int count) {
  return kBegin + "fertig\r\n    Zahl der in der Kollektion 'C.col' gesammelten Dateien: " + std::to_string(count) +
         "\r\n";
}

using Collecting = CollectionTest;

TEST_F(Collecting, WritesHeaderAndRecords) {
  const samples::SampleField sample = samples::MakeSampleField({.columns = 7, .rows = 5});
  program.files.files["a.vas"] = samples::VasBytes(sample);
  LoadOriginalFile(context, "a.vas");
  program.TakeLog();
  VectorField field = context.field;
  field.filePath = "C:\\Messung\\Düse.vas";
  field.status(2, 1) = 4, field.status(3, 1) = -7;
  samples::SampleField expected = sample;
  expected.status[1] = 1, expected.status[2] = 0;
  EXPECT_EQ(Collect(field), Collected(1));
  EXPECT_TRUE(Content() == samples::CollectionBytes({expected}, {field.filePath}));
  field.posX[0] = 99;  // positions are those of the first field
  Content() += "left behind by an append that failed";
  EXPECT_EQ(Collect(field), Collected(2));
  EXPECT_TRUE(Content() == samples::CollectionBytes({expected, expected}, {field.filePath, field.filePath}));
  EXPECT_FALSE(context.runHadError);
}

TEST_F(Collecting, KeepsTheEndOfALongPath) {
  VectorField field = MakeField(1, 1);
  const std::string longest = "/ä" + std::string(126, 'x');  // 128 characters
  const std::pair<std::string, std::string> cases[] = {
      {longest, "/\xE4" + std::string(126, 'x')},
      {longest + "y", "..." + std::string(124, 'x') + "y"},
      {"Ω" + longest, "..." + std::string(125, 'x')},  // a character that is cut off is not reported as lost
      {"/Ω.vas", "/?.vas" + std::string(122, ' ')}};
  for (const auto& [path, stored] : cases) {
    field.filePath = path;
    program.files.files.erase("C.col");
    const bool warns = Collect(field).find("werden als '?' gespeichert: '/Ω.vas'\r\n") != std::string::npos;
    EXPECT_EQ(Content().substr(kHeader, 128), stored);
    EXPECT_TRUE(warns == (path == "/Ω.vas") && context.runHadError == warns) << path;
  }
}

TEST_F(Collecting, RefusesWhatIsNotItsCollection) {
  CollectNumbered(2);
  const std::string good = Content();
  const std::string cases[] = {"",
                               "QuiverionStatisticsCollectio",
                               "quiverion" + good.substr(9),
                               With(good, kColumnsAt, 4),
                               With(good, kRowsAt, 3),
                               With(With(good, kColumnsAt, 2), kRowsAt, 3),
                               good.substr(0, 30),
                               good.substr(0, 42),
                               good.substr(0, 74),
                               With(good, kCountAt, -1),
                               With(good, kCountAt, 2147483647),
                               With(good, kCountAt, 2147483646)};  // longer than the drive
  program.files.freeBytes = {1000000};
  std::string told;
  for (const std::string& content : cases) {
    Content() = content;
    told += Collect(NumberedField(3));
    EXPECT_EQ(Content(), content);
    EXPECT_TRUE(context.runHadError && !context.userAbortRequested);
  }
  program.files.faults.open = ErrorNumber::pathAccess;
  told += Collect(NumberedField(3));
  ExpectApproved("refused_appends.txt", told);
}

// An append does not check the version, and missing records become zeros, which do not count.
TEST_F(Collecting, GoesOnBehindTheCountedRecords) {
  CollectNumbered(3);
  const std::string good = Content();
  Content() = good.substr(0, kHeader + kRecord + 100).replace(29, 2, "\x07\x01");
  EXPECT_EQ(Collect(NumberedField(4)),
            kBegin +
                "!!! WARNUNG !!!\r\n    Die Kollektion ist kürzer, als die Zahl ihrer Vektorfelder (3) "
                "verlangt: Was fehlt, zählt als ungültig.\r\n" +
                Collected(4).substr(kBegin.size()));
  EXPECT_TRUE(context.runHadError);
  EXPECT_EQ(Content().size(), kHeader + 4 * kRecord);
  EXPECT_EQ(Content().substr(kHeader, kRecord + 100), good.substr(kHeader, kRecord + 100));
  EXPECT_EQ(Content().substr(kHeader + kRecord + 100, 2 * kRecord - 100), std::string(2 * kRecord - 100, '\0'));
}

TEST_F(Collecting, DoesNotReplaceWhatAnotherProcessHasBegun) {
  EXPECT_EQ(Collect(NumberedField(1)), Collected(1));
  // Another process creates the same collection between the check and the commit.
  const std::string first = Content();
  program.files.files.erase("C.col");
  program.files.faults.diskSize = 10;
  program.ui.answers = {MessageAnswer::cancel, MessageAnswer::retry};
  program.ui.onAsk = [&](const Message&) {
    program.files.faults = {};
    Content() = first;
  };
  EXPECT_TRUE(Collect(NumberedField(2)).ends_with("Datenträger voll   (Fehler-Nr. 61)\r\n"));
  EXPECT_EQ(Content(), first) << "Cancel is Cancel";
  program.files.files.erase("C.col");
  program.files.faults.diskSize = 10;
  EXPECT_EQ(Collect(NumberedField(2)), Collected(2));
  EXPECT_EQ(Content().substr(kHeader, kRecord), first.substr(kHeader));
}

}  // namespace
}  // namespace quiverion::test
