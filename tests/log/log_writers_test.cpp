#include "log/log_writers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <random>

#include "platform/text.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

constexpr std::string_view kRtfHead =
    "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1031{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}\r\n"
    "{\\colortbl;\\red0\\green0\\blue0;\\red200\\green0\\blue0;\\red0\\green200\\blue0;}\r\n"
    "\\uc1\\pard\\f0\\cf1\\fs20 ";

// What a writer makes of the pieces of a log.
struct Output {
  std::string bytes;
  ByteConsumer Consumer() {
    return [this](std::string_view more) { bytes += more; };
  }
};

std::string Rtf(std::initializer_list<std::string_view> pieces) {
  Output output;
  RtfWriter writer(output.Consumer());
  RunLog log;
  log.Attach(writer);
  for (const std::string_view piece : pieces) log.WriteLogLine(piece);
  writer.Finish();
  return output.bytes;
}

std::string Terminal(std::initializer_list<std::string_view> pieces, bool colour) {
  Output output;
  TerminalWriter writer(output.Consumer(), colour);
  RunLog log;
  log.Attach(writer);
  for (const std::string_view piece : pieces) log.WriteLogLine(piece);
  writer.HandOver();
  return output.bytes;
}

TEST(RtfWriter, WritesFormatsWhereTheyChange) {
  EXPECT_EQ(Rtf({"-- Titel --\r\n", "Orginaldatei einladen... ", "fertig\r\n", "    1\r\n", "    2\r\n",
                 "!!! FEHLER !!!\r\n", "    3\r\n", "Ende\r\n"}),
            std::string(kRtfHead) +
                "\\b -- Titel --\\par\r\n"
                "Orginaldatei einladen... "
                "\\cf3\\b0 fertig\\par\r\n"
                "\\i\\fs16     1\\par\r\n"
                "    2\\par\r\n"
                "\\cf2\\i0\\fs20 !!! FEHLER !!!\\par\r\n"
                "\\i\\fs16     3\\par\r\n"
                "\\cf1\\b\\i0\\fs20 Ende\\par\r\n"
                "}\r\n");
  EXPECT_EQ(Rtf({}), std::string(kRtfHead) + "}\r\n");
}

TEST(RtfWriter, EscapesWhatRtfDoesNotHold) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"C:\\a{1}\\b.vas", "C:\\\\a\\{1\\}\\\\b.vas"},
      {"Düse cm² – 5 €", "D\\'fcse cm\\'b2 \\'96 5 \\'80"},
      {"\xC2\x81\xC2\x9D", "\\'81\\'9d"},
      {"αβ9", "\\u945?\\u946?9"},
      {"\xE4\xB8\x80\xEA\x80\x80", "\\u19968?\\u-24576?"},  // the number is a signed one of 16 bits
      {"😀", "\\u-10179?\\u-8704?"},                         // two UTF-16 units
      {"a\tb", "a\\tab b"},
      {"a\r\nb\nc", "a\\par\r\nb\\par\r\nc"},
      {std::string_view("\0\x01\x1B\x7F\r", 5), "?????"},
      {"\xFF.vas", "\\u-3?.vas"},
      {"~|\"", "~|\""}};
  for (const auto& [text, rtf] : cases) {
    EXPECT_EQ(Rtf({text}), std::string(kRtfHead) + "\\b " + std::string(rtf) + "}\r\n");
  }
}

TEST(RtfWriter, EscapesACharacterWhereverItStands) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"\\", "\\\\"}, {"{", "\\{"},     {"}", "\\}"},          {"\x7F", "?"},      {"\x1F", "?"}, {"\t", "\\tab "},
      {"ü", "\\'fc"}, {"α", "\\u945?"}, {"\r\n", "\\par\r\n"}, {"\x80", "\\u-3?"}, {" ", " "},    {"~", "~"}};
  const std::string around = "abcdefghijklmnopqrst";
  for (const auto& [text, rtf] : cases) {
    for (std::size_t at = 0; at <= around.size(); ++at) {
      std::string piece = around;
      std::string expected = around;
      EXPECT_EQ(Rtf({piece.insert(at, text)}), std::string(kRtfHead) + "\\b " + expected.insert(at, rtf) + "}\r\n");
    }
  }
}

// A character of a log with its format; "\r\n" is the one character "\n".
using Shown = std::vector<std::pair<char32_t, LogFormat>>;

// What a reader of RTF shows. Knows what the log uses.
Shown ReadRtf(std::string_view rtf) {
  Shown shown;
  LogFormat format;
  EXPECT_TRUE(rtf.starts_with(kRtfHead));
  rtf.remove_prefix(kRtfHead.size());
  const auto take = [&rtf](std::size_t count) {
    const std::string taken(rtf.substr(0, count));
    rtf.remove_prefix(taken.size());
    return taken;
  };
  while (!rtf.empty() && rtf != "}\r\n") {
    std::string text = take(1);
    if (text == "\r" || text == "\n") continue;
    if (text != "\\") {
      shown.emplace_back(text[0], format);
      continue;
    }
    if (rtf.front() == '\'') {
      text = Utf8FromWindows1252(std::string(1, static_cast<char>(std::stoi(take(3).substr(1), nullptr, 16))));
    } else if (text = take(rtf.find_first_not_of("abcdefghijklmnopqrstuvwxyz")); text.empty()) {
      text = take(1);
    } else {
      const std::string number = take(rtf.find_first_not_of("-0123456789"));
      const int value = number.empty() ? 1 : std::stoi(number);
      if (rtf.front() == ' ' || text == "u") take(1);
      if (text == "cf") format.colour = static_cast<LogColour>(value - 1);
      if (text == "b") format.bold = value != 0;
      if (text == "i") format.italic = value != 0;
      if (text == "fs") format.points = value / 2;
      const std::string word = std::exchange(text, {});
      if (word == "par") text = "\n";
      if (word == "u") AppendUtf8(text, static_cast<char32_t>(value & 0xFFFF));
    }
    for (std::string_view rest = text; !rest.empty();) shown.emplace_back(TakeCodePoint(rest), format);
  }
  return shown;
}

TEST(RtfWriter, ShowsEveryPieceInItsFormat) {
  constexpr std::string_view pieces[] = {"Titel\r\n",
                                         "!!! FEHLER !!!\r\n",
                                         "fertig\r\n",
                                         "!!! WARNUNG !!!\r\n",
                                         "    Größe {1} → 5 cm²\r\n",
                                         "    x\r\n",
                                         "Datei 'C:\\a 1.vas'... ",
                                         ""};
  std::mt19937_64 random(11);
  for (int turn = 0; turn < 200; ++turn) {
    Output output;
    RtfWriter writer(output.Consumer());
    LogRecorder recorder;
    RunLog log;
    log.Attach(writer);
    log.Attach(recorder);
    for (int k = 0; k < 60; ++k) {
      // A few pieces come again and again, as they do where a file warns about every vector.
      const std::uint64_t kinds = turn % 4 == 0 ? std::size(pieces) : 3;
      log.WriteLogLine(pieces[(random() % kinds + static_cast<std::uint64_t>(turn)) % std::size(pieces)]);
    }
    writer.Finish();
    Shown expected;
    for (const auto& piece : recorder.pieces) {
      for (std::string_view rest = piece.text; !rest.empty();) {
        const char32_t c = TakeCodePoint(rest);
        if (c != U'\r') expected.emplace_back(c, piece.format);
      }
    }
    ASSERT_TRUE(ReadRtf(output.bytes) == expected) << output.bytes;
  }
}

TEST(RtfWriter, KeepsBracesBalancedAndBytesPlain) {
  std::string everything;
  for (int byte = 0; byte < 256; ++byte) everything.push_back(static_cast<char>(byte));
  const std::string rtf = Rtf({everything, "}}}{{", "\\}\\{\r\n"});
  int depth = 0;
  for (std::size_t k = 0; k < rtf.size(); ++k) {
    const char c = rtf[k];
    EXPECT_TRUE((c >= 0x20 && c < 0x7F) || c == '\r' || c == '\n') << static_cast<int>(c);
    if (c == '\\') {
      ++k;  // the escaped character does not count
    } else if (c == '{' || c == '}') {
      depth += c == '{' ? 1 : -1;
      EXPECT_TRUE(depth > 0 || k + 3 == rtf.size()) << k;
    }
  }
  EXPECT_EQ(depth, 0);
}

TEST(TerminalWriter, ShowsFormatsInColour) {
  EXPECT_EQ(Terminal({"Titel\r\n", "    x\r\n", "fertig\r\n", "FEHLER\r\n", "    y\r\nz"}, true),
            "\x1b[1mTitel\n\x1b[0m"
            "\x1b[3m    x\n\x1b[0m"
            "\x1b[32mfertig\n\x1b[0m"
            "\x1b[31mFEHLER\n\x1b[0m"
            "\x1b[3m\x1b[31m    y\nz\x1b[0m");
  EXPECT_EQ(Terminal({"Titel\r\n", "    ü²\r\n", "a\r\nb\tc\rd"}, false), "Titel\n    ü²\na\nb\tc\rd");
}

TEST(TerminalWriter, KeepsFileNamesFromSteeringTheTerminal) {
  const auto shown = [](std::string_view text) {
    std::string bytes = Terminal({text}, true);
    bytes.erase(0, std::string_view("\x1b[1m").size());
    bytes.resize(bytes.size() - std::string_view("\x1b[0m").size());
    return bytes;
  };
  EXPECT_EQ(shown("a\x1b]0;title\x07.vas"), "a?]0;title?.vas");
  EXPECT_EQ(shown("a\b\b\x7F\r.vas\r\n"), "a????.vas\n");
  EXPECT_EQ(shown(std::string_view("a\0b", 3)), "a?b");
  EXPECT_EQ(shown("Größe\tα.vas"), "Größe\tα.vas");
  // U+009B and U+009D are "\x1b[" and "\x1b]" in one character. A text of a file may hold them, too.
  EXPECT_EQ(shown("a\xC2\x9B"
                  "31m.vas")
                .find("\xC2\x9B"),
            std::string::npos);
  EXPECT_EQ(shown("a\xC2\x9D"
                  "0;title.vas")
                .find("\xC2\x9D"),
            std::string::npos);
}

TEST(TerminalWriter, ShowsAnAnnouncementAtOnce) {
  Output output;
  TerminalWriter writer(output.Consumer(), false);
  RunLog log;
  log.Attach(writer);
  log.WriteLogLine("Titel\r\n");
  EXPECT_EQ(output.bytes, "") << "whole lines are gathered";
  log.WriteLogLine("Orginaldatei einladen... ");
  EXPECT_EQ(output.bytes, "Titel\nOrginaldatei einladen... ");
}

TEST(PlainTextWriter, WritesThePiecesAsTheyCome) {
  Output output;
  PlainTextWriter writer(output.Consumer());
  RunLog log;
  log.Attach(writer);
  log.WriteLogLine("a... ");
  log.WriteLogLine("fertig\r\n");
  log.WriteLogLine("    {ü}\x1b\r\n");
  writer.HandOver();
  EXPECT_EQ(output.bytes, "a... fertig\r\n    {ü}\x1b\r\n");
}

TEST(LogWriters, NeitherGrowNorSlowDownWithTheLog) {
  constexpr std::size_t count = 200000;
  constexpr std::string_view piece = "    Ungültiger Status eines Vektors:  frame 5\r\n";
  struct Tally {
    std::size_t total = 0;
    std::size_t largest = 0;
    ByteConsumer Consumer() {
      return [this](std::string_view bytes) {
        total += bytes.size();
        largest = std::max(largest, bytes.size());
      };
    }
  };
  Tally rtf, terminal, plain;
  RtfWriter rtfWriter(rtf.Consumer());
  TerminalWriter terminalWriter(terminal.Consumer(), true);
  PlainTextWriter plainWriter(plain.Consumer());
  RunLog log;
  for (LogSink* sink : {static_cast<LogSink*>(&rtfWriter), static_cast<LogSink*>(&terminalWriter),
                        static_cast<LogSink*>(&plainWriter)}) {
    log.Attach(*sink);
  }
  const std::clock_t start = std::clock();
  for (std::size_t k = 0; k < count; ++k) log.WriteLogLine(piece);
  rtfWriter.Finish();
  terminalWriter.HandOver();
  plainWriter.HandOver();
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 10.0);
  constexpr std::string_view rtfPiece = "    Ung\\'fcltiger Status eines Vektors:  frame 5\\par\r\n";
  constexpr std::string_view rtfChange = "\\i\\fs16 ";
  EXPECT_EQ(rtf.total, kRtfHead.size() + rtfChange.size() + count * rtfPiece.size() + 3);
  EXPECT_EQ(plain.total, count * piece.size());
  EXPECT_EQ(terminal.total, count * (piece.size() - 1 + 8));
  for (const Tally& tally : {rtf, terminal, plain}) EXPECT_LT(tally.largest, 66000u);
}

}  // namespace
}  // namespace quiverion::test
