#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "log/run_log.h"

namespace quiverion {

/// Receives the bytes that a log writer produces.
using ByteConsumer = std::function<void(std::string_view)>;

/// Gathers the output of a writer and passes it on in large blocks.
class BufferedLogWriter : public LogSink {
 public:
  explicit BufferedLogWriter(ByteConsumer consumer) : consumer_(std::move(consumer)) {}

  void HandOver();

 protected:
  void HandOverWhenFull();
  std::string buffer_;

 private:
  ByteConsumer consumer_;
};

/// Plain UTF-8 text, line breaks unchanged ("\r\n").
class PlainTextWriter : public BufferedLogWriter {
 public:
  using BufferedLogWriter::BufferedLogWriter;
  void Write(std::string_view text, const LogFormat& format) override;
};

/// UTF-8 text with "\n" line ends for standard output, optionally in colour. On a terminal, control characters in file
/// names are shown as "?", because they must not control it.
class TerminalWriter : public BufferedLogWriter {
 public:
  TerminalWriter(ByteConsumer consumer, bool colour) : BufferedLogWriter(std::move(consumer)), colour_(colour) {}
  void Write(std::string_view text, const LogFormat& format) override;
  void Flush() override { HandOver(); }

 private:
  bool colour_;
};

/// The formatted log as RTF (Windows-1252, with \u escapes for other characters). Finish closes the document.
class RtfWriter : public BufferedLogWriter {
 public:
  explicit RtfWriter(ByteConsumer consumer);
  void Write(std::string_view text, const LogFormat& format) override;
  void Finish();

 private:
  void ChangeFormat(const LogFormat& format);
  void AppendEscaped(std::string_view text);

  // A file can cause a warning for every vector, the same two pieces many thousand times. So their RTF is cached.
  struct Remembered {
    std::string text;
    LogFormat before;
    LogFormat after;
    std::string rtf;
  };
  std::array<Remembered, 2> remembered_;
  std::size_t oldest_ = 0;

  LogFormat current_;
};

}  // namespace quiverion
