#include "log/log_writers.h"

#include <algorithm>
#include <charconv>

#include "platform/text/byte_words.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr std::size_t kBlockSize = 64 * 1024;

bool IsPlainInRtf(char c) {
  return c >= 0x20 && c < 0x7F && c != '\\' && c != '{' && c != '}';
}

// Number of characters at the beginning that need no escape in RTF; checks eight at a time.
std::size_t PlainPrefix(std::string_view text) {
  std::size_t length = 0;
  for (; length + 8 <= text.size(); length += 8) {
    const words::Word word = words::Load(text.data() + length);
    const words::Word special = (word & words::kHighs) | words::BytesBelow<0x20>(word) |
                                words::FirstBytesEqual<0x7F>(word) | words::FirstBytesEqual<'\\'>(word) |
                                words::FirstBytesEqual<'{'>(word) | words::FirstBytesEqual<'}'>(word);
    if (special != 0) break;
  }
  while (length < text.size() && IsPlainInRtf(text[length])) ++length;
  return length;
}

// "\r\n" becomes "\n"; for a terminal, control characters become "?".
void AppendLines(std::string& target, std::string_view text, bool forTerminal) {
  const std::size_t start = target.size();
  while (!text.empty()) {
    const std::size_t lineBreak = text.find("\r\n");
    target.append(text.substr(0, lineBreak));
    if (lineBreak == std::string_view::npos) break;
    target.push_back('\n');
    text.remove_prefix(lineBreak + 2);
  }
  if (forTerminal) ReplaceControls(target, "\n\t", start);
}

void AppendNumber(std::string& target, int number) {
  char digits[12];
  target.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

void AppendHex(std::string& target, unsigned char byte) {
  target.append("\\'");
  target.push_back("0123456789abcdef"[byte >> 4]);
  target.push_back("0123456789abcdef"[byte & 15]);
}

// One UTF-16 unit as RTF writes it: a signed decimal number, then "?" for readers that do not know it.
void AppendUnit(std::string& target, char32_t unit) {
  const int number = unit < 0x8000 ? static_cast<int>(unit) : static_cast<int>(unit) - 0x10000;
  AppendNumber(target.append("\\u"), number);
  target.push_back('?');
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
  const int single = Windows1252Byte(c);
  if (c < 0x20 || c == 0x7F) {
    target.push_back('?');
  } else if (single >= 0) {
    AppendHex(target, static_cast<unsigned char>(single));
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
    // Black means the default colour of the terminal, whose background may be dark.
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
  if (format.points != current_.points) AppendNumber(buffer_.append("\\fs"), 2 * format.points);
  buffer_.push_back(' ');
  current_ = format;
}

void RtfWriter::AppendEscaped(std::string_view text) {
  while (!text.empty()) {
    const std::size_t plain = PlainPrefix(text);
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
  for (const Remembered& piece : remembered_) {
    if (piece.text == text && piece.after == format && piece.before == current_) {
      buffer_.append(piece.rtf);
      current_ = format;
      HandOverWhenFull();
      return;
    }
  }
  const LogFormat before = current_;
  const std::size_t start = buffer_.size();
  ChangeFormat(format);
  AppendEscaped(text);
  remembered_[oldest_] = {std::string(text), before, format, buffer_.substr(start)};
  oldest_ = 1 - oldest_;
  HandOverWhenFull();
}

void RtfWriter::Finish() {
  buffer_.append("}\r\n");
  HandOver();
}

}  // namespace quiverion
