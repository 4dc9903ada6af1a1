#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "log/run_log.h"

namespace quiverion {

/// Keeps the first lines of a log, for those who show it only if something went wrong. The log may contain a
/// warning for every vector.
class FirstLines : public LogSink {
 public:
  explicit FirstLines(std::ptrdiff_t shown = 20) : shown_(shown) {}

  void Write(std::string_view text, const LogFormat& /*format*/) override {
    lineCount_ += std::count(text.begin(), text.end(), '\n');
    if (lineCount_ <= shown_) text_ += text;
  }
  std::string Text() const {
    std::string text = text_;
    std::erase(text, '\r');
    if (lineCount_ > shown_) text += "... und " + std::to_string(lineCount_ - shown_) + " weitere Zeilen\n";
    return text;
  }

 private:
  std::ptrdiff_t shown_;
  std::string text_;
  std::ptrdiff_t lineCount_ = 0;
};

}  // namespace quiverion
