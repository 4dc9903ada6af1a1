#include "exchange/grid_points.h"

#include <cmath>
#include <limits>
#include <optional>

#include "messages/failure.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/numbers.h"

namespace quiverion::exchange {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

[[noreturn]] void Refuse(const std::string& place, const std::string& reason) {
  throw FormatError(place.empty() ? reason : place + ": " + reason);
}

// One of the two coordinates of all points.
struct Axis {
  std::span<const double> values;
  const char* name;
};

// How many of `values` are further from `expected` than `most`. NaN is far from everything.
QUIVERION_MULTI_TARGET std::size_t CountFar(const double* values, const double* expected, std::size_t count,
                                            double most) {
  std::size_t far = 0;
  for (std::size_t k = 0; k < count; ++k) far += std::fabs(values[k] - expected[k]) <= most ? 0 : 1;
  return far;
}

QUIVERION_MULTI_TARGET std::size_t CountFarFrom(const double* values, double expected, std::size_t count, double most) {
  std::size_t far = 0;
  for (std::size_t k = 0; k < count; ++k) far += std::fabs(values[k] - expected) <= most ? 0 : 1;
  return far;
}

// The first position of a regular axis that is not where it has to be.
struct AxisFault {
  std::size_t at = kNone;
  std::string reason;
};

AxisFault CheckRegular(std::span<const double> positions, const char* name) {
  const std::size_t count = positions.size();
  for (std::size_t k = 0; k < count; ++k) {
    if (!std::isfinite(positions[k])) return {k, std::string(name) + " ist keine Zahl"};
  }
  if (count < 2) return {};
  for (std::size_t k = 1; k < count; ++k) {
    if (positions[k] == positions[k - 1]) {
      return {k, std::string("doppelter Punkt, ") + name + " = " + FormatNumber(positions[k]) + " kommt wieder"};
    }
  }
  const double first = positions.front();
  const double step = (positions.back() - first) / static_cast<double>(count - 1);
  if (step == 0) return {1, std::string("doppelter Punkt, ") + name + " = " + FormatNumber(first) + " kommt wieder"};
  const double most = kLargestDeviation * std::fabs(step);
  for (std::size_t k = 1; k < count; ++k) {
    if (std::fabs(positions[k] - (first + static_cast<double>(k) * step)) <= most) continue;
    return {k, std::string("das Gitter ist nicht gleichmäßig, ") + name + " = " + FormatNumber(positions[k]) +
                   " statt " + FormatNumber(first + static_cast<double>(k) * step)};
  }
  return {};
}

double LargestDeviation(std::span<const double> positions) {
  const double step = (positions.back() - positions.front()) / static_cast<double>(positions.size() - 1);
  return kLargestDeviation * std::fabs(step);
}

// How many points come before the fast coordinate is back at its beginning.
std::size_t LengthOfRow(std::span<const double> fast) {
  const double half = std::fabs(fast[1] - fast[0]) / 2;
  for (std::size_t k = 1; k < fast.size(); ++k) {
    if (std::fabs(fast[k] - fast[0]) < half) return k;
  }
  return fast.size();
}

// Why points are no grid with this fast coordinate.
struct Fault {
  std::size_t point = kNone;
  std::string reason;
};

std::string ValueText(const Axis& axis, std::size_t point, double expected) {
  return std::string(axis.name) + " = " + FormatNumber(axis.values[point]) + " statt " + FormatNumber(expected);
}

// A row that does not agree with the first one, or with its own first point.
Fault FaultInRow(const Axis& fast, const Axis& slow, std::size_t begin, std::size_t length, double mostFast,
                 double mostSlow) {
  for (std::size_t k = 0; k < length; ++k) {
    if (!(std::fabs(fast.values[begin + k] - fast.values[k]) <= mostFast)) {
      return {begin + k, "fehlender oder doppelter Punkt, " + ValueText(fast, begin + k, fast.values[k])};
    }
    if (!(std::fabs(slow.values[begin + k] - slow.values[begin]) <= mostSlow)) {
      return {begin + k, "fehlender oder doppelter Punkt, " + ValueText(slow, begin + k, slow.values[begin])};
    }
  }
  return {};
}

Fault CheckRows(const Axis& fast, const Axis& slow, std::size_t length) {
  const std::size_t count = fast.values.size();
  const std::size_t rows = count / length;
  Values starts(rows);
  for (std::size_t r = 0; r < rows; ++r) starts[r] = slow.values[r * length];
  if (const AxisFault fault = CheckRegular(fast.values.first(length), fast.name); fault.at != kNone) {
    return {fault.at, fault.reason};
  }
  // A missing point shifts everything after it: the rows are compared before their positions are.
  const double mostFast = LargestDeviation(fast.values.first(length));
  const AxisFault slowFault = CheckRegular(starts, slow.name);
  const double mostSlow = rows < 2                ? mostFast
                          : slowFault.at == kNone ? LargestDeviation(starts)
                                                  : kLargestDeviation * std::fabs(starts[1] - starts[0]);
  for (std::size_t r = 0; r < rows; ++r) {
    const std::size_t begin = r * length;
    if (CountFar(&fast.values[begin], fast.values.data(), length, mostFast) == 0 &&
        CountFarFrom(&slow.values[begin], slow.values[begin], length, mostSlow) == 0) {
      continue;
    }
    return FaultInRow(fast, slow, begin, length, mostFast, mostSlow);
  }
  if (count % length != 0) {
    return {count - 1, "das Gitter ist nicht vollständig, " + std::to_string(count) +
                           " Punkte sind keine Reihen zu je " + std::to_string(length)};
  }
  if (slowFault.at != kNone) return {slowFault.at * length, slowFault.reason};
  return {};
}

Fault TryGrid(const Axis& fast, const Axis& slow, GridLayout& layout) {
  const std::size_t length = LengthOfRow(fast.values);
  if (Fault fault = CheckRows(fast, slow, length); fault.point != kNone) return fault;
  const std::size_t rows = fast.values.size() / length;
  const bool fastAscends = length < 2 || fast.values[length - 1] > fast.values[0];
  const bool slowAscends = rows < 2 || slow.values[(rows - 1) * length] > slow.values[0];
  layout.xIsFast = fast.name[0] == 'x';
  layout.columns = CheckedInt32(static_cast<std::int64_t>(layout.xIsFast ? length : rows));
  layout.rows = CheckedInt32(static_cast<std::int64_t>(layout.xIsFast ? rows : length));
  layout.xAscends = layout.xIsFast ? fastAscends : slowAscends;
  layout.yAscends = layout.xIsFast ? slowAscends : fastAscends;
  return {};
}

}  // namespace

GridLayout FindGrid(std::span<const double> xs, std::span<const double> ys, const PlaceOf& placeOf) {
  const Axis x{xs, "x"}, y{ys, "y"};
  if (xs.empty()) throw FormatError("Es gibt keine Punkte.");
  for (const Axis& axis : {x, y}) {
    if (!std::isfinite(axis.values[0])) Refuse(placeOf(0), std::string(axis.name) + " ist keine Zahl");
  }
  GridLayout layout{1, 1, true, true, false};
  if (xs.size() == 1) return layout;
  const bool xChanges = xs[1] != xs[0], yChanges = ys[1] != ys[0];
  if (!xChanges && !yChanges) {
    Refuse(placeOf(1), "doppelter Punkt (" + FormatNumber(xs[0]) + ", " + FormatNumber(ys[0]) + ")");
  }
  // Rounded positions may differ in both; then the one that gives a grid is the fast one.
  std::optional<Fault> first;
  for (const bool xIsFast : {true, false}) {
    if (xIsFast ? !xChanges : !yChanges) continue;
    Fault fault = xIsFast ? TryGrid(x, y, layout) : TryGrid(y, x, layout);
    if (fault.point == kNone) return layout;
    if (!first) first = std::move(fault);
  }
  const bool isSlanting = xChanges && yChanges && first->point == 1;
  Refuse(placeOf(first->point), isSlanting ? "die Punkte liegen nicht in Zeilen und Spalten" : first->reason);
}

GridLayout GridOfAxes(std::span<const double> x, std::span<const double> y) {
  for (const Axis& axis : {Axis{x, "x"}, Axis{y, "y"}}) {
    if (axis.values.empty()) throw FormatError("Es gibt keine Punkte.");
    const AxisFault fault = CheckRegular(axis.values, axis.name);
    if (fault.at != kNone) {
      Refuse("Koordinate " + std::string(axis.name) + ", Wert " + std::to_string(fault.at + 1), fault.reason);
    }
  }
  return {CheckedInt32(static_cast<std::int64_t>(x.size())), CheckedInt32(static_cast<std::int64_t>(y.size())), true,
          x.size() < 2 || x.back() > x.front(), y.size() > 1 && y.back() > y.front()};
}

Values ColumnPositions(const GridLayout& layout, std::span<const double> x) {
  Values positions(static_cast<std::size_t>(layout.columns));
  const std::size_t step = layout.xIsFast ? 1 : layout.FastCount();
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = x[i * step];
  return positions;
}

Values RowPositions(const GridLayout& layout, std::span<const double> y) {
  Values positions(static_cast<std::size_t>(layout.rows));
  const std::size_t step = layout.xIsFast ? layout.FastCount() : 1;
  for (std::size_t j = 0; j < positions.size(); ++j) positions[j] = y[j * step];
  return positions;
}

}  // namespace quiverion::exchange
