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

TEST(RepaintThrottle, PaintsNewAndSlowStepsAlwaysAndQuickOnesSometimes) {
  RepaintThrottle throttle;
  EXPECT_TRUE(throttle.IsDue("laden", 0.000));
  EXPECT_TRUE(throttle.IsDue("median", 0.001));
  EXPECT_TRUE(throttle.IsDue("sichern", 0.101));  // the median took 0.1 s
  EXPECT_FALSE(throttle.IsDue("laden", 0.103));
  EXPECT_TRUE(throttle.IsDue("median", 0.105));    // it held up the run in the file before
  EXPECT_FALSE(throttle.IsDue("sichern", 0.120));  // was quick this time
  EXPECT_FALSE(throttle.IsDue("laden", 0.144));
  EXPECT_FALSE(throttle.IsDue("median", 0.1445));
  EXPECT_TRUE(throttle.IsDue("sichern", 0.146));  // 40 ms since the last one
}

TEST(ProgressCaption, TellsPercentOnlyWhereTheWindowIsMinimised) {
  EXPECT_EQ(ProgressCaption(false, 1, 8), "QuiverionSeries  -  Makro wird bearbeitet");
  EXPECT_EQ(ProgressCaption(true, 1, 8), "QuiverionSeries (12%)");  // halves to even
  EXPECT_EQ(ProgressCaption(true, 3, 8), "QuiverionSeries (38%)");
}

}  // namespace
}  // namespace quiverion
