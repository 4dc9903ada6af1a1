#include "log/run_log.h"

#include <gtest/gtest.h>

#include "support/approved.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

constexpr LogColour kBlack = LogColour::black;
constexpr LogColour kRed = LogColour::red;
constexpr LogColour kGreen = LogColour::green;

TEST(RunLog, FormatsEachPieceByItsContent) {
  struct Case {
    std::string_view text;
    LogFormat format;  // colour, bold, italic, points
  };
  // In this order: an indented piece keeps the colour of the previous one.
  const Case cases[] = {{"    indented\r\n", {kBlack, false, true, 8}},
                        {"Titel\r\n", {kBlack, true, false, 10}},
                        {"!!! FEHLER !!!\r\n", {kRed, false, false, 10}},
                        {"    after an error\r\n", {kRed, false, true, 8}},
                        {"fehler\r\n", {kBlack, true, false, 10}},
                        {"Makro-Ausführung FEHLERHAFT beendet\r\n", {kRed, false, false, 10}},
                        {"!!! WARNUNG !!!\r\n", {kBlack, true, false, 10}},
                        {"befindet sich bereits im Buffer -> fertig\r\n", {kGreen, false, false, 10}},
                        {"   three blanks\r\n", {kBlack, true, false, 10}},
                        {"fertig, aber FEHLER", {kRed, false, false, 10}},
                        {"    fertig (indented)\r\n", {kGreen, false, true, 8}},
                        {"Orginaldatei 'fertigung.vas' einladen... ", {kGreen, false, false, 10}},
                        {"x\r\n    second line of a piece\r\n", {kBlack, true, false, 10}},
                        {"", {kBlack, true, false, 10}}};
  RunLog log;
  LogRecorder recorder;
  log.Attach(recorder);
  for (const Case& c : cases) {
    log.WriteLogLine(c.text);
    EXPECT_EQ(recorder.pieces.back().text, c.text);
    EXPECT_EQ(recorder.pieces.back().format, c.format) << c.text;
  }
  EXPECT_EQ(recorder.pieces.size(), std::size(cases));
}

TEST(MakeTitleLine, PutsDashesAroundTheText) {
  std::string told;
  for (const char* text : {"", "Größe (2²)", "x"}) told += MakeTitleLine(text) + "\n";  // characters, not bytes
  for (const std::size_t length : {97, 98, 99, 200}) told += MakeTitleLine(std::string(length, 'x')) + "\n";
  ExpectApproved("title_lines.txt", told);
}

}  // namespace
}  // namespace quiverion::test
