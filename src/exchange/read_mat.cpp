// MAT files as PIVlab exports them: a matrix per quantity, or cells with a matrix per frame.
#include <algorithm>
#include <array>

#include "exchange/mat_file.h"
#include "exchange/raw_field.h"
#include "exchange/readers.h"
#include "exchange/units.h"
#include "messages/failure.h"

namespace quiverion::exchange {
namespace {

// Of each list, the first that is there and not empty counts.
constexpr std::array kStages = {"smoothed", "filtered", "original", ""};
constexpr std::array kTypes = {"typevector_filtered", "typevector_original", "typevector"};

bool IsWanted(std::string_view name) {
  if (name == "x" || name == "y" || name == "units" || name == "status") return true;
  const Role role = RoleOf(name);
  return role == Role::u || role == Role::v || role == Role::typeVector;
}

const MatArray* Frame(const MatArray* array, std::size_t frame) {
  if (array == nullptr) return nullptr;
  if (array->isCell) array = frame < array->cells.size() ? &array->cells[frame] : nullptr;
  return array != nullptr && array->Count() > 0 && !array->isText && !array->isCell ? array : nullptr;
}

class FrameReader {
 public:
  explicit FrameReader(const MatFile& file) : file_(file) {
    facts_.dialect = "MATLAB (PIVlab)";
    if (const MatArray* const units = file.Find("units"); units != nullptr) TakeUnits(units->Text());
  }

  std::vector<RawField> ReadAll() {
    std::vector<RawField> fields;
    for (std::size_t frame = 0; frame < FrameCount(); ++frame) {
      if (auto raw = Read(frame)) {
        fields.push_back(std::move(*raw));
      } else {
        facts_.warnings.push_back("Feld " + std::to_string(frame + 1) + " ist leer");
      }
    }
    if (fields.empty())
      throw FormatError("Byte 128: die Variablen x, y, u_filtered und v_filtered fehlen oder sind leer");
    return fields;
  }

  const FileFacts& Facts() const { return facts_; }

 private:
  std::size_t FrameCount() const {
    std::size_t count = 1;
    for (const char* stage : kStages) {
      const MatArray* const u = file_.Find(NameOf("u", stage));
      if (u != nullptr && u->isCell) count = std::max(count, u->cells.size());
    }
    return count;
  }

  static std::string NameOf(const char* component, const std::string& stage) {
    return component + (stage.empty() ? "" : "_" + stage);
  }

  // "[m] respectively [m/s]"
  void TakeUnits(const std::string& text) {
    const auto bracket = [&](std::size_t from) {
      const std::size_t begin = text.find('[', from), end = text.find(']', begin);
      return begin == std::string::npos || end == std::string::npos ? std::string()
                                                                    : text.substr(begin, end - begin + 1);
    };
    facts_.lengthUnit = CleanUnit(bracket(0));
    facts_.velocityUnit = CleanUnit(bracket(std::min(text.size(), text.find(']'))));
  }

  void RequireSize(const MatArray& array, const char* name, const MatArray& x, std::size_t frame) const {
    if (array.rows == x.rows && array.columns == x.columns) return;
    throw FormatError("Variable '" + std::string(name) + "', Feld " + std::to_string(frame + 1) + ": " +
                      std::to_string(array.rows) + " x " + std::to_string(array.columns) + " statt " +
                      std::to_string(x.rows) + " x " + std::to_string(x.columns));
  }

  std::optional<RawField> Read(std::size_t frame) {
    const MatArray* const x = Frame(file_.Find("x"), frame);
    const MatArray* const y = Frame(file_.Find("y"), frame);
    const MatArray *u = nullptr, *v = nullptr;
    for (const char* stage : kStages) {
      u = Frame(file_.Find(NameOf("u", stage)), frame);
      v = Frame(file_.Find(NameOf("v", stage)), frame);
      if (u != nullptr && v != nullptr) break;
    }
    if (x == nullptr || y == nullptr || u == nullptr || v == nullptr) return std::nullopt;
    RequireSize(*y, "y", *x, frame);
    RequireSize(*u, "u", *x, frame);
    RequireSize(*v, "v", *x, frame);
    const PlaceOf placeOf = [frame, rows = x->rows](std::size_t point) {
      return "Feld " + std::to_string(frame + 1) + ", Zeile " + std::to_string(point % rows + 1) + ", Spalte " +
             std::to_string(point / rows + 1);
    };
    RawField raw;
    const Values xs = x->ToValues(), ys = y->ToValues();
    raw.layout = FindGrid(xs, ys, placeOf);
    raw.columnPositions = ColumnPositions(raw.layout, xs);
    raw.rowPositions = RowPositions(raw.layout, ys);
    raw.u = u->ToValues();
    raw.v = v->ToValues();
    raw.status = StatusesOf(ReadStatuses(*x, frame), raw.u.size(), {}, placeOf, facts_);
    return raw;
  }

  std::vector<StatusColumn> ReadStatuses(const MatArray& x, std::size_t frame) const {
    std::vector<StatusColumn> columns;
    if (const MatArray* const status = Frame(file_.Find("status"), frame)) {
      RequireSize(*status, "status", x, frame);
      columns.push_back({Role::status, "status", status->ToValues()});
      return columns;
    }
    for (const char* name : kTypes) {
      const MatArray* const type = Frame(file_.Find(name), frame);
      if (type == nullptr) continue;
      RequireSize(*type, name, x, frame);
      columns.push_back({Role::typeVector, name, type->ToValues()});
      break;
    }
    return columns;
  }

  const MatFile& file_;
  FileFacts facts_;
};

}  // namespace

bool IsMatFile(std::string_view head) {
  return head.starts_with("MATLAB 5.0 MAT-file");
}

ForeignFile ReadMatFile(const ForeignSource& source) {
  const MatFile file(source.file, IsWanted);
  FrameReader reader(file);
  std::vector<RawField> raw = reader.ReadAll();
  return BuildFields(std::move(raw), reader.Facts(), source.options);
}

}  // namespace quiverion::exchange
