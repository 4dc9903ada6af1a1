#pragma once

#include "macro/command_catalogue.h"

/// What the rows of the catalogue run: each takes its parameters from the event and calls the operation.
namespace quiverion::actions {

/// `inputDirectory` + Prefix + base name of the file + Postfix + `extension`.
std::string OutputPath(const CommandCall& call, std::string_view extension);

void SaveAsVas(const CommandCall& call);
void InsertComment(const CommandCall& call);
void CopyToBuffer(const CommandCall& call);
void LoadBuffer(const CommandCall& call);
void BufferAsMask(const CommandCall& call);
void AddBuffer(const CommandCall& call);
void SubtractBuffer(const CommandCall& call);
void SubtractFromBuffer(const CommandCall& call);

void FaultVectors(const CommandCall& call);
void Mirror(const CommandCall& call);
void XYTrafo(const CommandCall& call);

void Interpolation(const CommandCall& call);
void VortexCentres(const CommandCall& call);
void Rect3x3(const CommandCall& call);
void Rect5x5(const CommandCall& call);
void Gauss3x3(const CommandCall& call);
void Gauss5x5(const CommandCall& call);
void VelocityProfile(const CommandCall& call);
void AddConstVector(const CommandCall& call);
void SubtractConstVector(const CommandCall& call);

void ShowHeader(const CommandCall& call);
void ShowTable(const CommandCall& call);
void ShowVectorField(const CommandCall& call);
void ShowCoordSystem(const CommandCall& call);
void AspectRatio(const CommandCall& call);
void ScaleFactor(const CommandCall& call);
void NoBackground(const CommandCall& call);
void Swirl2Background(const CommandCall& call);
void VorticityBackground(const CommandCall& call);
void PaletteMin(const CommandCall& call);
void PaletteMax(const CommandCall& call);
void PaletteOptimal(const CommandCall& call);

/// A command whose operation this version does not have fails like any other: SystemError 5 that names it.
void NotAvailable(const CommandCall& call);

}  // namespace quiverion::actions
