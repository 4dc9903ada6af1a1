#include "operations/commands/vortex_centres.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "field/formats/vas_file.h"
#include "field/frames.h"
#include "operations/commands/transformations.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/vortex_maxima.h"
#include "platform/files/paths.h"
#include "platform/files/result_file.h"
#include "platform/numeric/checked_real.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

using Marks = Grid<std::int16_t>;

constexpr std::string_view kHeader = "X [mm]\tY [mm]\tVx [m/s]\tVy [m/s]\t(Swr Str)² [1/s²]\tDrehsinn\r\n";

struct Centre {
  std::int32_t i;
  std::int32_t j;
  double x, y;      // mm
  double vx, vy;    // m/s
  double strength;  // 1/s², with sign
};

Centre CentreAt(const VectorField& field, std::int32_t i, std::int32_t j) {
  return {i,
          j,
          field.posX[static_cast<std::size_t>(i - 1)],
          field.posY[static_cast<std::size_t>(j - 1)],
          field.velX(i, j),
          field.velY(i, j),
          field.derivedScalar(i, j)};
}

// Row by row, as long as `visit` returns true.
template <class Visit>
void ForEachMark(const Marks& marks, Visit visit) {
  for (std::int32_t j = 1; j <= marks.Rows(); ++j) {
    const std::int16_t* const row = marks.Row(j);
    for (std::int32_t i = 1; i <= marks.Columns(); ++i) {
      if (row[i - 1] != 0 && !visit(i, j)) return;
    }
  }
}

void WriteMaxima(const Context& context, const Marks& marks, ResultFile& file) {
  std::string line;
  ForEachMark(marks, [&](std::int32_t i, std::int32_t j) {
    const Centre centre = CentreAt(context.field, i, j);
    line.clear();
    for (const double value : {centre.x, centre.y, centre.vx, centre.vy, std::fabs(centre.strength)}) {
      AppendPrintNumber(line, value, context.decimalSeparator);
      line.push_back('\t');
    }
    line.append(marks(i, j) > 0 ? "Links\r\n" : "Rechts\r\n");
    file.Write(line);
    return true;
  });
}

// A failed or cancelled append leaves nothing in the file.
SaveOutcome AppendMaxima(Context& context, const std::string& path, const Marks& marks) {
  constexpr SaveWording wording = {
      .openFailed =
          "    Gefundene Maxima können nicht gespeichert werden, da beim Öffnen folgender Fehler aufgetreten ist:",
      .writeFailed = "    In die Datei '",
      .logsCancel = false};
  return RunSaveFrame(
      context, path,
      [&](ResultFile& file) {
        if (file.IsNew()) file.Write(Windows1252FromUtf8(kHeader).bytes);
        WriteMaxima(context, marks, file);
      },
      wording, Opening::append);
}

// A peak is not a vortex if the mean of its neighbours is less than a quarter of it.
bool IsAccepted(const Grid<double>& strength, std::int32_t i, std::int32_t j) {
  CheckedReal sum = 0.0;
  int count = 0;
  for (std::int32_t ni = std::max(i - 1, 1); ni <= std::min(i + 1, strength.Columns()); ++ni) {
    for (std::int32_t nj = std::max(j - 1, 1); nj <= std::min(j + 1, strength.Rows()); ++nj) {
      if (ni == i && nj == j) continue;
      sum = sum + strength(ni, nj);
      ++count;
    }
  }
  const double mean = count > 0 ? (sum / static_cast<double>(count)).Value() : 0.0;
  return std::fabs(strength(i, j)) / 4.0 < std::fabs(mean);
}

// Restores on every exit what a copy records about its centre.
class SavedInfo {
 public:
  explicit SavedInfo(VectorField& field)
      : field_(field),
        infoText_(field.infoText),
        pointX_(field.galileiPointX),
        pointY_(field.galileiPointY),
        pointSet_(field.galileiPointSet) {}
  ~SavedInfo() {
    field_.infoText.swap(infoText_);
    field_.galileiPointX = pointX_;
    field_.galileiPointY = pointY_;
    field_.galileiPointSet = pointSet_;
  }
  SavedInfo(const SavedInfo&) = delete;
  SavedInfo& operator=(const SavedInfo&) = delete;

 private:
  VectorField& field_;
  std::string infoText_;
  double pointX_;
  double pointY_;
  Flag16 pointSet_;
};

std::string Description(const Centre& centre, char decimalSeparator) {
  const auto number = [decimalSeparator](double value) { return FormatNumber(value, decimalSeparator); };
  return "\r\nTrafonsformiert auf gefundenen Wirbel:\r\n"
         "X  = " +
         number(centre.x) + " mm\r\n" + "Y  = " + number(centre.y) + " mm\r\n" + "Vx = " + number(centre.vx) +
         " m/s\r\n" + "Vy = " + number(centre.vy) + " m/s\r\n" + "SS²= " + number(centre.strength) + " 1/s²\r\n" +
         "Drehsinn: " + (centre.strength > 0.0 ? "Links" : "Rechts") + "\r\n";
}

// The directory of the copies, with a separator at the end.
std::string CopyDirectory(const VectorField& field) {
  const std::string name = std::string(BaseNameOf(field.fileName)) + kPathSeparator;
  RequireBelow(name);  // for a file "...vas" it would be the directory above
  std::string directory = field.fileDirectory;
  if (field.fileName != field.filePath) directory.push_back(kPathSeparator);
  return directory + name;
}

void SaveCopy(Context& context, const Centre& centre, const std::string& path) {
  VectorField& field = context.field;
  SubtractConstantVector(context, centre.vx, centre.vy);
  field.infoText += Description(centre, context.decimalSeparator);
  field.galileiPointX = centre.x;
  field.galileiPointY = centre.y;
  field.galileiPointSet = kFlagTrue;
  SaveVas(context, path);
  AddConstantVector(context, centre.vx, centre.vy);
}

void SaveCopies(Context& context, const Marks& marks) {
  const SavedInfo restoredAtTheEnd(context.field);
  const std::string directory = CopyDirectory(context.field);
  int k = 0;
  ForEachMark(marks, [&](std::int32_t i, std::int32_t j) {
    if (!IsAccepted(context.field.derivedScalar, i, j)) return true;
    SaveCopy(context, CentreAt(context.field, i, j), directory + "Swirl" + std::to_string(++k) + ".vas");
    return !context.userAbortRequested;
  });
}

}  // namespace

void FindVortexCentres(Context& context, const std::string& textPath, bool autoTrafo) {
  context.log.WriteLogLine("Suche Maxima der (Swirling Strength)²... ");
  CalcSwirlingStrength(context.field);
  Marks marks;
  MarkMaxima(context.field.derivedScalar, marks);
  context.vortexCentres = std::ranges::count_if(marks.Values(), [](std::int16_t mark) { return mark != 0; });
  if (textPath.empty()) {
    LogLines(context.log, {kDoneText});
  } else if (AppendMaxima(context, textPath, marks) == SaveOutcome::cancelled) {
    return;
  }
  LogLines(context.log, {"Speichern der transformierten Vektorfelder..."});
  if (autoTrafo) SaveCopies(context, marks);
  LogLines(context.log, {"Speichern der transformierten Vektorfelder beendet."});
}

}  // namespace quiverion
