#pragma once

#include <string>
#include <vector>

#include "support/workplace.h"

/// The built program as a script sees it: arguments in, exit code, standard output and standard error out.
namespace quiverion::cli {

struct Outcome {
  int code = -1;   // exit code; -1 if a signal (Ctrl+C) ended the program
  int signal = 0;  // that signal
  std::string out;
  std::string err;
  long peakKilobytes = 0;  // of memory
};

/// The environment of a program, besides its files.
struct Surroundings {
  std::vector<int> closed = {};  // standard streams
  long largestFile = -1;         // bytes, as the limits below; -1: no limit
  long memory = -1;
  long openFiles = -1;
};

/// Runs the program to its end. Its standard output goes to the file `output` if one is given.
Outcome RunProgram(const Workplace& place, const std::vector<std::string>& arguments, const std::string& input = {},
                   const std::string& output = {}, const Surroundings& surroundings = {});

}  // namespace quiverion::cli
