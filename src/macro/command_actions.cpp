#include "macro/command_actions.h"

#include "field/buffer_commands.h"
#include "field/vas_file.h"
#include "operations/faulty_vectors.h"
#include "operations/filters.h"
#include "operations/interpolation.h"
#include "operations/transformations.h"
#include "operations/view_settings.h"
#include "operations/vortex_centres.h"
#include "platform/numbers.h"
#include "platform/paths.h"
#include "platform/system_error.h"

namespace quiverion::actions {
namespace {

bool IsChecked(const MacroEvent& event, std::string_view key) {
  return event.Integer(key) > 0;
}

// The number that the text of a parameter box begins with.
double NumberOfText(const MacroEvent& event, std::string_view key) {
  return ReadParameterNumber(event.Text(key));
}

IntervalCriterion IntervalOf(const MacroEvent& event, const std::string& chk, const std::string& name) {
  return {IsChecked(event, chk), event.Flag("Opt" + name + "Out"), NumberOfText(event, "Txt" + name + "Min"),
          NumberOfText(event, "Txt" + name + "Max")};
}

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

}  // namespace

std::string OutputPath(const CommandCall& call, std::string_view extension) {
  std::string path = call.inputDirectory;
  path.append(call.event.Text("Prefix")).append(BaseNameOf(call.fileName)).append(call.event.Text("Postfix"));
  return path.append(extension);
}

void SaveAsVas(const CommandCall& call) {
  SaveVas(call.context, OutputPath(call, ".vas"));
}

void InsertComment(const CommandCall& call) {
  InsertInfoComment(call.context, call.event.Text("Comment"));
}

void CopyToBuffer(const CommandCall& call) {
  CopyFieldToBuffer(call.context);
}
void LoadBuffer(const CommandCall& call) {
  LoadFileIntoBuffer(call.context, call.event.Text("FileName"));
}
void BufferAsMask(const CommandCall& call) {
  UseBufferAsMask(call.context);
}
void AddBuffer(const CommandCall& call) {
  AddBufferToField(call.context);
}
void SubtractBuffer(const CommandCall& call) {
  SubtractBufferFromField(call.context);
}
void SubtractFromBuffer(const CommandCall& call) {
  SubtractFieldFromBuffer(call.context);
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

void Interpolation(const CommandCall& call) {
  InterpolateInvalidVectors(call.context);
}
void VortexCentres(const CommandCall& call) {
  FindVortexCentres(call.context, call.event.Text("FileName"), call.event.Flag("AutoTrafo"));
}
void Rect3x3(const CommandCall& call) {
  FilterRect3x3(call.context);
}
void Rect5x5(const CommandCall& call) {
  FilterRect5x5(call.context);
}
void Gauss3x3(const CommandCall& call) {
  FilterGauss3x3(call.context);
}
void Gauss5x5(const CommandCall& call) {
  FilterGauss5x5(call.context);
}
void VelocityProfile(const CommandCall& call) {
  FilterVelocityProfile(call.context);
}
void AddConstVector(const CommandCall& call) {
  AddConstantVector(call.context, call.event.Number("XComp"), call.event.Number("YComp"));
}
void SubtractConstVector(const CommandCall& call) {
  SubtractConstantVector(call.context, call.event.Number("XComp"), call.event.Number("YComp"));
}

void ShowHeader(const CommandCall& call) {
  SetShowHeader(call.context, call.event.Flag("Checked"));
}
void ShowTable(const CommandCall& call) {
  SetShowTable(call.context, call.event.Flag("Checked"));
}
void ShowVectorField(const CommandCall& call) {
  SetShowVectorField(call.context, call.event.Flag("Checked"));
}
void ShowCoordSystem(const CommandCall& call) {
  SetShowCoordSystem(call.context, call.event.Flag("Checked"));
}
void AspectRatio(const CommandCall& call) {
  SetAspectRatio(call.context, call.event.Flag("Checked"));
}

void ScaleFactor(const CommandCall& call) {
  SetScaleFactor(call.context, call.event.Number("Value"));
}

void NoBackground(const CommandCall& call) {
  SetBackground(call.context, Background::none);
}
void Swirl2Background(const CommandCall& call) {
  SetBackground(call.context, Background::swirl2);
}
void VorticityBackground(const CommandCall& call) {
  SetBackground(call.context, Background::vorticity);
}

void PaletteMin(const CommandCall& call) {
  SetPaletteMin(call.context, call.event.Number("Value"));
}
void PaletteMax(const CommandCall& call) {
  SetPaletteMax(call.context, call.event.Number("Value"));
}
void PaletteOptimal(const CommandCall& call) {
  FindOptimalPalette(call.context);
}

void NotAvailable(const CommandCall& call) {
  const std::int32_t eventId = call.event.EventId();
  throw SystemError(ErrorNumber::invalidCall, "der Befehl '" + std::string(MacroEventDescription(eventId, true)) +
                                                  "' ist in dieser Version nicht enthalten");
}

}  // namespace quiverion::actions
