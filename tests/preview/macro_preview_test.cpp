#include "preview/macro_preview.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <tuple>

#include "field/formats/vas_file.h"
#include "macro/command_catalogue.h"
#include "macro/run_driver.h"
#include "support/field_builder.h"
#include "support/field_compare.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

// Two vortices, invalid and masked vectors.
std::string SampleBytes(int index) {
  TestSession program;
  VectorField& field = program.context.field;
  field = MakeField(14, 11);
  SetVelocities(
      field, [&](double x, double y) { return (6.0 - y) * 0.3 + 0.2 * x + index; },
      [&](double x, double y) { return (x - 5.0) * 0.4 + (x > 9 ? (12.0 - x) : 0.0) - 0.1 * y; });
  std::mt19937 random(static_cast<unsigned>(index));
  for (int k = 0; k < 12; ++k) {
    const auto i = static_cast<std::int32_t>(1 + random() % 14), j = static_cast<std::int32_t>(1 + random() % 11);
    field.velX(i, j) += 40.0;
    if (k % 3 == 0) field.status(i, j) = k % 2 == 0 ? 0 : -1;
  }
  field.validVectorCount = 150;
  SaveVas(program.context, "/x.vas");
  return program.files.files["/x.vas"];
}

MacroEvent WithPresets(const CommandRow& row) {
  MacroEvent event(row.eventId);
  for (const Parameter& parameter : row.parameters) event.Set(parameter.key, PresetOf(parameter));
  return event;
}

// Any command but the menus, with names that make results depend on each other.
MacroEvent AnyCommand(std::mt19937& random) {
  const auto rows = CommandCatalogue();
  const CommandRow* row = &rows[random() % rows.size()];
  while (row->IsMenu()) row = &rows[random() % rows.size()];
  MacroEvent event = WithPresets(*row);
  if (event.Find("Postfix") != nullptr) {
    const char* const names[] = {"", "neu/", "neu/tief/", "../"};
    event.Set("Prefix", names[random() % 4]);
    event.Set("Postfix", random() % 2 == 0 ? "_1" : "");
  }
  if (event.Find("FileName") != nullptr) {
    const bool collects = row->parameters.size() == 1 && row->parameters[0].role == FileRole::appends;
    const char* const names[] = {"/serie/neu/a_1.vas", "/serie/b.vas", "/serie/a.vas", "/serie/Wirbel.txt"};
    event.Set("FileName", collects ? "/serie/S.col" : names[random() % 4]);
  }
  if (event.Find("AutoTrafo") != nullptr) event.Set("AutoTrafo", random() % 2 == 0);
  if (event.Find("ChkAbsDeviation") != nullptr) event.Set("ChkAbsDeviation", static_cast<std::int32_t>(random() % 2));
  if (event.Find("XComp") != nullptr) event.Set("XComp", random() % 8 == 0 ? 1e308 : 1.5);
  return event;
}

// The same run in earnest.
struct RealRun {
  TestSession program;

  explicit RealRun(const MemoryFileSystem& files, const MacroEventList& macro, std::size_t commands) {
    program.files = files;
    program.session.inputDirectory = "/serie/";
    program.session.selectedFiles = {"a.vas"};
    program.session.macro.assign(macro.begin(), macro.begin() + static_cast<std::ptrdiff_t>(commands));
    RunMacro(program.session);
  }
};

class MacroPreviewTest : public testing::Test {
 protected:
  MacroPreviewTest() {
    below.files = {{"/serie/a.vas", SampleBytes(0)}, {"/serie/b.vas", SampleBytes(1)}, {"/serie/a_1.vas", "old"}};
    before = below.files;
  }
  ~MacroPreviewTest() override { EXPECT_EQ(below.files, before) << "a preview must not change any file"; }

  // Every state, report and file of the preview against runs of the first commands.
  void ExpectAsInRuns(MacroPreview& preview, const MacroEventList& macro) {
    preview.Begin(file, macro);
    while (preview.ComputeNext()) {
    }
    std::set<std::string> written;
    std::string logs;
    for (std::size_t step = 0; step <= macro.size(); ++step) {
      RealRun run(below, macro, step);
      const StepReport& report = preview.Report(step);
      std::unique_ptr<VectorField> field = preview.FieldAfter(step);
      run.program.context.field.derivedScalar = field->derivedScalar;  // part of no state
      ASSERT_EQ(FirstDifference(*field, run.program.context.field), "") << step << " " << report.title;
      for (const FileChange& change : report.files) {
        ASSERT_EQ(change.kind == FileChangeKind::created,
                  !below.files.contains(change.path) && !written.contains(change.path));
        written.insert(change.path);
      }
      for (const auto& [path, bytes] : run.program.files.files) {
        const auto old = below.files.find(path);
        ASSERT_TRUE(written.contains(path) || (old != below.files.end() && old->second == bytes)) << path;
      }
      for (const std::string& path : written) ASSERT_TRUE(run.program.files.files.contains(path)) << path;
      ASSERT_EQ(run.program.context.abortCurrentFile, report.failed || !report.wasReached) << report.log;
      logs += report.log;
      std::string log = run.program.TakeLog();
      std::erase(log, '\r');
      ASSERT_NE(log.find(logs), std::string::npos) << logs << "\nis not in\n" << log;
    }
  }

  MemoryFileSystem below;
  std::map<std::string, std::string> before;
  ScriptedClock clock;
  PreviewFile file{.directory = "/serie/", .name = "a.vas", .version = {}, .earlierPaths = {}};
};

TEST_F(MacroPreviewTest, EveryStateIsThatOfARunHoweverTheMacroWasEdited) {
  std::mt19937 random(7);
  for (const std::uint64_t limit : {std::uint64_t{1} << 30, std::uint64_t{12000}, std::uint64_t{0}}) {
    for (int round = 0; round < 12; ++round) {
      MacroPreview preview(below, clock, '.', limit);
      MacroEventList macro;
      for (std::size_t k = 0; k < 9; ++k) macro.push_back(AnyCommand(random));
      for (int edit = 0; edit < 4; ++edit) {
        ASSERT_NO_FATAL_FAILURE(ExpectAsInRuns(preview, macro)) << limit << " " << round << " " << edit;
        EXPECT_LE(preview.KeptBytes(), limit);
        const std::size_t place = random() % macro.size();
        const auto at = macro.begin() + static_cast<std::ptrdiff_t>(place);
        if (edit == 0) macro[place] = AnyCommand(random);
        if (edit == 1) macro.erase(at);
        if (edit == 2) macro.insert(at, AnyCommand(random));
      }
    }
  }
}

TEST_F(MacroPreviewTest, EveryCommandIsReported) {
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    MacroEvent event = WithPresets(row);
    if (event.Find("FileName") != nullptr) {
      event.Set("FileName", row.parameters[0].role == FileRole::reads ? "/serie/b.vas" : "/serie/neu.col");
    }
    if (event.Find("ChkYComp") != nullptr) event.Set("ChkYComp", 1);
    MacroPreview preview(below, clock, '.');
    ASSERT_NO_FATAL_FAILURE(ExpectAsInRuns(preview, {event})) << row.constantName;
    for (const Parameter& parameter : row.parameters) {
      if (parameter.role == FileRole::writes && parameter.key == "Prefix") {
        EXPECT_EQ(preview.Report(1).files.size(), 1u) << row.constantName;
      }
    }
  }
}

TEST_F(MacroPreviewTest, CountsWhatAStepDoes) {
  MacroEvent search = WithPresets(*FindCommand("evtFaultVectors"));
  search.Set("ChkAbsInterval", 1);
  search.Set("TxtAbsIntMax", std::string("20"));
  MacroEvent vortices = WithPresets(*FindCommand("evtVortexCentres"));
  MacroPreview preview(below, clock, '.');
  preview.Begin(file, {search, MacroEvent(40001), MacroEvent(40103), vortices});
  while (preview.ComputeNext()) {
  }
  const auto countOf = [&](std::size_t step, auto counts) {
    const auto field = preview.FieldAfter(step);
    return std::ranges::count_if(field->status.Values(), counts);
  };
  const auto isValid = [](std::int32_t status) { return status > 0; };
  const auto [loaded, searched, filled, smoothed, found] =
      std::tie(preview.Report(0), preview.Report(1), preview.Report(2), preview.Report(3), preview.Report(4));
  EXPECT_EQ(loaded.changes.valid, countOf(0, isValid));
  EXPECT_GT(searched.changes.rejected, 5);
  EXPECT_EQ(searched.changes.rejected, countOf(0, isValid) - countOf(1, isValid));
  EXPECT_EQ(searched.changes.changed, 0);
  EXPECT_EQ(filled.changes.filled, countOf(2, isValid) - countOf(1, isValid));
  EXPECT_GT(smoothed.changes.changed, 100);
  EXPECT_GT(smoothed.changes.greatest, 0.0);
  const auto [i, j] = std::pair(smoothed.changes.column, smoothed.changes.row);
  const auto a = preview.FieldAfter(2), b = preview.FieldAfter(3);
  EXPECT_EQ(smoothed.changes.greatest, std::hypot(b->velX(i, j) - a->velX(i, j), b->velY(i, j) - a->velY(i, j)));
  EXPECT_GE(found.vortices.value_or(0), 1);
}

TEST_F(MacroPreviewTest, AStepThatDependsOnTheFilesBeforeIsNotGuessed) {
  using Names = std::vector<std::string>;
  const auto load = [](const char* path) {
    MacroEvent event(20002);
    event.Set("FileName", std::string(path));
    return event;
  };
  const MacroEvent copy(20001), subtract(20005);
  const struct {
    MacroEventList macro;
    Names earlier;
    std::string copiedFrom;
    std::size_t unknown;  // step; 0: all are known
  } cases[] = {
      {{subtract, copy}, {}, "", 0},
      {{subtract}, {"/serie/0.vas"}, "/serie/x.vas", 0},
      {{MacroEvent(40103), subtract, copy}, {"/serie/0.vas"}, "", 2},
      {{copy, subtract}, {"/serie/0.vas"}, "", 0},
      {{load("/serie/b.vas"), subtract}, {"/serie/0.vas"}, "", 0},
      {{load("/serie/b.vas"), subtract, copy}, {"/serie/0.vas"}, "", 0},
      {{load("/serie/b.vas"), subtract, copy}, {"/serie/0.vas", "/serie/b.vas"}, "", 1},
      {{load("/serie/b.vas"), subtract}, {"/serie/b.vas"}, "/serie/b.vas", 1},
  };
  for (const auto& each : cases) {
    auto buffer = std::make_shared<BufferField>();
    buffer->bufferFileName = each.copiedFrom;
    buffer->bufferColumnCount = 14;
    buffer->bufferRowCount = 11;
    buffer->bufferVelX.Reset(14, 11);
    buffer->bufferVelY.Reset(14, 11);
    buffer->bufferStatus.Reset(14, 11);
    file.earlierPaths = each.earlier;
    file.buffer = buffer;
    MacroPreview preview(below, clock, '.');
    preview.Begin(file, each.macro);
    while (preview.ComputeNext()) {
    }
    for (std::size_t step = 1; step <= each.macro.size(); ++step) {
      EXPECT_EQ(preview.Report(step).isKnown, step != each.unknown);
      EXPECT_EQ(preview.Report(step).wasReached, each.unknown == 0 || step <= each.unknown);
    }
  }
}

TEST_F(MacroPreviewTest, ACancelledComputationGoesOnLater) {
  MacroEventList macro = {MacroEvent(40103), WithPresets(*FindCommand("evtSaveVas")), MacroEvent(40104)};
  MacroPreview whole(below, clock, '.');
  whole.Begin(file, macro);
  while (whole.ComputeNext()) {
  }
  for (int cancelAt = 1; cancelAt < 12; ++cancelAt) {
    MacroPreview preview(below, clock, '.', cancelAt % 2 == 0 ? 0 : std::uint64_t{1} << 30);
    int left = cancelAt;
    preview.CancelIf([&] { return --left == 0; });
    preview.Begin(file, macro);
    for (bool more = true; more;) {
      try {
        more = preview.ComputeNext();
      } catch (PreviewCancelled) {
      }
    }
    preview.CancelIf([] { return false; });
    for (std::size_t step = 0; step <= macro.size(); ++step) {
      EXPECT_EQ(FirstDifference(*preview.FieldAfter(step), *whole.FieldAfter(step)), "");
      EXPECT_EQ(preview.Report(step).log, whole.Report(step).log);
    }
  }
}

TEST_F(MacroPreviewTest, BadInputIsSaidInItsStep) {
  below.files["/serie/kaputt.vas"] = before["/serie/kaputt.vas"] = "kein Feld";
  MacroEvent noName = WithPresets(*FindCommand("evtSaveVas"));
  MacroEvent gone(20002), outside = noName;
  gone.Set("FileName", std::string("/serie/fehlt.vas"));
  outside.Set("Prefix", std::string("../../"));
  const MacroEvent incomplete(30001), unknown(99);
  const struct {
    const char* name;
    MacroEvent event;
    std::size_t failing;
    const char* says;
  } cases[] = {{"kaputt.vas", noName, 0, "FEHLER"},
               {"fehlt.vas", noName, 0, "FEHLER"},
               {"a.vas", gone, 1, "FEHLER"},
               {"a.vas", outside, 1, "hinaus"},
               {"a.vas", incomplete, 1, "FEHLER"},
               {"a.vas", unknown, 9, ""},
               {"a.vas", MacroEvent(20003), 1, "stimmt nicht"}};
  for (const auto& each : cases) {
    file.name = each.name;
    MacroPreview preview(below, clock, '.');
    preview.Begin(file, {each.event, MacroEvent(40103)});
    while (preview.ComputeNext()) {
    }
    for (std::size_t step = 0; step < 3; ++step) {
      EXPECT_EQ(preview.Report(step).failed, step == each.failing) << each.name << step;
      EXPECT_EQ(preview.Report(step).wasReached, step <= each.failing);
    }
    EXPECT_NE(preview.Report(std::min<std::size_t>(each.failing, 2)).log.find(each.says), std::string::npos);
    EXPECT_EQ(preview.FieldAfter(2)->columnCount, each.failing == 0 ? 0 : 14);
  }
}

}  // namespace
}  // namespace quiverion::test
