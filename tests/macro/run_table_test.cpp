// The table of a run: its numbers compared with the fields before and after each command, and its text.
#include "macro/run_table.h"

#include <array>
#include <set>

#include "log/log_lines.h"
#include "operations/kernels/vortex_maxima_plain.h"
#include "run_fixture.h"
#include "support/approved.h"

namespace quiverion::test {
namespace {

// Counts by itself what the table of the base class counts.
class CheckedTable : public RunTable {
 public:
  using RunTable::RunTable;

  void RunBegins(const Session& session) override {
    RunTable::RunBegins(session);
    file_ = 0;
  }
  void Loaded(const Context& context) override {
    RunTable::Loaded(context);
    expected_ = {.name = {}, .validBefore = Valid(context.field.status), .validAfter = {}, .vortices = {}};
  }
  void Executing(const CommandRow* row, const Context& context) override {
    RunTable::Executing(row, context);
    before_ = context.field.status;
  }
  void Executed(const CommandRow* row, const Context& context) override {
    RunTable::Executed(row, context);
    const Grid<std::int32_t>& after = context.field.status;
    expected_.validAfter = Valid(after);
    if (row->statuses == StatusEffect::moves) {
      EXPECT_EQ(Valid(before_), Valid(after)) << row->constantName;
    } else {
      CountChanges(*row, after);
    }
    if (row->constantName != "evtVortexCentres") return;
    Grid<std::int16_t> marks;
    marks.Reset(context.field.columnCount, context.field.rowCount);
    plain::MarkMaxima(context.field.derivedScalar, marks);
    expected_.vortices = std::ranges::count_if(marks.Values(), [](std::int16_t mark) { return mark != 0; });
  }
  void FileEnds(bool interrupted) override {
    RunTable::FileEnds(interrupted);
    const FileRow& row = Rows()[file_++];
    const auto numbers = [](const FileRow& r) {
      return std::array{r.validBefore.value(), r.validAfter.value(), r.rejected, r.filled, r.vortices.value_or(-1)};
    };
    EXPECT_EQ(numbers(row), numbers(expected_)) << row.name;
  }

  std::set<std::string_view> changing;  // the commands that have changed statuses

 private:
  static std::int64_t Valid(const Grid<std::int32_t>& status) {
    return std::ranges::count_if(status.Values(), [](std::int32_t s) { return s > 0; });
  }
  void CountChanges(const CommandRow& row, const Grid<std::int32_t>& after) {
    for (std::size_t k = 0; k < after.Values().size(); ++k) {
      const bool was = before_.Values()[k] > 0, is = after.Values()[k] > 0;
      expected_.rejected += was && !is ? 1 : 0;
      expected_.filled += is && !was ? 1 : 0;
      if (was != is) changing.insert(row.constantName);
    }
  }

  Grid<std::int32_t> before_;
  FileRow expected_;
  std::size_t file_ = 0;
};

class RunTableTest : public RunTest {
 protected:
  // A command with its presets and the files of the test.
  static MacroEvent Preset(const CommandRow& row) {
    MacroEvent event(row.eventId);
    for (const Parameter& parameter : row.parameters) event.Set(parameter.key, PresetOf(parameter));
    if (row.constantName == "evtLoadBuffer") event.Set("FileName", std::string("/m.vas"));
    if (row.constantName == "evtVortexCentres") event.Set("FileName", std::string("/W.txt"));
    if (row.constantName == "evtCollectStatistics") event.Set("FileName", std::string("/S.col"));
    if (row.constantName == "evtFaultVectors") event.Set("ChkAbsDeviation", 1);
    if (event.Find("Prefix") != nullptr) event.Set("Prefix", std::string("neu/"));
    return event;
  }

  void Watch(const MacroEventList& macro, RunTable& table) {
    session.macro = macro;
    RunMacro(session, &table);
  }
};

TEST_F(RunTableTest, CountsWhatEveryCommandDoesToTheVectors) {
  // More vectors than a block of the sums, and not a multiple of one.
  const auto field = [](int index) {
    return samples::MakeSampleField({.index = index, .columns = 31, .rows = 17, .holeShare = 0.1});
  };
  samples::SampleField buffer = field(7);
  buffer.status[0] = -1;  // masked in no other field
  files["/m.vas"] = samples::VasBytes(buffer);
  const auto sample = [&](int index) { return samples::VasBytes(field(index)); };
  AddFile("a.vas", sample(1));
  AddFile("b.vas", sample(2));
  MacroEventList everything;
  std::set<std::string_view> declared;
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.statuses == StatusEffect::changes) declared.insert(row.constantName);
    if (!row.IsMenu()) everything.push_back(Preset(row));
  }
  CheckedTable table(program.log);
  // Each once with the field as it was loaded, then in orders in which they follow each other.
  for (const MacroEvent& command : everything) Watch({Preset(*FindCommand("evtLoadBuffer")), command}, table);
  Watch(everything, table);
  std::ranges::reverse(everything);
  Watch(everything, table);
  EXPECT_EQ(table.changing, declared) << "every command that changes statuses says so in the catalogue, and no other";
}

TEST_F(RunTableTest, NamesTheFirstErrorAndItsPlaceInTheLog) {
  AddFile("a.vas", samples::VasBytes(SmallSample()));
  std::string vec = samples::VecBytes(SmallSample(), 1);
  AddFile("b.vec", vec.replace(256, 4, "\0\0\xE0\x40", 4));  // a status of 7
  AddFile("c;\"!!! FEHLER !!!\".vas", samples::VasBytes(SmallSample()).substr(0, 300));
  Select("d.vas");
  AddFile("e.vas", samples::VasBytes(SmallSample()));
  AddFile("f.vas", samples::VasBytes(SmallSample()));
  RunTable table(program.log);
  const auto told = [&] {
    const std::string log = program.TakeLog();
    std::vector<FileRow> rows = table.TakeRows();
    for (FileRow& row : rows) {
      if (row.result == FileResult::notRun) continue;
      const std::string_view place = std::string_view(log).substr(row.logPlace);
      EXPECT_TRUE(place.starts_with(row.errors > 0 ? "!!!" : MakeTitleLine(row.name))) << row.name << ": " << place;
      row.seconds = 0.0;
    }
    std::string text;
    WriteTable(rows, ',', [&](std::string_view block) { text += block; });
    return text + "\r\n";
  };
  Watch({Event(40001), Event(40103)}, table);
  std::string text = told();
  program.files.faults.open = ErrorNumber::pathAccess;
  Watch({SaveEvent("", "_1"), SaveEvent("", "_2")}, table);
  text += told();
  ui.yields = 0;
  ui.abortAtYield = 5;
  Watch({Event(40001), Event(40103)}, table);
  text += told();
  ExpectApproved("run_tables.txt", text);
}

}  // namespace
}  // namespace quiverion::test
