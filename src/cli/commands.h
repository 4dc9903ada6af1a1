#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "cli/terminal.h"
#include "exchange/foreign_field.h"
#include "statistics/compute_statistic.h"

/// The commands of quiverionseries-cli. Each prints its result on standard output and errors on standard error, and
/// returns an ExitCode.
namespace quiverion::cli {

struct RunOptions {
  std::string macro;
  std::string log;    // empty: none; ends in ".rtf" or ".txt"
  std::string table;  // empty: none
  MessageAnswer onProblem = MessageAnswer::abort;
  char decimalSeparator = '.';
  std::vector<std::string> inputs;
};

int RunSeries(const RunOptions& options);

int ShowMacro(const std::string& macroPath);
int ExportMacro(const std::string& macroPath);
int ImportMacro(const std::string& jsonPath, const std::string& macroPath);

int RunStatistic(StatisticKind kind, const std::string& collectionPath, const std::string& outputPath,
                 double viscosity);

int ListCollection(const std::string& path, bool json);
/// `numbers`: record numbers counted from 1, without duplicates.
int RemoveFromCollection(const std::string& path, const std::vector<std::int32_t>& numbers);

int ShowInfo(const std::string& path, bool json);

int ListCommands(bool json);

struct ImportCall {
  exchange::ImportOptions options;
  std::string directory;
  std::vector<std::string> inputs;  // files, or directories that stand for all their files
};

int ImportFields(const ImportCall& call);

struct ExportCall {
  std::string kind;
  std::string directory;
  std::string series;               // empty: a file for each field; without a directory: in `directory`
  double timeStep = 0.0;            // seconds between fields; 0: unknown
  std::vector<std::string> inputs;  // files, or directories that stand for their VAS, DAT and VEC files
};

int ExportFields(const ExportCall& call);

}  // namespace quiverion::cli
