#include "export/text_exports.h"

#include <cmath>
#include <cstdint>
#include <string_view>

#include "export/table_writer.h"
#include "field/frames.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/mathematical.h"
#include "platform/numeric/checked_real.h"

namespace quiverion {
namespace {

constexpr char kTab = '\t';

constexpr SaveWording kWording = {
    .openFailed =
        "    Die aktuelle Datei kann nicht gespeichert werden, da folgender Fehler beim Öffnen aufgetreten ist:"};

// The positions of the grid as they appear in the table.
struct Positions {
  PrintedNumbers x, y;

  Positions(const VectorField& field, const TableWriter& table)
      : x(field.posX, table.DecimalSeparator()), y(field.posY, table.DecimalSeparator()) {}
};

using Calculation = void (*)(VectorField&);
using Writer = void (*)(const VectorField&, TableWriter&);

void Export(Context& context, std::string_view what, const std::string& path, Calculation calculate, Writer write) {
  context.log.WriteLogLine(std::string(what) + " unter '" + path + "' exportieren... ");
  CreatePathDirectories(context.files, path);
  if (calculate != nullptr) calculate(context.field);
  RunSaveFrame(
      context, path,
      [&](ResultFile& file) {
        TableWriter table(file, context.decimalSeparator);
        write(context.field, table);
        table.Finish();
      },
      kWording);
}

double CheckedLength(double x, double y) {
  const double length = VectorLength(x, y);
  if (HasOverflowed(x, y, length)) throw SystemError(ErrorNumber::overflow);
  return length;
}

void WriteStanfordVectors(const VectorField& field, TableWriter& table) {
  table << "X[mm]\tY[mm]\tVx[m/s]\tVy[m/s]\t|V|[m/s]\tGalilei-Trafo:";
  table << kTab << field.galileiVelX << kTab << field.galileiVelY;
  if (field.galileiPointSet != kFlagFalse) {
    table << "\tbei:" << kTab << field.galileiPointX << kTab << field.galileiPointY;
  }
  table.EndLine();
  const Positions at(field, table);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      if (field.status(i, j) <= 0) continue;
      const double u = field.velX(i, j), v = field.velY(i, j);
      table << at.x(i) << kTab << at.y(j) << kTab << u << kTab << v << kTab << CheckedLength(u, v);
      table.EndLine();
    }
  }
}

// A line with the positions of the rows, then a line per column; the last row comes first.
void WriteGrid(const VectorField& field, TableWriter& table, std::string_view corner, char separator) {
  const Positions at(field, table);
  table << corner;
  for (std::int32_t j = field.rowCount; j >= 1; --j) table << separator << at.y(j);
  table.EndLine();
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    table << at.x(i);
    for (std::int32_t j = field.rowCount; j >= 1; --j) table << separator << field.derivedScalar(i, j);
    table.EndLine();
  }
}

void WriteStanfordGrid(const VectorField& field, TableWriter& table) {
  WriteGrid(field, table, "X[mm]/Y[mm]", kTab);
}

void WriteMatlabGrid(const VectorField& field, TableWriter& table) {
  WriteGrid(field, table, "0", ';');
}

void WriteVelocityProfile(const VectorField& field, TableWriter& table) {
  table << "Y[mm]\tVx[m/s]\tVy[m/s]\t|V|[m/s]";
  table.EndLine();
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    CheckedReal sumU = 0.0, sumV = 0.0;
    int count = 0;
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      if (field.status(i, j) <= 0) continue;
      sumU = sumU + field.velX(i, j);
      sumV = sumV + field.velY(i, j);
      ++count;
    }
    if (count == 0) continue;
    const double u = sumU.Value() / count, v = sumV.Value() / count;
    table << field.posY[static_cast<std::size_t>(j - 1)] << kTab << u << kTab << v << kTab << CheckedLength(v, u);
    table.EndLine();
  }
}

template <class ValueOf>
void WriteTriples(const VectorField& field, TableWriter& table, ValueOf valueOf) {
  const Positions at(field, table);
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = field.rowCount; j >= 1; --j) {
      table << at.x(i) << ' ' << at.y(j) << ' ' << valueOf(field.derivedScalar(i, j));
      table.EndLine();
    }
  }
}

// The root keeps the sign, which is the sense of rotation.
void WriteSwirlTriples(const VectorField& field, TableWriter& table) {
  WriteTriples(field, table, [](double s) { return s < 0.0 ? -std::sqrt(-s) : std::sqrt(s); });
}

void WriteVorticityTriples(const VectorField& field, TableWriter& table) {
  WriteTriples(field, table, [](double s) { return s; });
}

void WriteMatlabVectors(const VectorField& field, TableWriter& table) {
  const Positions at(field, table);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      table << at.x(i) << ';' << at.y(j) << ';';
      if (field.status(i, j) < 1) {
        table << "0;0";
      } else {
        table << field.velX(i, j) << ';' << field.velY(i, j);
      }
      table.EndLine();
    }
  }
}

}  // namespace

void ExportStanfordVectorField(Context& context, const std::string& path) {
  Export(context, "Vektorfeld für Stanford", path, nullptr, WriteStanfordVectors);
}

void ExportStanfordSwirl2(Context& context, const std::string& path) {
  Export(context, "(Swirling Strength)² für Stanford", path, CalcSwirlingStrength, WriteStanfordGrid);
}

void ExportStanfordVorticity(Context& context, const std::string& path) {
  Export(context, "Vorticity für Stanford", path, CalcVorticity, WriteStanfordGrid);
}

void ExportStanfordVelocityProfile(Context& context, const std::string& path) {
  Export(context, "Geschwindigkeitsprofil für Stanford", path, nullptr, WriteVelocityProfile);
}

void ExportTecPlotSwirl(Context& context, const std::string& path) {
  Export(context, "Swirling Strength für TecPlot", path, CalcSwirlingStrength, WriteSwirlTriples);
}

void ExportTecPlotVorticity(Context& context, const std::string& path) {
  Export(context, "Vorticity für TecPlot", path, CalcVorticity, WriteVorticityTriples);
}

void ExportMatlabVectorField(Context& context, const std::string& path) {
  Export(context, "Vektorfeld für Matlab", path, nullptr, WriteMatlabVectors);
}

void ExportMatlabSwirl2(Context& context, const std::string& path) {
  Export(context, "(Swirling Strength)² für Matlab", path, CalcSwirlingStrength, WriteMatlabGrid);
}

}  // namespace quiverion
