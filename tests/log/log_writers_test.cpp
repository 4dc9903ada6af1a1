#include "log/log_writers.h"

#include <gtest/gtest.h>

#include "platform/text/text.h"
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

TEST(RtfWriter, EscapesWhatRtfDoesNotHold) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"C:\\a{1}\\b.vas", "C:\\\\a\\{1\\}\\\\b.vas"},
      {"Düse cm² – 5 €", "D\\'fcse cm\\'b2 \\'96 5 \\'80"},
      {"\xC2\x81\xC2\x9D", "\\'81\\'9d"},
      {"αβ9", "\\u945?\\u946?9"},
      {"\xE4\xB8\x80\xEA\x80\x80", "\\u19968?\\u-24576?"},  // the number is a signed one of 16 bits
      {"\xE7\xBF\xBF\xE8\x80\x80", "\\u32767?\\u-32768?"},
      {"😀", "\\u-10179?\\u-8704?"},  // two UTF-16 units
      {"a\tb", "a\\tab b"},
      {"a\r\nb\nc", "a\\par\r\nb\\par\r\nc"},
      {std::string_view("\0\x01\x1B\x7F\r", 5), "?????"},
      {"\xFF.vas", "\\u-3?.vas"},
      {"~|\"", "~|\""}};
  for (const auto& [text, rtf] : cases) {
    EXPECT_EQ(Rtf({text}), std::string(kRtfHead) + "\\b " + std::string(rtf) + "}\r\n");
  }
}

TEST(RtfWriter, ChangesOnlyWhatDiffersFromThePieceBefore) {
  EXPECT_EQ(Rtf({"Titel\r\n", "    x\r\n", "fertig\r\n", "FEHLER\r\n", "    y\r\n", "Ende"}),
            std::string(kRtfHead) +
                "\\b Titel\\par\r\n\\b0\\i\\fs16     x\\par\r\n\\cf3\\i0\\fs20 fertig\\par\r\n\\cf2 FEHLER\\par\r\n"
                "\\i\\fs16     y\\par\r\n\\cf1\\b\\i0\\fs20 Ende}\r\n");
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
  // U+009B is "\x1b[" in one character. A text of a file may hold it, too.
  EXPECT_EQ(shown("a\u009B31m.vas").find("\u009B"), std::string::npos);
}

}  // namespace
}  // namespace quiverion::test
