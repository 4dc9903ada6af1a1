// What is exported comes back with the same bits.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "exchange/exchange_fixture.h"
#include "exchange/writers.h"
#include "platform/files/result_file.h"
#include "support/field_builder.h"
#include "support/field_compare.h"

namespace quiverion::exchange::test {
namespace {

using quiverion::test::SameItem;

VectorField FieldOf(std::int32_t columns, std::int32_t rows, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  VectorField field = quiverion::test::MakeField(columns, rows);
  field.infoText = "Düse\r\nzwei";
  for (std::int32_t i = 0; i < columns; ++i) field.posX[static_cast<std::size_t>(i)] = 0.1 * i - 1.0 / 3;
  for (std::int32_t j = 0; j < rows; ++j) field.posY[static_cast<std::size_t>(j)] = 1e3 - 0.7 * j;
  constexpr double special[] = {0.0, -0.0, 5e-324, -2.2250738585072009e-308, 1.7976931348623157e308, 0.1, 1e22, -1e-5};
  for (auto* velocity : {&field.velX, &field.velY}) {
    for (double& value : velocity->Values()) {
      value = random() % 3 == 0
                  ? special[random() % std::size(special)]
                  : quiverion::test::Uniform(random, -1, 1) * std::pow(10.0, static_cast<int>(random() % 40) - 20);
    }
  }
  for (std::int32_t& status : field.status.Values()) status = static_cast<std::int32_t>(random() % 7) - 2;
  return field;
}

std::string Exported(const ExportKind& kind, const VectorField& field) {
  MemoryFileSystem files;
  const auto failure =
      SaveResult(files, nullptr, "out", [&](ResultFile& file) { kind.write(file, field, PlaceInSeries(1, 0.5)); });
  EXPECT_FALSE(failure) << failure->formatMessage.value_or(failure->error.Description());
  return files.files["out"];
}

// The order in which an import has columns and rows.
VectorField Sorted(const VectorField& field) {
  VectorField sorted = field;
  const bool fromRight = field.posX.front() > field.posX.back(), fromBelow = field.posY.front() < field.posY.back();
  const auto column = [&](std::int32_t i) { return fromRight ? field.columnCount + 1 - i : i; };
  const auto row = [&](std::int32_t j) { return fromBelow ? field.rowCount + 1 - j : j; };
  if (fromRight) std::ranges::reverse(sorted.posX);
  if (fromBelow) std::ranges::reverse(sorted.posY);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      sorted.velX(i, j) = field.velX(column(i), row(j));
      sorted.velY(i, j) = field.velY(column(i), row(j));
      sorted.status(i, j) = field.status(column(i), row(j));
    }
  }
  return sorted;
}

TEST(Exports, ComeBackWithTheSameBits) {
  std::uint64_t seed = 0;
  for (const auto& [columns, rows] : {std::pair{13, 9}, {1, 1}, {300, 2}, {1, 7}, {6, 1}, {33, 65}}) {
    for (const auto& [turnX, turnY] : {std::pair{false, false}, {true, false}, {false, true}}) {
      VectorField field = FieldOf(columns, rows, ++seed);
      if (turnX) std::ranges::reverse(field.posX);
      if (turnY) std::ranges::reverse(field.posY);
      const VectorField expected = Sorted(field);
      for (const ExportKind& kind : ExportKinds()) {
        SCOPED_TRACE(std::string(kind.name) + " " + std::to_string(columns) + " x " + std::to_string(rows));
        const ForeignFile back = ReadBytes(Exported(kind, field));
        const VectorField& read = back.fields.front().field;
        EXPECT_TRUE(SameItem(read.posX, expected.posX) && SameItem(read.posY, expected.posY));
        EXPECT_TRUE(SameItem(read.velX, expected.velX) && SameItem(read.velY, expected.velY));
        EXPECT_TRUE(SameItem(read.status, expected.status));
        EXPECT_FALSE(back.report.lengthIsAssumed || back.report.velocityIsAssumed);
        EXPECT_EQ(back.fields.front().time.has_value(), !kind.seriesExtension.empty());
      }
    }
  }
}

TEST(Exports, OfASeriesComeBackOneByOneWithTheirTimes) {
  const std::size_t count = 3;
  for (const bool netCdf : {true, false}) {
    MemoryFileSystem files;
    SaveResult(files, nullptr, "out", [&](ResultFile& file) {
      for (std::size_t k = 1; k <= count; ++k) {
        const VectorField field = FieldOf(5, 3, k);
        const SeriesPlace place = PlaceInSeries(k, 0.25);
        if (netCdf && k == 1) WriteNetCdfHeader(file, field, count, place, "a.vas, b.vas, c.vas");
        if (!netCdf && k == 1) WriteTecplotHeader(file);
        netCdf ? WriteNetCdfRecord(file, field, place) : WriteTecplotZone(file, field, place);
      }
    });
    const ForeignFile back = ReadForeignFile(files, "out", {});
    ASSERT_EQ(back.fields.size(), count);
    for (std::size_t k = 1; k <= count; ++k) {
      const VectorField expected = FieldOf(5, 3, k);
      EXPECT_EQ(back.fields[k - 1].time, 0.25 * static_cast<double>(k - 1));
      EXPECT_TRUE(SameItem(back.fields[k - 1].field.velX, expected.velX));
      EXPECT_TRUE(SameItem(back.fields[k - 1].field.status, expected.status));
    }
  }
}

TEST(Exports, ListedForParaViewComeBackWithTheTimesOfTheList) {
  MemoryFileSystem files;
  const auto write = [&](const std::string& path, auto action) {
    EXPECT_FALSE(SaveResult(files, nullptr, path, action));
  };
  for (const std::size_t k : {1, 2}) {
    write("/aus/a&b " + std::to_string(k) + ".vti", [&](ResultFile& file) { WriteVtk(file, FieldOf(4, 3, k), {}); });
  }
  const std::vector<std::string> names = {"a&b 1.vti", "a&b 2.vti"};
  write("/aus/s.pvd", [&](ResultFile& file) { WriteParaViewIndex(file, names, 0.125); });
  const ForeignFile back = ReadForeignFile(files, "/aus/s.pvd", {});
  ASSERT_EQ(back.fields.size(), 2u);
  EXPECT_EQ(back.fields[1].time, 0.125);
  EXPECT_TRUE(SameItem(back.fields[1].field.velX, FieldOf(4, 3, 2).velX));
  files.files.erase("/aus/a&b 2.vti");
  EXPECT_TRUE(Attempt([&] { ReadForeignFile(files, "/aus/s.pvd", {}); }));
}

}  // namespace
}  // namespace quiverion::exchange::test
