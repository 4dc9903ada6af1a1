#include "dialogs/log_text.h"

namespace quiverion {

void LogText::Write(std::string_view text, const LogFormat& format) {
  text_.append(text);
  if (stretches_.empty() || stretches_.back().format != format) stretches_.push_back({0, format});
  stretches_.back().end = text_.size();
}

void LogText::Clear() {
  *this = LogText();
}

void LogText::ReplayTo(LogSink& target) const {
  std::size_t start = 0;
  for (const Stretch& stretch : stretches_) {
    target.Write(std::string_view(text_).substr(start, stretch.end - start), stretch.format);
    start = stretch.end;
  }
}

}  // namespace quiverion
