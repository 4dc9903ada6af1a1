#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include "foreign_parts.h"

namespace quiverion::samples {
namespace {

// Bytes in either order.
class Bytes {
 public:
  explicit Bytes(std::endian order) : order_(order) {}
  template <class Value>
  Bytes& Put(Value value) {
    char raw[sizeof value];
    std::copy_n(reinterpret_cast<const char*>(&value), sizeof value, raw);
    if (order_ != std::endian::native) std::reverse(raw, raw + sizeof value);
    text.append(raw, sizeof value);
    return *this;
  }
  Bytes& Raw(std::string_view bytes) { return text += bytes, *this; }
  Bytes& Pad(std::size_t to) { return text.resize((text.size() + to - 1) / to * to, '\0'), *this; }

  std::string text;

 private:
  std::endian order_;
};

std::string Deflated(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string packed(size, '\0');
  compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
            static_cast<uLong>(bytes.size()), 1);
  packed.resize(size);
  return packed;
}

// The vector is that of the second peak, in the later step's place for every third point.
int Choice(std::size_t p, int status) {
  return status <= 0 ? 0 : p % 3 == 0 ? 5 : 2;
}

}  // namespace

// Factors that are exact in a float: m/s = raw / 8, so positions and velocities keep their digits.
std::string Vc7(const SampleField& field, int format, bool packed) {
  constexpr int kPlanes[] = {9, 2, 10, 3, 14};
  const std::size_t count = field.u.size();
  std::vector<std::vector<float>> values(static_cast<std::size_t>(kPlanes[format - 1]),
                                         std::vector<float>(count, 0.0f));
  const bool hasChoice = format == 1 || format == 3 || format == 5;
  const std::size_t components = format == 4 || format == 5 ? 3 : 2;
  for (std::size_t p = 0; p < count; ++p) {
    const int choice = hasChoice ? Choice(p, field.status[p]) : 1;
    if (hasChoice) values[0][p] = static_cast<float>(choice);
    if (choice == 0 || field.status[p] <= 0) continue;
    const std::size_t plane = (hasChoice ? 1 : 0) + components * static_cast<std::size_t>(std::min(choice, 4) - 1);
    values[plane][p] = static_cast<float>(field.u[p] * 8);
    values[plane + 1][p] = static_cast<float>(-field.v[p] * 8);  // y points up, and is stored downwards
  }
  Bytes data(std::endian::little);
  for (const auto& plane : values) {
    for (const float value : plane) data.Put(value);
  }
  Bytes file(std::endian::little);
  file.Put(std::int16_t{0})
      .Put(static_cast<std::int16_t>(packed ? 2 : 0))
      .Put(static_cast<std::int16_t>(format))
      .Put(std::int16_t{0});
  file.Put(field.columns).Put(field.rows).Put(1).Put(1).Put(std::int16_t{0});
  file.Put(static_cast<std::int16_t>(field.gridStep)).Put(std::int16_t{1}).Pad(256);
  if (packed) {
    const std::string stream = Deflated(data.text);
    file.Put(static_cast<std::int32_t>(stream.size())).Raw(stream);
  } else {
    file.Raw(data.text);
  }
  const std::size_t tags = file.text.size();
  const double step = field.gridStep, mm = 10.0 / field.pixelScale;
  const auto tag = [&](int type, const std::string& text) {
    file.Put(std::int32_t{type}).Put(static_cast<std::int32_t>(text.size())).Raw(text);
  };
  const auto scale = [&](const char* name, double factor, double offset, const char* unit) {
    std::string text;
    Append(text, "%s=%.17g\n%.17g\n%s\n", name, factor, offset, unit);
    tag(6, text);
  };
  tag(1, std::string("1.000000 0.000000\0pixel\0\0", 25));
  scale("FrameScaleX0", mm, PositionX(field, 1) - 0.5 * step * mm, "[mm]");
  scale("FrameScaleY0", -mm, PositionY(field, 1) + 0.5 * step * mm, "mm");
  scale("FrameScaleI0", 0.125, 0, "m/s");
  tag(6, "FrameDt0=300 us");
  tag(6, "_DaVisVersion=8.3.1");
  file.Put(0).Put(0);
  const std::size_t mask = file.text.size();
  for (const std::int32_t status : field.status) file.Put(static_cast<char>(status < 0 ? 0 : 1));
  const std::size_t scalars = file.text.size();
  file.Put(0);
  for (int slot = 0; slot < 32; ++slot) {
    file.Put(std::uint64_t{slot == 0 ? tags : slot == 2 ? mask : slot == 3 ? scalars : 0});
  }
  return file.text;
}

// netCDF classic with the dimensions in one of two orders: (y, x, t) is that of PIVPy.
std::string NetCdf(const SampleField& field, bool pivPy) {
  Bytes file(std::endian::big);
  const auto name = [&](std::string_view text) { file.Put(static_cast<std::uint32_t>(text.size())).Raw(text).Pad(4); };
  const auto unit = [&](std::string_view text) {
    file.Put(12).Put(1);
    name("units");
    file.Put(2);
    name(text);
  };
  const auto points = static_cast<std::uint32_t>(field.u.size());
  const auto columns = static_cast<std::uint32_t>(field.columns), rows = static_cast<std::uint32_t>(field.rows);
  // The offsets are filled in when the sizes are known.
  std::vector<std::size_t> places;
  const auto variable = [&](std::string_view title, const std::vector<int>& dimensions, std::string_view text, int type,
                            std::uint32_t size) {
    name(title);
    file.Put(static_cast<std::uint32_t>(dimensions.size()));
    for (const int dimension : dimensions) file.Put(dimension);
    unit(text);
    file.Put(type).Put((size + 3) / 4 * 4);
    places.push_back(file.text.size());
    file.Put(0);
  };
  file.Raw(std::string_view("CDF\x01", 4)).Put(0).Put(10).Put(3);
  name("x");
  file.Put(columns);
  name("y");
  file.Put(rows);
  name("t");
  file.Put(1).Put(0).Put(0).Put(11).Put(6);
  const std::vector<int> all = pivPy ? std::vector{1, 0, 2} : std::vector{2, 1, 0};
  variable("x", {0}, "mm", 6, 8 * columns);
  variable("y", {1}, "mm", 6, 8 * rows);
  variable("t", {2}, "s", 6, 8);
  variable("u", all, "m/s", 6, 8 * points);
  variable("v", all, "m/s", 6, 8 * points);
  variable("chc", all, "", 1, points);
  std::size_t next = 0;
  const auto begin = [&] {
    Bytes offset(std::endian::big);
    offset.Put(static_cast<std::uint32_t>(file.text.size()));
    file.text.replace(places[next++], 4, offset.text);
  };
  begin();
  for (int i = 1; i <= field.columns; ++i) file.Put(PositionX(field, i));
  begin();
  for (int j = 1; j <= field.rows; ++j) file.Put(PositionY(field, j));
  begin();
  file.Put(0.25);
  begin();
  for (const double u : field.u) file.Put(u);
  begin();
  for (const double v : field.v) file.Put(v);
  begin();
  for (const std::int32_t status : field.status) file.Put(static_cast<char>(status > 0 ? 1 : 0));
  return file.Pad(4).text;
}

// PIVlab's export: matrices column by column, each a compressed element; one small element for the short names.
std::string Mat(const SampleField& field) {
  Bytes file(std::endian::little);
  file.Raw("MATLAB 5.0 MAT-file, Platform: PCWIN64");
  file.text.resize(124, ' ');
  file.Put(std::int16_t{0x0100}).Raw("IM");
  const auto matrix = [&](std::string_view name, int type, int arrayClass, int rows, int columns,
                          const Bytes& numbers) {
    Bytes body(std::endian::little);
    body.Put(6).Put(8).Put(arrayClass).Put(0).Put(5).Put(8).Put(rows).Put(columns);
    if (name.size() <= 4) {
      body.Put(std::int16_t{1}).Put(static_cast<std::int16_t>(name.size())).Raw(name).Pad(8);
    } else {
      body.Put(1).Put(static_cast<std::int32_t>(name.size())).Raw(name).Pad(8);
    }
    body.Put(type).Put(static_cast<std::int32_t>(numbers.text.size())).Raw(numbers.text).Pad(8);
    Bytes element(std::endian::little);
    element.Put(14).Put(static_cast<std::int32_t>(body.text.size())).Raw(body.text);
    const std::string stream = Deflated(element.text);
    file.Put(15).Put(static_cast<std::int32_t>(stream.size())).Raw(stream);
  };
  const auto numbers = [&](std::string_view name, auto of) {
    Bytes values(std::endian::little);
    ForEachPoint(field, Order::columns, [&](const Point& p) { values.Put(static_cast<double>(of(p))); });
    matrix(name, 9, 6, field.rows, field.columns, values);
  };
  numbers("x", [](const Point& p) { return p.x / 1000; });
  numbers("y", [](const Point& p) { return p.y / 1000; });
  numbers("u_original", [](const Point& p) { return p.u + 1000; });
  numbers("u_filtered", [](const Point& p) { return p.u; });
  numbers("v_filtered", [](const Point& p) { return p.v; });
  numbers("typevector_filtered", [](const Point& p) { return TypeVector(p); });
  matrix("u_smoothed", 9, 6, 0, 0, Bytes(std::endian::little));
  Bytes text(std::endian::little);
  for (const char c : std::string_view("[m] respectively [m/s]")) text.Put(static_cast<std::uint16_t>(c));
  matrix("units", 4, 4, 1, static_cast<int>(text.text.size() / 2), text);
  return file.text;
}

}  // namespace quiverion::samples
