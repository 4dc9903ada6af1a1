#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace quiverion {

/// The error numbers shown in the log and in message boxes.
enum class ErrorNumber : int {
  invalidCall = 5,
  overflow = 6,
  outOfMemory = 7,
  indexOutOfRange = 9,
  divisionByZero = 11,
  fileNotFound = 53,
  deviceError = 57,
  diskFull = 61,
  endOfFile = 62,
  tooManyFiles = 67,
  accessDenied = 70,
  pathAccess = 75,
  pathNotFound = 76,
};

/// The German description of an error number.
std::string_view ErrorDescription(ErrorNumber number);

/// The only error type inside operations: a number and its German description, UTF-8.
class SystemError : public std::exception {
 public:
  explicit SystemError(ErrorNumber number) : SystemError(number, {}) {}

  /// If `detail` is not empty, it is added to the description in parentheses.
  SystemError(ErrorNumber number, std::string_view detail);

  /// An error with the given description instead of that of the number.
  static SystemError Saying(ErrorNumber number, std::string description);

  ErrorNumber Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  ErrorNumber number_;
  std::string description_;
};

/// "<description>   (Fehler-Nr. <number>)": the form of an error in the log and in message boxes.
std::string ErrorText(const SystemError& error);

/// The SystemError for any exception that an operation may throw: a SystemError itself, error 7 for a failed allocation
/// (std::bad_alloc, std::length_error), error 5 with its text for anything else.
SystemError AsSystemError(const std::exception& error);

}  // namespace quiverion
