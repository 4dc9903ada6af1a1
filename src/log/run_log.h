#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quiverion {

enum class LogColour { black, red, green };  // RGB (0, 0, 0), (200, 0, 0), (0, 200, 0)

/// How a piece of the log is shown.
struct LogFormat {
  LogColour colour = LogColour::black;
  bool bold = false;
  bool italic = false;
  int points = 10;

  bool operator==(const LogFormat&) const = default;
};

/// Where the log goes: a terminal, a file, a window.
class LogSink {
 public:
  virtual ~LogSink() = default;

  /// Appends a piece (UTF-8, line breaks "\r\n").
  virtual void Write(std::string_view text, const LogFormat& format) = 0;

  /// Makes everything written so far visible, before something that takes longer.
  virtual void Flush() {}
};

/// The log of a run: decides the format of every piece by its content and hands it to the sinks. Stores no text.
class RunLog {
 public:
  /// The sink must outlive its attachment.
  void Attach(LogSink& sink) { sinks_.push_back(&sink); }
  void Detach(LogSink& sink) { std::erase(sinks_, &sink); }

  /// Appends one piece; the caller supplies the line breaks. A piece that contains "FEHLER" is red, else one that
  /// contains "fertig" green, else one that is not indented by four blanks bold and black; an indented piece keeps the
  /// colour of the previous piece and is small and slanted. A piece without a closing line break is an announcement and
  /// is flushed at once.
  void WriteLogLine(std::string_view text);

  void Flush();

 private:
  std::vector<LogSink*> sinks_;
  LogFormat format_;
};

/// The sink receives the log for as long as this lives.
class AttachedSink {
 public:
  AttachedSink(RunLog& log, LogSink& sink) : log_(log), sink_(sink) { log_.Attach(sink_); }
  ~AttachedSink() { log_.Detach(sink_); }
  AttachedSink(const AttachedSink&) = delete;
  AttachedSink& operator=(const AttachedSink&) = delete;

 private:
  RunLog& log_;
  LogSink& sink_;
};

/// A title line of 101 characters: dashes around `text`. A text of more than 98 characters is returned
/// unchanged.
std::string MakeTitleLine(std::string_view text);

}  // namespace quiverion
