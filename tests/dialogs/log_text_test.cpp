#include "dialogs/log_text.h"

#include <gtest/gtest.h>

#include "dialogs/frmShowProgress.h"
#include "dialogs/repaint_throttle.h"
#include "log/log_writers.h"

namespace quiverion {
namespace {

TEST(LogTextTest, ComesOutAsItWasWritten) {
  RunLog log;
  LogText kept;
  std::string direct, replayed;
  RtfWriter rtf([&](std::string_view bytes) { direct += bytes; });
  log.Attach(kept);
  log.Attach(rtf);
  for (const char* piece : {"Laden... ", "fertig\r\n", "    klein\r\n", "    {noch} eins\r\n", "!!! FEHLER !!!\r\n",
                            "    Ω\r\n", "Ende", " Ende\r\n"}) {
    log.WriteLogLine(piece);
  }
  rtf.Finish();
  RtfWriter again([&](std::string_view bytes) { replayed += bytes; });
  kept.ReplayTo(again);
  again.Finish();
  EXPECT_EQ(replayed, direct);
  kept.Clear();
  EXPECT_EQ(kept.Text(), "");
}

TEST(RepaintThrottle, PaintsNewAndSlowStepsAlwaysAndQuickOnesNowAndThen) {
  RepaintThrottle throttle;
  const struct {
    const char* step;
    double begins;
    bool painted;
  } steps[] = {
      {"laden", 0.000, true},    {"median", 0.001, true},   {"sichern", 0.101, true},  // the first file
      {"laden", 0.103, false},   {"median", 0.105, true},  // it took 0.1 s in the file before
      {"sichern", 0.108, false}, {"laden", 0.109, false},  // now all are quick
      {"median", 0.110, false},  {"sichern", 0.144, false}, {"laden", 0.146, false},  // the median took the most time:
      {"median", 0.147, true},   {"sichern", 0.148, false}, {"laden", 0.229, true},   // it is the one that is shown
  };
  for (const auto& s : steps) EXPECT_EQ(throttle.IsDue(s.step, s.begins), s.painted) << s.step << " at " << s.begins;
}

TEST(ProgressCaption, TellsPercentOnlyWhereTheWindowIsMinimised) {
  EXPECT_EQ(ProgressCaption(false, 1, 8), "QuiverionSeries  -  Makro wird bearbeitet");
  EXPECT_EQ(ProgressCaption(true, 1, 8), "QuiverionSeries (12%)");  // halves to even
  EXPECT_EQ(ProgressCaption(true, 3, 8), "QuiverionSeries (38%)");
}

}  // namespace
}  // namespace quiverion
