#include <algorithm>

#include "foreign_parts.h"

namespace quiverion::samples {

std::string OpenPiv5(const SampleField& field) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%8.4f\t%8.4f\t%8.4f\t%8.4f\t%8.4f\n", p.x, p.y, p.u, p.v, 1.0 - Valid(p));
  });
  return text;
}

std::string OpenPiv6(const SampleField& field) {
  std::string text = "# x\ty\tu\tv\tflags\tmask\n";
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%.4e\t%.4e\t%.4e\t%.4e\t%.4e\t%.4e\n", p.x, p.y, p.u, p.v, p.status > 0 ? 0.0 : 1.0,
           p.status < 0 ? 1.0 : 0.0);
  });
  return text;
}

std::string Jpiv(const SampleField& field) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6f %.6f %.6f %.6f %.3f\n", p.x, p.y, p.u, p.v, Valid(p) != 0 ? 1.5 : -1.0);
  });
  return text;
}

std::string PivLab(const SampleField& field) {
  std::string text =
      "PIVlab, ASCII chart output - 14-Mar-2017\r\n"
      "FRAME: 1, filenames: A.tif & B.tif, conversion factor xy (px -> m): 4.2E-05, conversion factor uv (px/frame -> "
      "m/s): 0.0042\r\n"
      "x [m],y [m],u [m/s],v [m/s],Vector type [-]\r\n";
  ForEachPoint(field, Order::columns, [&](const Point& p) {
    if (p.status < 0) {
      Append(text, "%.10g,%.10g,NaN,NaN,0\r\n", p.x / 1000, p.y / 1000);
    } else {
      Append(text, "%.10g,%.10g,%.10g,%.10g,%d\r\n", p.x / 1000, p.y / 1000, p.u, p.v, TypeVector(p));
    }
  });
  return text;
}

std::string PivLabWide(const SampleField& field) {
  std::string text =
      "x [mm]\ty [mm]\tu [m/s]\tv [m/s]\tVector type [-]\tvorticity [1/s]\tmagnitude [m/s]\tdivergence [1/s]\n";
  ForEachPoint(field, Order::columns, [&](const Point& p) {
    Append(text, "%.10g\t%.10g\t%.10g\t%.10g\t%d\t%.10g\t%.10g\t%.10g\n", p.x, p.y, p.u, p.v, TypeVector(p), p.u / 3,
           p.v / 7, p.u * p.v);
  });
  return text;
}

std::string PivLabTecplot(const SampleField& field) {
  std::string text =
      "# PIVlab by W.Th. & E.J.S., TECPLOT output - 14-Mar-2017\r\nTITLE = \"PIVlab\"\r\n"
      "VARIABLES = \"x [mm]\", \"y [mm]\", \"u [m/s]\", \"v [m/s]\", \"isNaN\"\r\n";
  Append(text, "ZONE I=%d, J=%d, K=1, F=POINT, T=\"frame 1\"\r\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%.10g %.10g %.10g %.10g %d\r\n", p.x, p.y, p.u, p.v, 1 - Valid(p));
  });
  return text;
}

std::string Insight(const SampleField& field) {
  std::string text =
      "TITLE=\"C:\\Data\\Run1.vec\" VARIABLES=\"X mm\", \"Y mm\", \"U m/s\", \"V m/s\", \"CHC\", "
      "DATASETAUXDATA Application=\"PIV\" DATASETAUXDATA MicrosecondsPerDeltaT=\"100\" ";
  Append(text, "ZONE SOLUTIONTIME=0.000000, I=%d, J=%d, F=POINT\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6f, %.6f, %.6f, %.6f, %d\n", p.x, p.y, p.u, p.v, Valid(p) != 0 ? 1 : -1);
  });
  return text;
}

static std::string DavisPoints(const SampleField& field, char separator, bool comma, const char* lineEnd) {
  std::string text;
  ForEachPoint(field, Order::rowsFromTop, [&](const Point& p) {
    Append(text, "%.6g%c%.6g%c", p.x, separator, p.y, separator);
    if (p.status > 0) {
      Append(text, "%.6g%c%.6g", p.u, separator, p.v);
    } else {
      Append(text, "0%c-0", separator);
    }
    text += lineEnd;
  });
  if (comma) std::ranges::replace(text, '.', ',');
  return text;
}

std::string Davis8(const SampleField& field) {
  std::string text;
  Append(text, "#DaVis 8.1.6 2D-vector 32 %d %d \"position\" \"mm\" \"position\" \"mm\" \"velocity\" \"m/s\"\n",
         field.rows, field.columns);
  return text + DavisPoints(field, '\t', true, "\n");
}

std::string Davis10(const SampleField& field) {
  std::string text;
  Append(text, "#DaVis 10.2 2C vector field 4 %d %d \"x [mm]\";\"y [mm]\";\"Vx [m/s]\";\"Vy [m/s]\"\r\n", field.rows,
         field.columns);
  return text + DavisPoints(field, ';', false, "\r\n");
}

std::string DavisTecplot(const SampleField& field) {
  std::string text = "TITLE = \"B00001\"\r\nVARIABLES = \"x\", \"y\", \"Vx\", \"Vy\", \"isValid\"\r\n";
  Append(text, "ZONE T=\"Frame 0\", I=%d, J=%d, K=1\r\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromTop,
               [&](const Point& p) { Append(text, "%.6f %.6f %.12f %.12f %d\r\n", p.x, p.y, p.u, p.v, Valid(p)); });
  return text;
}

std::string PivViewText(const SampleField& field) {
  std::string text =
      "# Software: PIVTEC PIVview Module\n# var 1: 'x' - physical coordinate X in [mm]\n"
      "# var 2: 'y' - physical coordinate Y in [mm]\n# var 4: 'u' - velocity conponent X in [m/s]\n"
      "TITLE = \"PIV Velocity Data\"\nVARIABLES = \"x\", \"y\", \"z\", \"u\", \"v\", \"w\", \"velmag\", "
      "\"flag\", \"count\", \"valid\", \"dudx\", \"dudy\", \"dvdx\", \"dvdy\"\n";
  Append(text, "ZONE I=%d, J=%d, K=1, F=POINT, T=\"avg\"\n", field.columns, field.rows);
  ForEachPoint(field, Order::rowsFromBelow, [&](const Point& p) {
    Append(text, "%g %g 0 %g %g 0 %g %d 8 1 0 0 0 0 \n", p.x, p.y, p.u, p.v, p.u,
           p.status > 0    ? 3
           : p.status == 0 ? 1
                           : 0);
  });
  return text;
}

// Variable after variable, five numbers per line.
std::string TecplotBlock(const SampleField& field) {
  std::string text = "variables = x, y\n  u, v status\n";
  Append(text, "Zone t = \"1\" i = %d j = %d datapacking = block SOLUTIONTIME = 0.5\n", field.columns, field.rows);
  int count = 0;
  const auto column = [&](auto of) {
    ForEachPoint(field, Order::rowsFromTop,
                 [&](const Point& p) { Append(text, ++count % 5 == 0 ? " %.9E\n" : " %.9E", of(p)); });
  };
  column([](const Point& p) { return p.x; });
  column([](const Point& p) { return p.y; });
  column([](const Point& p) { return p.u; });
  column([](const Point& p) { return p.v; });
  column([](const Point& p) { return static_cast<double>(p.status); });
  return text + "\n";
}

std::string Csv(const SampleField& field) {
  std::string text = "pos_x (mm);pos_y (mm);velocity_x (m/s);velocity_y (m/s);note;valid\n";
  ForEachPoint(field, Order::rowsFromTop,
               [&](const Point& p) { Append(text, "%.17g;%.17g;%.17g;%.17g;a b;%d\n", p.x, p.y, p.u, p.v, Valid(p)); });
  std::ranges::replace(text, '.', ',');
  return text;
}

}  // namespace quiverion::samples
