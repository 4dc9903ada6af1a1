#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "log/run_log.h"

namespace quiverion {

/// Keeps the log of a run until its window is closed: one text and where its format changes.
class LogText : public LogSink {
 public:
  void Write(std::string_view text, const LogFormat& format) override;

  void Clear();
  const std::string& Text() const { return text_; }

  /// Hands the log to `target`, neighbouring pieces of one format together: it comes out as if it had been written there.
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
