#include "log/log_writers.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace quiverion {
namespace {

constexpr std::size_t kBlockSize = 64 * 1024;

// Bytes that stand for themselves in RTF.
constexpr std::array<bool, 256> kPlainInRtf = [] {
  std::array<bool, 256> plain{};
  for (std::size_t byte = 0x20; byte < 0x7F; ++byte) plain[byte] = byte != '\\' && byte != '{' && byte != '}';
  return plain;
}();

bool IsControl(char c) {
  return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
}

// "\r\n" becomes "\n"; for a terminal control characters become "?".
void AppendLines(std::string& target, std::string_view text, bool forTerminal) {
  const std::size_t start = target.size();
  while (!text.empty()) {
    const std::size_t lineBreak = text.find("\r\n");
    target.append(text.substr(0, lineBreak));
    if (lineBreak == std::string_view::npos) break;
    target.push_back('\n');
    text.remove_prefix(lineBreak + 2);
  }
  if (forTerminal) std::replace_if(target.begin() + static_cast<std::ptrdiff_t>(start), target.end(), IsControl, '?');
}

void AppendHex(std::string& target, unsigned char byte) {
  target.append("\\'");
  target.push_back("0123456789abcdef"[byte >> 4]);
  target.push_back("0123456789abcdef"[byte & 15]);
}

// One UTF-16 unit as RTF writes it: a signed decimal number, then "?" for readers that do not know it.
void AppendUnit(std::string& target, char32_t unit) {
  const int number = unit < 0x8000 ? static_cast<int>(unit) : static_cast<int>(unit) - 0x10000;
  target.append("\\u").append(std::to_string(number)).push_back('?');
}

void AppendRtfCharacter(std::string& target, char32_t c) {
  switch (c) {
    case '\\':
    case '{':
    case '}':
      target.append({'\\', static_cast<char>(c)});
      return;
    case '\t':
      target.append("\\tab ");
      return;
    case '\n':
      target.append("\\par\r\n");
      return;
    default:
      break;
  }
  std::string utf8;
  AppendUtf8(utf8, c);
  const Windows1252Text single = Windows1252FromUtf8(utf8);
  if (c < 0x20 || c == 0x7F) {
    target.push_back('?');
  } else if (single.complete) {
    AppendHex(target, static_cast<unsigned char>(single.bytes.front()));
  } else if (c >= 0x10000) {
    AppendUnit(target, 0xD800 + ((c - 0x10000) >> 10));
    AppendUnit(target, 0xDC00 + ((c - 0x10000) & 0x3FF));
  } else {
    AppendUnit(target, c);
  }
}

}  // namespace

void BufferedLogWriter::HandOver() {
  if (!buffer_.empty()) consumer_(buffer_);
  buffer_.clear();
}

void BufferedLogWriter::HandOverWhenFull() {
  if (buffer_.size() >= kBlockSize) HandOver();
}

void PlainTextWriter::Write(std::string_view text, const LogFormat& /*format*/) {
  buffer_.append(text);
  HandOverWhenFull();
}

void TerminalWriter::Write(std::string_view text, const LogFormat& format) {
  if (colour_) {
    buffer_.append(format.bold ? "\x1b[1m" : "");
    buffer_.append(format.italic ? "\x1b[3m" : "");
    // Black is the terminal's own colour: it may be a dark one.
    buffer_.append(format.colour == LogColour::red ? "\x1b[31m" : format.colour == LogColour::green ? "\x1b[32m" : "");
  }
  AppendLines(buffer_, text, colour_);
  if (colour_) buffer_.append("\x1b[0m");
  HandOverWhenFull();
}

RtfWriter::RtfWriter(ByteConsumer consumer) : BufferedLogWriter(std::move(consumer)) {
  buffer_ =
      "{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang1031{\\fonttbl{\\f0\\fswiss\\fcharset0 Arial;}}\r\n"
      "{\\colortbl;\\red0\\green0\\blue0;\\red200\\green0\\blue0;\\red0\\green200\\blue0;}\r\n"
      "\\uc1\\pard\\f0\\cf1\\fs20 ";
}

void RtfWriter::ChangeFormat(const LogFormat& format) {
  if (format == current_) return;
  if (format.colour != current_.colour) {
    buffer_.append("\\cf").push_back(static_cast<char>('1' + static_cast<int>(format.colour)));
  }
  if (format.bold != current_.bold) buffer_.append(format.bold ? "\\b" : "\\b0");
  if (format.italic != current_.italic) buffer_.append(format.italic ? "\\i" : "\\i0");
  if (format.points != current_.points) buffer_.append("\\fs").append(std::to_string(2 * format.points));
  buffer_.push_back(' ');
  current_ = format;
}

void RtfWriter::AppendEscaped(std::string_view text) {
  while (!text.empty()) {
    std::size_t plain = 0;
    while (plain < text.size() && kPlainInRtf[static_cast<unsigned char>(text[plain])]) ++plain;
    buffer_.append(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.starts_with("\r\n")) {
      buffer_.append("\\par\r\n");
      text.remove_prefix(2);
    } else if (!text.empty()) {
      AppendRtfCharacter(buffer_, TakeCodePoint(text));
    }
  }
}

void RtfWriter::Write(std::string_view text, const LogFormat& format) {
  ChangeFormat(format);
  AppendEscaped(text);
  HandOverWhenFull();
}

void RtfWriter::Finish() {
  buffer_.append("}\r\n");
  HandOver();
}

}  // namespace quiverion
