#include "log/run_log.h"

#include <gtest/gtest.h>

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
  // In this order: an indented piece takes over the colour before it.
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
  const auto line = [](std::size_t left, const std::string& text, std::size_t right) {
    return std::string(left, '-') + " " + text + " " + std::string(right, '-');
  };
  const std::string letters(200, 'x');
  EXPECT_EQ(MakeTitleLine(""), line(50, "", 49));
  EXPECT_EQ(MakeTitleLine("Größe (2²)"), line(45, "Größe (2²)", 44)) << "characters, not bytes";
  EXPECT_EQ(MakeTitleLine("x"), line(49, "x", 49));
  EXPECT_EQ(MakeTitleLine(letters.substr(0, 97)), line(1, letters.substr(0, 97), 1));
  EXPECT_EQ(MakeTitleLine(letters.substr(0, 98)), line(1, letters.substr(0, 98), 0));
  EXPECT_EQ(MakeTitleLine(letters.substr(0, 99)), letters.substr(0, 99));
  EXPECT_EQ(MakeTitleLine(letters), letters);
}

}  // namespace
}  // namespace quiverion::test
