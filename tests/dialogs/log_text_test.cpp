#include "dialogs/log_text.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace quiverion
