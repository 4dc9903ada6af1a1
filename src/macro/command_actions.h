#pragma once

#include "macro/command_catalogue.h"
#include "operations/commands/view_settings.h"
#include "operations/kernels/faulty_vectors.h"

/// The functions of the catalogue rows. Each takes its parameters from the event and calls the operation.
namespace quiverion::actions {

/// `inputDirectory` + Prefix + base name of the file + Postfix + extension of the command's results.
std::string OutputPath(const CommandCall& call);

/// The criteria of the search for faulty vectors, from its command. Throws SystemError if a value is missing.
FaultyVectorCriteria FaultyVectorCriteriaOf(const MacroEvent& event);

/// A command without parameters.
template <void (*operation)(Context&)>
void Plain(const CommandCall& call) {
  operation(call.context);
}

/// A view option that is switched on or off.
template <void (*operation)(Context&, bool)>
void Checked(const CommandCall& call) {
  operation(call.context, call.event.Flag("Checked"));
}

/// A setting with one number.
template <void (*operation)(Context&, double)>
void Value(const CommandCall& call) {
  operation(call.context, call.event.Number("Value"));
}

template <Background background>
void ChooseBackground(const CommandCall& call) {
  SetBackground(call.context, background);
}

/// A constant vector.
template <void (*operation)(Context&, double, double)>
void Components(const CommandCall& call) {
  operation(call.context, call.event.Number("XComp"), call.event.Number("YComp"));
}

/// An export to a file next to the input.
template <void (*operation)(Context&, const std::string&)>
void Export(const CommandCall& call) {
  operation(call.context, OutputPath(call));
}

void SaveAsVas(const CommandCall& call);
void InsertComment(const CommandCall& call);
void LoadBuffer(const CommandCall& call);
void FaultVectors(const CommandCall& call);
void Mirror(const CommandCall& call);
void XYTrafo(const CommandCall& call);
void VortexCentres(const CommandCall& call);
void CollectStatistics(const CommandCall& call);

}  // namespace quiverion::actions
