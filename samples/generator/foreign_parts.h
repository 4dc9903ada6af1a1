#pragma once

#include <cstdio>
#include <string>

#include "sample_field.h"

/// What the writers of foreign files share.
namespace quiverion::samples {

// What a line of a text format gets.
struct Point {
  double x, y;  // mm
  double u, v;  // m/s
  int status;
};

enum class Order { rowsFromTop, rowsFromBelow, columns };

template <class Take>
void ForEachPoint(const SampleField& field, Order order, Take take) {
  const auto point = [&](int i, int j) {
    const std::size_t p = PointIndex(field, i, j);
    take(Point{PositionX(field, i), PositionY(field, j), field.u[p], field.v[p], field.status[p]});
  };
  if (order == Order::columns) {
    for (int i = 1; i <= field.columns; ++i) {
      for (int j = field.rows; j >= 1; --j) point(i, j);
    }
    return;
  }
  for (int r = 1; r <= field.rows; ++r) {
    for (int i = 1; i <= field.columns; ++i) point(i, order == Order::rowsFromTop ? r : field.rows + 1 - r);
  }
}

// The formats are all in this file.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
template <class... Values>
void Append(std::string& text, const char* format, Values... values) {
  char line[400];
  text.append(line, static_cast<std::size_t>(std::snprintf(line, sizeof line, format, values...)));
}

#pragma GCC diagnostic pop

inline int Valid(const Point& point) {
  return point.status > 0 ? 1 : 0;
}

inline int TypeVector(const Point& p) {
  return p.status > 0 ? 1 : p.status == 0 ? 9 : 0;
}

/// The texts.
std::string OpenPiv5(const SampleField& field);
std::string OpenPiv6(const SampleField& field);
std::string Jpiv(const SampleField& field);
std::string PivLab(const SampleField& field);
std::string PivLabWide(const SampleField& field);
std::string PivLabTecplot(const SampleField& field);
std::string Insight(const SampleField& field);
std::string Davis8(const SampleField& field);
std::string Davis10(const SampleField& field);
std::string DavisTecplot(const SampleField& field);
std::string PivViewText(const SampleField& field);
std::string TecplotBlock(const SampleField& field);
std::string Csv(const SampleField& field);

/// The binary files: VC7 of formats 1 to 5, netCDF in the order of CF or of PIVPy, PIVlab's MAT file.
std::string Vc7(const SampleField& field, int format, bool packed);
std::string NetCdf(const SampleField& field, bool pivPy);
std::string Mat(const SampleField& field);

}  // namespace quiverion::samples
