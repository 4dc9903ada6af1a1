#include "log/log_writers.h"

#include <gtest/gtest.h>

#include "platform/text/text.h"
#include "support/approved.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

// The output of a writer for the pieces of a log.
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
      "C:\\a{1}\\b.vas", "Düse cm² – 5 €", "\xC2\x81\xC2\x9D", "αβ9",
      "\xE4\xB8\x80\xEA\x80\x80",  // RTF has signed numbers of 16 bits
      "\xE7\xBF\xBF\xE8\x80\x80",
      "😀",  // two UTF-16 units
      "a\tb", "a\r\nb\nc", std::string_view("\0\x01\x1B\x7F\r", 5), "\xFF.vas", "~|\"",
      // What would steer the terminal; U+009B is "\x1b[" in one character.
      "a\x1b]0;title\x07.vas", "a\b\b\x7F\r.vas\r\n", std::string_view("a\0b", 3), "Größe\tα.vas", "a\u009B31m.vas"};
  const std::initializer_list<std::string_view> formats = {"Titel\r\n",  "    x\r\n",  "fertig\r\n",
                                                           "FEHLER\r\n", "    y\r\nz", "Ende"};
  const std::string text =
      Rtf(characters) + Terminal(characters, true) + Rtf(formats) + Terminal(formats, true) + Terminal(formats, false);
  ExpectApproved("log_formats.txt", text);
}

}  // namespace
}  // namespace quiverion::test
