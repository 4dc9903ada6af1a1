#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "log/run_log.h"
#include "messages/system_error.h"

/// The lines in which operations report to the log.
namespace quiverion {

inline constexpr std::string_view kErrorMark = "!!! FEHLER !!!";
inline constexpr std::string_view kWarningMark = "!!! WARNUNG !!!";
inline constexpr std::string_view kDoneText = "fertig";

/// Logs each text as one piece with a closing line break.
void LogLines(RunLog& log, std::initializer_list<std::string_view> lines);

/// "    <description>   (Fehler-Nr. <number>)"
std::string ErrorLine(const SystemError& error);

}  // namespace quiverion
