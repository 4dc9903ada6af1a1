#include "log/run_log.h"

#include "platform/text/text.h"

namespace quiverion {

void RunLog::WriteLogLine(std::string_view text) {
  const bool indented = text.starts_with("    ");
  format_.bold = false;
  if (text.find("FEHLER") != std::string_view::npos) {
    format_.colour = LogColour::red;
  } else if (text.find("fertig") != std::string_view::npos) {
    format_.colour = LogColour::green;
  } else if (!indented) {
    format_.bold = true;
    format_.colour = LogColour::black;
  }
  format_.points = indented ? 8 : 10;
  format_.italic = indented;
  for (LogSink* sink : sinks_) sink->Write(text, format_);
  if (!text.ends_with('\n')) Flush();
}

void RunLog::Flush() {
  for (LogSink* sink : sinks_) sink->Flush();
}

std::string MakeTitleLine(std::string_view text) {
  const std::size_t count = CharacterCount(text);
  if (count + 2 > 100) return std::string(text);
  const std::size_t left = (100 - count) / 2;
  const std::size_t right = 100 - left - count - 1;
  std::string line(left, '-');
  line.append(" ").append(text).append(" ").append(right, '-');
  return line;
}

}  // namespace quiverion
