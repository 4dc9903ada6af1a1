#include "log/log_lines.h"

namespace quiverion {

void LogLines(RunLog& log, std::initializer_list<std::string_view> lines) {
  for (const std::string_view line : lines) {
    std::string piece(line);
    piece.append("\r\n");
    log.WriteLogLine(piece);
  }
}

std::string ErrorLine(const SystemError& error) {
  return "    " + ErrorText(error);
}

}  // namespace quiverion
