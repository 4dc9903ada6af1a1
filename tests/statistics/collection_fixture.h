#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "statistics/collect.h"
#include "support/bytes.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {

/// Collections in memory.
class CollectionTest : public testing::Test {
 protected:
  /// Appends a field to C.col and gives the log. The flags are those of this append.
  std::string Collect(const VectorField& field) {
    context.runHadError = context.userAbortRequested = false;
    context.field = field;
    CollectForStatistics(context, "C.col");
    EXPECT_FALSE(context.abortCurrentFile);
    EXPECT_EQ(program.files.openWrittenFiles, 0) << "the file is closed";
    return program.TakeLog();
  }

  /// `count` fields of 3 x 2 vectors; field k has the path "<k>" and k at every vector as velocity.
  void CollectNumbered(int count) {
    program.files.files.erase("C.col");
    for (int k = 1; k <= count; ++k)
      EXPECT_TRUE(Collect(NumberedField(k)).ends_with(": " + std::to_string(k) + "\r\n"));
  }
  static VectorField NumberedField(int k) {
    VectorField field = MakeField(3, 2);
    field.filePath = std::to_string(k);
    SetVelocities(
        field, [k](double, double) { return k; }, [k](double, double) { return -k; });
    return field;
  }

  /// The bytes of C.col; an empty file where there was none.
  std::string& Content() { return program.files.files["C.col"]; }

  /// The file with an int32 changed.
  static std::string With(std::string bytes, std::size_t at, std::int32_t value) {
    return bytes.replace(at, 4, Bytes().I32(value).Get());
  }

  /// Collections that no reader takes, with the number of the read error; 0: no collection at all. `good` has 3 x 2
  /// vectors in several fields.
  static std::vector<std::pair<std::string, int>> Damaged(const std::string& good) {
    const auto sized = [&good](std::int32_t columns, std::int32_t rows) {
      return With(With(good, kColumnsAt, columns), kRowsAt, rows);
    };
    return {{"", 0},
            {"quiverion" + good.substr(9), 0},
            {good.substr(0, 30), 62},
            {good.substr(0, kHeader - 1), 62},
            {good.substr(0, good.size() - 1), 62},
            {With(good, kCountAt, 2147483647), 62},
            {With(good, kCountAt, -1), 5},
            {sized(0, 2), 9},
            {sized(3, -2), 9},
            {sized(2147483647, 2147483647), 62},
            {sized(575292019, 1988527723), 62}};  // a record of 147 bytes modulo 2^64
  }

  static constexpr std::size_t kCountAt = 31, kColumnsAt = 35, kRowsAt = 39, kHeader = 75;
  static constexpr std::size_t kRecord = 225;  // of 3 x 2 vectors

  TestSession program;
  Context& context = program.context;
};

}  // namespace quiverion::test
