#include "field/formats/binary_reader.h"

#include <gtest/gtest.h>

#include "support/error_of.h"
#include "support/memory_file_system.h"

namespace quiverion::test {
namespace {

// Files shorter and longer than the reader's buffer: every way to the same place reads the same number.
TEST(BinaryReader, MovesAnywhereInItsFile) {
  for (const std::uint64_t numbers : {3, 1024, 5000}) {
    MemoryFileSystem files;
    std::string& bytes = files.files["a"];
    for (std::uint64_t k = 0; k < numbers; ++k) bytes.append(reinterpret_cast<const char*>(&k), sizeof k);
    const auto file = files.OpenForReading("a");
    BinaryReader reader(*file);
    std::uint64_t read = 0;
    for (const std::uint64_t place : {std::uint64_t{1}, numbers - 1, std::uint64_t{0}, numbers / 2, numbers / 2 + 1}) {
      if (place * 8 > reader.Position() && place != numbers - 1) {
        reader.Skip(place * 8 - reader.Position());
      } else {
        reader.MoveTo(place * 8);
      }
      EXPECT_EQ(reader.Remaining(), (numbers - place) * 8);
      reader.Bytes(&read, sizeof read);
      EXPECT_EQ(read, place);
      EXPECT_EQ(reader.Position(), place * 8 + 8);
    }
    reader.MoveTo(8 * numbers);
    EXPECT_EQ(reader.Remaining(), 0u);
    EXPECT_EQ(ErrorOf([&] { reader.MoveTo(8 * numbers + 1); }), 62);
    EXPECT_EQ(ErrorOf([&] { reader.Skip(1); }), 62);
  }
}

}  // namespace
}  // namespace quiverion::test
