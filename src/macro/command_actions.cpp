#include "macro/command_actions.h"

#include "field/formats/vas_file.h"
#include "field/frames.h"
#include "macro/result_names.h"
#include "operations/commands/buffer_commands.h"
#include "operations/commands/find_faulty_vectors.h"
#include "operations/commands/transformations.h"
#include "operations/commands/vortex_centres.h"
#include "platform/files/paths.h"
#include "platform/text/numbers.h"
#include "statistics/collect.h"

namespace quiverion::actions {
namespace {

bool IsChecked(const MacroEvent& event, std::string_view key) {
  return event.Integer(key) > 0;
}

// The number at the beginning of the text of a parameter box.
double NumberOfText(const MacroEvent& event, std::string_view key) {
  return ReadParameterNumber(event.Text(key));
}

IntervalCriterion IntervalOf(const MacroEvent& event, const std::string& chk, const std::string& name) {
  return {IsChecked(event, chk), event.Flag("Opt" + name + "Out"), NumberOfText(event, "Txt" + name + "Min"),
          NumberOfText(event, "Txt" + name + "Max")};
}

}  // namespace

FaultyVectorCriteria FaultyVectorCriteriaOf(const MacroEvent& event) {
  FaultyVectorCriteria criteria;
  criteria.magnitudeDeviation = IsChecked(event, "ChkAbsDeviation");
  criteria.magnitudePercent = NumberOfText(event, "TxtAbsDeviation");
  criteria.magnitude = IntervalOf(event, "ChkAbsInterval", "AbsInt");
  criteria.directionDeviation = IsChecked(event, "ChkDirDeviation");
  criteria.directionDegrees = NumberOfText(event, "TxtDirDeviation");
  criteria.xComponent = IntervalOf(event, "ChkXComp", "XCompInt");
  criteria.yComponent = IntervalOf(event, "ChkYComp", "YCompInt");
  criteria.compareVectorType = static_cast<CompareVectorType>(event.Integer("CompareVectorType"));
  const bool median = criteria.compareVectorType == CompareVectorType::median;
  criteria.halfWidthX = event.Integer(median ? "CboMedianX" : "CboLocalMiddleX");
  criteria.halfWidthY = event.Integer(median ? "CboMedianY" : "CboLocalMiddleY");
  criteria.userX = NumberOfText(event, "TxtUserVectorX");
  criteria.userY = NumberOfText(event, "TxtUserVectorY");
  criteria.logicalOr = event.Flag("LogicalOr");
  return criteria;
}

std::string OutputPath(const CommandCall& call) {
  const CommandRow* const row = FindCommand(call.event.EventId());
  std::string postfix = call.event.Text("Postfix");
  if (row != nullptr) postfix.append(row->resultExtension);
  const std::string name = ResultName(call.event.Text("Prefix"), call.fileName, postfix);
  RequireBelow(name);
  return call.inputDirectory + name;
}

void SaveAsVas(const CommandCall& call) {
  SaveVas(call.context, OutputPath(call));
}

void InsertComment(const CommandCall& call) {
  InsertInfoComment(call.context, call.event.Text("Comment"));
}

void LoadBuffer(const CommandCall& call) {
  LoadFileIntoBuffer(call.context, call.event.Path("FileName"));
}

void FaultVectors(const CommandCall& call) {
  FindFaultyVectors(call.context, FaultyVectorCriteriaOf(call.event));
}

void Mirror(const CommandCall& call) {
  MirrorField(call.context, IsChecked(call.event, "ChkPosX"), IsChecked(call.event, "ChkPosY"));
}

void XYTrafo(const CommandCall& call) {
  const auto number = [&call](std::string_view key) { return NumberOfText(call.event, key); };
  TransformCoordinates(call.context, {number("TxtFakX"), number("TxtDeltaX"), number("TxtFakY"), number("TxtDeltaY"),
                                      number("TxtFakVecX"), number("TxtFakVecY")});
}

void VortexCentres(const CommandCall& call) {
  FindVortexCentres(call.context, call.event.Path("FileName"), call.event.Flag("AutoTrafo"));
}

void CollectStatistics(const CommandCall& call) {
  CollectForStatistics(call.context, call.event.Path("FileName"));
}

}  // namespace quiverion::actions
