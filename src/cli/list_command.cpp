#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/services.h"
#include "macro/command_catalogue.h"

namespace quiverion::cli {
namespace {

std::string_view KindName(ParameterKind kind) {
  switch (kind) {
    case ParameterKind::text:
      return "text";
    case ParameterKind::flag:
      return "flag";
    case ParameterKind::checkState:
      return "checkState";
    case ParameterKind::integer:
      return "integer";
    case ParameterKind::number:
      break;
  }
  return "number";
}

int Depth(const CommandRow& row) {
  int depth = 0;
  for (const CommandRow* parent = FindCommand(row.parent); parent; parent = FindCommand(parent->parent)) ++depth;
  return depth;
}

std::string AsText() {
  std::string text;
  for (const CommandRow& row : CommandCatalogue()) {
    text.append(2 * static_cast<std::size_t>(Depth(row)), ' ');
    text.append(std::to_string(row.eventId)).append("\t").append(row.constantName);
    text.append("\t").append(row.shortText).append("\t").append(row.longText).append("\t");
    for (std::size_t k = 0; k < row.parameters.size(); ++k) {
      text.append(k == 0 ? "" : ",").append(row.parameters[k].key);
    }
    text.append("\n");
  }
  return text;
}

std::string AsJson() {
  auto rows = nlohmann::ordered_json::array();
  for (const CommandRow& row : CommandCatalogue()) {
    auto parameters = nlohmann::ordered_json::array();
    for (const Parameter& parameter : row.parameters) {
      parameters.push_back({{"Key", parameter.key}, {"Kind", KindName(parameter.kind)}});
    }
    rows.push_back({{"EventId", row.eventId},
                    {"Constant", row.constantName},
                    {"Parent", row.parent == 0 ? nlohmann::ordered_json() : nlohmann::ordered_json(row.parent)},
                    {"ShortText", row.shortText},
                    {"LongText", row.longText},
                    {"Parameters", parameters}});
  }
  return rows.dump(2) + "\n";
}

}  // namespace

int ListCommands(bool json) {
  Services services;
  services.terminal.Print(json ? AsJson() : AsText());
  return services.Done();
}

}  // namespace quiverion::cli
