#include "statistics/collection_contents.h"

#include <gtest/gtest.h>

#include "collection_fixture.h"
#include "support/approved.h"
#include "support/random_fields.h"

namespace quiverion::test {
namespace {

class Contents : public CollectionTest {
 protected:
  Contents() {
    CollectNumbered(5);
    five = Content();
  }
  // The source paths, one after the other; checks that each record has the velocities of its path.
  std::string Paths() {
    const auto contents = ReadCollectionContents(context, "C.col");
    if (!contents) return "not readable";
    std::string paths;
    std::size_t at = kHeader + 128;
    for (const std::string& path : contents->sourcePaths) {
      paths += path;
      Bytes velocities;
      for (int p = 0; p < 6; ++p) velocities.F64(std::stoi(path));
      for (int p = 0; p < 6; ++p) velocities.F64(-std::stoi(path));
      EXPECT_EQ(Content().substr(at, 96), velocities.Get());
      at += kRecord;
    }
    return paths;
  }

  std::string five;
};

TEST_F(Contents, AreListedInOrder) {
  Content() += "bytes behind the counted records mean nothing";
  const auto contents = ReadCollectionContents(context, "C.col");
  ASSERT_TRUE(contents);
  EXPECT_EQ(contents->sourcePaths, (std::vector<std::string>{"1", "2", "3", "4", "5"}));
  EXPECT_EQ(contents->header.columnCount, 3);
  EXPECT_EQ(contents->header.rowCount, 2);
  EXPECT_EQ(contents->header.fieldCount, 5);
  VectorField field = NumberedField(6);
  field.filePath = "  C:\\Düse €.vas";
  Collect(field);
  EXPECT_EQ(ReadCollectionContents(context, "C.col")->sourcePaths.back(), "C:\\Düse €.vas");
}

TEST_F(Contents, AreRefusedWithAMessage) {
  auto cases = Damaged(five);
  cases.emplace_back(std::string(five).replace(29, 1, "\x02"), 0);  // the version
  std::string told;
  for (const auto& [content, number] : cases) {
    Content() = content;
    EXPECT_EQ(Paths(), "not readable");
    told += program.ui.TakeBoxes();
    EXPECT_EQ(RemoveRecords(context, "C.col", {1}), RemovalOutcome::failed);
    program.ui.messages.clear();
    EXPECT_EQ(Content(), content);
  }
  Content() = five;
  program.files.readFailsAt["C.col"] = 500;
  EXPECT_EQ(Paths(), "not readable");
  program.files.readFailsAt.clear();
  EXPECT_FALSE(ReadCollectionContents(context, "fehlt.col"));
  for (const auto& numbers : {std::vector<std::int32_t>{6}, {1, 0}}) {
    EXPECT_EQ(RemoveRecords(context, "C.col", numbers), RemovalOutcome::failed);
  }
  EXPECT_EQ(RemoveRecords(context, "C.col", {2}, {"1", "2", "3", "other", "5"}), RemovalOutcome::failed);
  EXPECT_EQ(Content(), five);
  ExpectApproved("refused_collections.txt", told + program.ui.TakeBoxes());
}

struct Removal {
  std::vector<std::int32_t> numbers;
  std::string left;
};

TEST_F(Contents, FillTheLowestHolesFromTheEnd) {
  const Removal removals[] = {{{2, 5}, "143"},     {{4, 5}, "123"}, {{1, 2}, "543"},    {{1}, "5234"},
                              {{5}, "1234"},       {{3}, "1254"},   {{5, 1, 3}, "42"},  {{1, 2, 3, 4}, "5"},
                              {{2, 3, 4, 5}, "1"}, {{2, 4}, "153"}, {{1, 3, 4, 5}, "2"}};
  for (const auto& [numbers, left] : removals) {
    Content() = five + "more";
    EXPECT_EQ(RemoveRecords(context, "C.col", numbers), RemovalOutcome::removed);
    EXPECT_EQ(Paths(), left);
    EXPECT_EQ(Content().size(), kHeader + left.size() * kRecord);
    EXPECT_EQ(Content().substr(kCountAt + 4, kHeader - kCountAt - 4),
              five.substr(kCountAt + 4, kHeader - kCountAt - 4));
  }
  EXPECT_TRUE(program.ui.messages.empty());
}

TEST_F(Contents, MoveInSeveralBlocks) {
  program.files.files.erase("C.col");
  for (std::uint64_t k = 1; k <= 3; ++k) Collect(RandomField(k, 190, 180, {}));
  const std::size_t record = (Content().size() - kHeader) / 3;
  const std::string last = Content().substr(kHeader + 2 * record);
  EXPECT_EQ(RemoveRecords(context, "C.col", {1}), RemovalOutcome::removed);
  EXPECT_TRUE(Content().substr(kHeader, record) == last);
}

TEST_F(Contents, MayHaveGrownSinceTheyWereListed) {
  EXPECT_EQ(RemoveRecords(context, "C.col", {2}, {"1", "2", "3"}), RemovalOutcome::removed);
  EXPECT_EQ(Paths(), "1534");
  EXPECT_EQ(RemoveRecords(context, "C.col", {1}, {"1", "5", "3", "4", "5"}), RemovalOutcome::failed);
}

TEST_F(Contents, StayWhileAnotherEntryPointRuns) {
  context.busy = true;
  EXPECT_EQ(RemoveRecords(context, "C.col", {1}), RemovalOutcome::busy);
  context.busy = false;
  EXPECT_EQ(Content(), five);
  Content() = With(five, kCountAt, 0);
  EXPECT_EQ(RemoveRecords(context, "C.col", {}), RemovalOutcome::removed);
  EXPECT_EQ(Content(), With(five, kCountAt, 0)) << "nothing was asked for";
}

}  // namespace
}  // namespace quiverion::test
