#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "log/run_log.h"

namespace quiverion::cli {

/// Keeps the first lines of a log, for commands that show it only if something went wrong. The log may contain a
/// warning for every vector.
class FirstLines : public LogSink {
 public:
  void Write(std::string_view text, const LogFormat& /*format*/) override {
    lineCount_ += std::count(text.begin(), text.end(), '\n');
    if (lineCount_ <= kShown) text_ += text;
  }
  std::string Text() const {
    std::string text = text_;
    std::erase(text, '\r');
    if (lineCount_ > kShown) text += "... und " + std::to_string(lineCount_ - kShown) + " weitere Zeilen\n";
    return text;
  }

 private:
  static constexpr std::ptrdiff_t kShown = 20;
  std::string text_;
  std::ptrdiff_t lineCount_ = 0;
};

}  // namespace quiverion::cli
