#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "log/run_log.h"

namespace quiverion {

/// Keeps the log of a run until its window is closed: one text, and the positions where the format changes.
class LogText : public LogSink {
 public:
  void Write(std::string_view text, const LogFormat& format) override;

  void Clear();
  const std::string& Text() const { return text_; }

  /// Passes the log to `target`, adjacent pieces of the same format together. The result is the same as if it had been
  /// written there directly.
  void ReplayTo(LogSink& target) const;

 private:
  struct Stretch {
    std::size_t end;  // in text_
    LogFormat format;
  };
  std::string text_;
  std::vector<Stretch> stretches_;
};

}  // namespace quiverion
