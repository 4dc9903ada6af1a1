#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "messages/system_error.h"

namespace quiverion {

/// A file that is not what it should be. The message says so in full, on a line (or lines) of its own.
class FormatError : public std::exception {
 public:
  explicit FormatError(std::string message) : message_(std::move(message)) {}
  const std::string& Message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// What an attempt threw.
struct Failure {
  SystemError error;                           // from AsSystemError; for a FormatError error 5 with its message
  std::optional<std::string> formatMessage{};  // the message of a FormatError
  bool atOpening = false;                      // the first of two steps threw it
};

Failure FailureOf(const std::exception& error);

/// Runs `action` and returns the exception that it threw, if any.
template <class Action>
std::optional<Failure> Attempt(Action action) {
  try {
    action();
    return std::nullopt;
  } catch (const std::exception& error) {
    return FailureOf(error);
  }
}

/// Runs `open`, then `work` if that succeeded.
template <class Open, class Work>
std::optional<Failure> Attempt(Open open, Work work) {
  std::optional<Failure> failure = Attempt(open);
  if (!failure) return Attempt(work);
  failure->atOpening = true;
  return failure;
}

}  // namespace quiverion
