#pragma once

#include <exception>
#include <string>
#include <string_view>

namespace quiverion {

/// Numbers of the errors that the log and the message boxes show.
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

/// The one error type below an operation: a number and its German description, UTF-8.
class SystemError : public std::exception {
 public:
  explicit SystemError(ErrorNumber number) : SystemError(number, {}) {}

  /// `detail` stands behind the description in parentheses where it is not empty.
  SystemError(ErrorNumber number, std::string_view detail);

  /// An error with a description of its own in place of the number's.
  static SystemError Saying(ErrorNumber number, std::string description);

  ErrorNumber Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  ErrorNumber number_;
  std::string description_;
};

/// "<description>   (Fehler-Nr. <number>)": how an error is written in the log and in message boxes.
std::string ErrorText(const SystemError& error);

/// The SystemError that stands for any exception an operation may raise: a SystemError is itself, a failed
/// allocation (std::bad_alloc, std::length_error) is error 7, anything else is error 5 with its own text.
SystemError AsSystemError(const std::exception& error);

}  // namespace quiverion
