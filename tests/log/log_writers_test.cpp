#include "log/log_writers.h"

#include <gtest/gtest.h>

#include "platform/text/text.h"
#include "support/approved.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

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

TEST(LogWriters, WriteEveryCharacterAndFormat) {
  const std::initializer_list<std::string_view> characters = {
      "C:\\a{1}\\b.vas",
      "Düse cm² – 5 €",
      "\xC2\x81\xC2\x9D",
      "αβ9",
      "\xE4\xB8\x80\xEA\x80\x80",  // RTF has signed numbers of 16 bits
      "\xE7\xBF\xBF\xE8\x80\x80",
      "😀",  // two UTF-16 units
      "a\tb",
      "a\r\nb\nc",
      std::string_view("\0\x01\x1B\x7F\r", 5),
      "\xFF.vas",
      "~|\""};
  const std::initializer_list<std::string_view> formats = {"Titel\r\n",  "    x\r\n",  "fertig\r\n",
                                                           "FEHLER\r\n", "    y\r\nz", "Ende"};
  const std::string text = Rtf(characters) + Rtf(formats) + Terminal(formats, true) + Terminal(formats, false);
  ExpectApproved("log_formats.txt", text);
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
