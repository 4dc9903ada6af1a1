#include <algorithm>
#include <cmath>

#include "exchange/netcdf_file.h"
#include "exchange/raw_field.h"
#include "exchange/readers.h"
#include "exchange/units.h"
#include "messages/failure.h"
#include "platform/text/numbers.h"

namespace quiverion::exchange {
namespace {

using Variable = NetCdfFile::Variable;

std::string UnitOf(const Variable& variable, const std::string& attribute = "units") {
  return CleanUnit(NetCdfFile::TextOf(variable.attributes, attribute));
}

PlaceOf PlaceInVariable(const std::string& name) {
  return [name](std::size_t point) { return "Variable '" + name + "', Wert " + std::to_string(point + 1); };
}

const Variable* FindRole(const NetCdfFile& file, Role role, std::size_t dimensions) {
  const auto found = std::ranges::find_if(file.Variables(), [&](const Variable& variable) {
    return RoleOf(variable.name) == role && variable.dimensions.size() >= dimensions;
  });
  return found == file.Variables().end() ? nullptr : &*found;
}

// Variables with coordinates of their own, in any order of dimensions: CF, PIVPy, what this program exports.
class Coordinates {
 public:
  explicit Coordinates(const NetCdfFile& file) : file_(file), u_(*Require(Role::u)), v_(*Require(Role::v)) {
    if (u_.dimensions != v_.dimensions) {
      throw FormatError("Variable '" + v_.name + "': sie hat andere Dimensionen als '" + u_.name + "'");
    }
    const Variable& x = Axis(Role::x, xDimension_);
    const Variable& y = Axis(Role::y, yDimension_);
    if (xDimension_ == yDimension_) throw FormatError("Variable '" + y.name + "': x und y haben dieselbe Dimension");
    FindTimes();
    facts_.dialect = file.Globals().contains("pivpy_schema_version") ? "netCDF (PIVPy)" : "netCDF";
    facts_.lengthUnit = UnitOf(x).empty() ? UnitOf(y) : UnitOf(x);
    facts_.velocityUnit = UnitOf(u_).empty() ? UnitOf(v_) : UnitOf(u_);
    columnPositions_ = file.Line(x);
    rowPositions_ = file.Line(y);
    layout_ = GridOfAxes(columnPositions_, rowPositions_);
  }

  std::vector<RawField> ReadAll(const ImportOptions& options) {
    std::vector<RawField> fields;
    bool anyVector = false;
    for (std::uint64_t t = 0; t < fieldCount_; ++t) {
      RawField& raw = fields.emplace_back();
      raw.layout = layout_;
      raw.columnPositions = columnPositions_;
      raw.rowPositions = rowPositions_;
      raw.u = Read(u_, t);
      raw.v = Read(v_, t);
      raw.status =
          StatusesOf(ReadStatuses(t), raw.u.size(), {.column5 = options.column5}, PlaceInVariable("status"), facts_);
      if (t < times_.size()) raw.time = times_[static_cast<std::size_t>(t)];
      const auto isSet = [](double value) { return value != 0; };
      anyVector = anyVector || std::ranges::any_of(raw.u, isSet) || std::ranges::any_of(raw.v, isSet);
    }
    if (!anyVector) {
      facts_.warnings.emplace_back(
          "Alle Vektoren sind (0, 0): PIVPy liest die Dateien von OpenPIV mit sechs Spalten so, dann die Textdateien "
          "importieren");
    }
    return fields;
  }

  const FileFacts& Facts() const { return facts_; }

 private:
  const Variable* Require(Role role) const {
    const Variable* const found = FindRole(file_, role, 2);
    if (found == nullptr)
      throw FormatError(std::string("Byte 0: es gibt keine Variable ") + (role == Role::u ? "u" : "v"));
    return found;
  }

  // The coordinate of this role, and which dimension of u it belongs to.
  const Variable& Axis(Role role, std::size_t& dimension) const {
    for (const Variable& variable : file_.Variables()) {
      if (RoleOf(variable.name) != role || variable.dimensions.size() != 1) continue;
      const auto found = std::ranges::find(u_.dimensions, variable.dimensions.front());
      if (found == u_.dimensions.end()) continue;
      dimension = static_cast<std::size_t>(found - u_.dimensions.begin());
      return variable;
    }
    throw FormatError("Variable '" + u_.name + "': es gibt keine Koordinaten " + (role == Role::x ? "x" : "y") +
                      " zu ihr");
  }

  // The dimension that is neither x nor y.
  void FindTimes() {
    for (std::size_t d = 0; d < u_.dimensions.size(); ++d) {
      if (d == xDimension_ || d == yDimension_) continue;
      const std::uint64_t length = file_.Length(u_, d);
      if (length == 1) continue;
      if (timeDimension_) throw FormatError("Variable '" + u_.name + "': sie hat zu viele Dimensionen");
      timeDimension_ = u_.dimensions[d];
      fieldCount_ = length;
    }
    for (std::size_t d = 0; d < u_.dimensions.size(); ++d) {
      if (d == xDimension_ || d == yDimension_) continue;
      const Variable* const times = file_.Find(file_.Dimensions()[u_.dimensions[d]].name);
      if (times != nullptr && times->dimensions.size() == 1 && times->dimensions.front() == u_.dimensions[d]) {
        times_ = file_.Line(*times);
      }
    }
    if (fieldCount_ == 0) throw FormatError("Variable '" + u_.name + "': sie enthält kein Feld");
  }

  // Field `t` of a variable that has the dimensions of x and y.
  Values Read(const Variable& variable, std::uint64_t t) const {
    const auto indexOf = [&](std::size_t dimension) {
      const auto found = std::ranges::find(variable.dimensions, dimension);
      return static_cast<std::size_t>(found - variable.dimensions.begin());
    };
    std::uint64_t offset = 0;
    if (timeDimension_) {
      const std::size_t d = indexOf(*timeDimension_);
      if (d < variable.dimensions.size()) offset = t * variable.strides[d];
    }
    return file_.Plane(variable, offset, indexOf(u_.dimensions[yDimension_]), indexOf(u_.dimensions[xDimension_]));
  }

  std::vector<StatusColumn> ReadStatuses(std::uint64_t t) const {
    std::vector<StatusColumn> columns;
    for (const Variable& variable : file_.Variables()) {
      const auto has = [&](std::size_t dimension) {
        return std::ranges::find(variable.dimensions, u_.dimensions[dimension]) != variable.dimensions.end();
      };
      const Role role = RoleOf(variable.name);
      if (IsStatus(role) && has(xDimension_) && has(yDimension_)) {
        columns.push_back({role, variable.name, Read(variable, t)});
      }
    }
    return columns;
  }

  const NetCdfFile& file_;
  const Variable& u_;
  const Variable& v_;
  std::size_t xDimension_ = 0, yDimension_ = 0;  // places in the dimensions of u
  std::optional<std::size_t> timeDimension_;
  std::uint64_t fieldCount_ = 1;
  Values times_;
  Values columnPositions_, rowPositions_;
  GridLayout layout_;
  FileFacts facts_;
};

// PIVview: one variable with all components, coordinates as its attributes, flags as bits.
class PivView {
 public:
  PivView(const NetCdfFile& file, const Variable& velocity) : file_(file), velocity_(velocity) {
    facts_.dialect = "PIVview (netCDF)";
    facts_.lengthUnit = UnitOf(velocity, "coord_units");
    facts_.velocityUnit = UnitOf(velocity);
    for (const char* name : {"image_coordinates", "image_info"}) {
      const std::string text = NetCdfFile::TextOf(file.Globals(), name);
      if (text.find("upper-left") != std::string::npos || text.find("upper left") != std::string::npos) {
        facts_.yPointsDown = true;
      }
    }
  }

  RawField Read() {
    constexpr std::size_t kDepth = 0, kHeight = 1, kWidth = 2, kComponents = 3;
    if (velocity_.dimensions.size() != 4 || file_.Length(velocity_, kComponents) < 2) {
      throw FormatError("Variable '" + velocity_.name + "': sie hat nicht die Dimensionen von PIVview");
    }
    if (file_.Length(velocity_, kDepth) != 1) {
      throw FormatError("Variable '" + velocity_.name + "': ein Volumen kann nicht gelesen werden");
    }
    RawField raw;
    raw.u = file_.Plane(velocity_, 0, kHeight, kWidth);
    raw.v = file_.Plane(velocity_, velocity_.strides[kComponents], kHeight, kWidth);
    raw.columnPositions = Positions(0, file_.Length(velocity_, kWidth));
    raw.rowPositions = Positions(1, file_.Length(velocity_, kHeight));
    raw.layout = GridOfAxes(raw.columnPositions, raw.rowPositions);
    TakeFlags(raw);
    const auto delay = NetCdfFile::NumberOf(file_.Globals(), "laser_pulse_delay");
    if (delay && *delay >= 0 && *delay < 2E9 &&
        NetCdfFile::TextOf(file_.Globals(), "laser_pulse_delay_units") == "us") {
      raw.pulseDelay = RoundToInt32(*delay);
    }
    return raw;
  }

  const FileFacts& Facts() const { return facts_; }

 private:
  Values Positions(std::size_t axis, std::uint64_t count) const {
    const auto numbers = [&](const char* name) {
      const auto found = velocity_.attributes.find(name);
      if (found == velocity_.attributes.end() || found->second.numbers.size() <= axis) {
        throw FormatError("Variable '" + velocity_.name + "': das Attribut " + name + " mit den Koordinaten fehlt");
      }
      return found->second.numbers[axis];
    };
    const double low = numbers("coord_min"), high = numbers("coord_max");
    Values positions(static_cast<std::size_t>(count));
    for (std::size_t k = 0; k < positions.size(); ++k) {
      positions[k] = count < 2 ? low : low + static_cast<double>(k) * (high - low) / static_cast<double>(count - 1);
    }
    return positions;
  }

  void TakeFlags(RawField& raw) {
    raw.status.assign(raw.u.size(), 1);
    const Variable* const flags = file_.Find("piv_flags");
    if (flags == nullptr) return;
    if (flags->dimensions.size() != 3 || file_.Length(*flags, 1) != file_.Length(velocity_, 1) ||
        file_.Length(*flags, 2) != file_.Length(velocity_, 2)) {
      throw FormatError("Variable 'piv_flags': sie hat andere Dimensionen als '" + velocity_.name + "'");
    }
    const Values bits = file_.Plane(*flags, 0, 1, 2);
    for (std::size_t p = 0; p < bits.size(); ++p) raw.status[p] = StatusOf(static_cast<int>(bits[p]) & 0xFF);
    facts_.hasStatus = true;
    facts_.statusRule = "Status aus 'piv_flags'";
  }

  static std::int32_t StatusOf(int bits) {
    enum { active = 1, masked = 2, noResult = 4, disabled = 8, interpolated = 32, replaced = 64 };
    if ((bits & (masked | disabled)) != 0) return -1;
    if ((bits & noResult) != 0 || (bits & active) == 0) return 0;
    if ((bits & interpolated) != 0) return 3;
    return (bits & replaced) != 0 ? 2 : 1;
  }

  const NetCdfFile& file_;
  const Variable& velocity_;
  FileFacts facts_;
};

}  // namespace

bool IsNetCdf(std::string_view head) {
  return head.size() >= 4 && head.starts_with("CDF") && (head[3] == 1 || head[3] == 2 || head[3] == 5);
}

ForeignFile ReadNetCdf(const ForeignSource& source) {
  const NetCdfFile file(source.file);
  const Variable* pivView = nullptr;
  for (const char* name : {"piv_data", "velocity"}) {
    if (const Variable* const found = file.Find(name); found != nullptr) pivView = found;
  }
  if (pivView != nullptr) {
    PivView reader(file, *pivView);
    std::vector<RawField> raw;
    raw.push_back(reader.Read());
    return BuildFields(std::move(raw), reader.Facts(), source.options);
  }
  Coordinates reader(file);
  std::vector<RawField> raw = reader.ReadAll(source.options);
  return BuildFields(std::move(raw), reader.Facts(), source.options);
}

}  // namespace quiverion::exchange
