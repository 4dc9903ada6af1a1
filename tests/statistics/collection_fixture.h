#pragma once

#include <gtest/gtest.h>

#include <string>

#include "statistics/collect.h"
#include "support/collection_bytes.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {

/// Collections in memory.
class CollectionTest : public testing::Test {
 protected:
  /// Appends a field to C.col and returns the log. The flags are those of this append.
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

  /// The bytes of C.col; an empty file if there was none.
  std::string& Content() { return program.files.files["C.col"]; }

  TestSession program;
  Context& context = program.context;
};

}  // namespace quiverion::test
