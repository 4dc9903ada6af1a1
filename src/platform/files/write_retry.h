#pragma once

#include <algorithm>
#include <span>
#include <string_view>

#include "messages/system_error.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"

namespace quiverion {

/// The only Retry/Cancel loop for writing: for a full disk or too many open files it asks the user; every other error
/// is thrown at once.
class WriteRetry {
 public:
  /// If `ui` is null, nobody is asked.
  explicit WriteRetry(UserInterface* ui) : ui_(ui) {}

  /// Runs `action` until it succeeds. Throws its SystemError if a retry cannot help or the answer is Cancel.
  template <class Action>
  auto operator()(Action action) {
    for (;;) {
      try {
        return action();
      } catch (const SystemError& error) {
        if (!AsksForRetry(error.Number())) throw;
      }
    }
  }

  /// True if the user has answered Cancel.
  bool Cancelled() const { return cancelled_; }

 private:
  bool AsksForRetry(ErrorNumber number);

  UserInterface* ui_;
  bool cancelled_ = false;
};

/// Writes all pieces, one after the other. `writeSome(rest)` writes at least one byte of what is left (its first piece
/// is not empty) and returns how many.
template <class WriteSome>
void WriteAllPieces(std::span<std::string_view> pieces, WriteSome writeSome) {
  while (!pieces.empty()) {
    if (pieces.front().empty()) {
      pieces = pieces.subspan(1);
      continue;
    }
    std::size_t written = writeSome(std::span<const std::string_view>(pieces));
    while (written > 0) {
      const std::size_t step = std::min(written, pieces.front().size());
      pieces.front().remove_prefix(step);
      written -= step;
      if (pieces.front().empty()) pieces = pieces.subspan(1);
    }
  }
}

/// Writes all pieces into the file from byte `position` on. Throws SystemError.
void WriteAllAt(UpdatedFile& file, std::uint64_t position, std::span<std::string_view> pieces, WriteRetry& retry);

}  // namespace quiverion
