#include "operations/commands/buffer_commands.h"

#include <algorithm>

#include "field/field_fixture.h"
#include "operations/kernels/buffer_combination_plain.h"
#include "support/kernel_compare.h"

namespace quiverion::test {
namespace {

constexpr const char* kSizesDiffer = "!!! FEHLER !!!\r\n    Fehler: Die Anzahl der Vektoren stimmt nicht überein!\r\n";

struct Command {
  void (*run)(Context&);
  void (*checked)(VectorField&, const BufferField&);
};

constexpr Command kCommands[] = {
    {AddBufferToField, [](auto& f, auto& b) { plain::CombineWithBuffer<CheckedReal>(f, b, plain::FieldPlusBuffer{}); }},
    {SubtractBufferFromField,
     [](auto& f, auto& b) { plain::CombineWithBuffer<CheckedReal>(f, b, plain::FieldMinusBuffer{}); }},
    {SubtractFieldFromBuffer,
     [](auto& f, auto& b) { plain::CombineWithBuffer<CheckedReal>(f, b, plain::BufferMinusField{}); }},
    {UseBufferAsMask, plain::MaskWithBuffer}};

class BufferCommands : public FieldTest {
 protected:
  // The buffer becomes a copy of `source`.
  void FillBuffer(VectorField source) {
    std::swap(field_, source);
    CopyFieldToBuffer(context_);
    std::swap(field_, source);
    program_.TakeLog();
  }

  std::string LoadBuffer(const std::string& path) {
    context_.abortCurrentFile = false;
    LoadFileIntoBuffer(context_, path);
    return program_.TakeLog();
  }
  std::string LoadBuffer(const std::string& path, const std::string& bytes) {
    files_.files[path] = bytes;
    return LoadBuffer(path);
  }

  BufferField& buffer_ = program_.context.buffer;
};

// The buffer contains the velocities of the field, some negated, and its statuses in reverse order.
TEST_F(BufferCommands, GiveTheBitsOfThePlainLoopsAndStopWhereTheyStop) {
  const auto fillBufferFor = [this](const VectorField& field) {
    VectorField source = field;
    for (std::size_t p = 0; p < source.status.Values().size(); ++p) {
      if (p % 3 != 0) source.velX.Values()[p] *= -1.0;
      if (p % 5 != 0) source.velY.Values()[p] *= -1.0;
    }
    std::ranges::reverse(source.status.Values());
    FillBuffer(source);
  };
  int stops = 0;
  for (const Command& command : kCommands) {
    stops += ExpectSameAsPlain([&](VectorField& field) { RunOn(context_, field, command.run); },
                               [&](VectorField& field) {
                                 fillBufferFor(field);
                                 command.checked(field, buffer_);
                               });
  }
  EXPECT_GT(stops, 100) << "the mixes must contain errors";
}

TEST_F(BufferCommands, CombineEveryPairOfStatuses) {
  struct Case {
    std::int32_t field, buffer, combined, masked;
    int lost, lostToMask;  // valid vectors
  };
  const Case cases[] = {{3, 4, 2, 3, 0, 0},    {1, 0, 0, 1, 1, 0},    {2, -5, -1, -1, 1, 1},
                        {0, 1, 0, 0, 0, 0},    {0, 0, 0, 0, 0, 0},    {0, -1, -1, -1, 0, 0},
                        {-1, 1, -1, -1, 0, 0}, {-7, 0, -1, -7, 0, 0}, {-7, -7, -1, -1, 0, 0}};
  const double results[] = {14, 6, -6, 10};  // of 10 and 4
  for (const Case& c : cases) {
    for (std::size_t k = 0; k < std::size(kCommands); ++k) {
      field_ = MakeField(1, 1);
      field_.velX(1, 1) = 4, field_.velY(1, 1) = -4, field_.status(1, 1) = c.buffer;
      FillBuffer(field_);
      field_.velX(1, 1) = 10, field_.velY(1, 1) = -10, field_.status(1, 1) = c.field;
      field_.validVectorCount = 50;
      kCommands[k].run(context_);
      const bool mask = k == 3;
      const double velocity = c.combined == 2 ? results[k] : 10;
      EXPECT_EQ(field_.status(1, 1), mask ? c.masked : c.combined) << c.field << " " << c.buffer;
      EXPECT_EQ(std::pair(field_.velX(1, 1), field_.velY(1, 1)), std::pair(velocity, -velocity));
      EXPECT_EQ(field_.validVectorCount, 50 - (mask ? c.lostToMask : c.lost)) << c.field << " " << c.buffer;
    }
  }
}

TEST_F(BufferCommands, RefuseABufferOfAnotherSize) {
  FillBuffer(MakeField(3, 2));
  for (const auto& [columns, rows] : {std::pair(2, 3), std::pair(3, 1), std::pair(6, 1)}) {
    for (const Command& command : kCommands) {
      field_ = RandomField(1, columns, rows, {.invalid = 500});
      const VectorField before = field_;
      context_.abortCurrentFile = false;
      command.run(context_);
      EXPECT_TRUE(program_.TakeLog().ends_with(std::string("... ") + kSizesDiffer));
      EXPECT_TRUE(context_.abortCurrentFile);
      EXPECT_EQ(FirstDifference(before, field_), "");
    }
  }
}

TEST_F(BufferCommands, LoadsTheGridThatTheOriginalFileHas) {
  const samples::SampleField sample = Sample(7, 5);
  const std::pair<std::string, std::string> cases[] = {{"in.vas", samples::VasBytes(sample)},
                                                       {"in.Dat", samples::DatBytes(sample)},
                                                       {"in.vec", samples::VecBytes(sample, 1)}};
  for (const auto& [path, bytes] : cases) {
    Load(path, bytes);
    const VectorField loaded = field_;
    EXPECT_EQ(LoadBuffer(path, bytes), "Datei '" + path + "' in Buffer einlesen... fertig\r\n");
    EXPECT_EQ(FirstDifference(loaded, field_), "") << "the current field stays";
    EXPECT_EQ(std::pair(buffer_.bufferColumnCount, buffer_.bufferRowCount), std::pair(7, 5));
    EXPECT_TRUE(SameItem(buffer_.bufferVelX, loaded.velX) && SameItem(buffer_.bufferVelY, loaded.velY) &&
                SameItem(buffer_.bufferStatus, loaded.status));
  }
}

TEST_F(BufferCommands, OnlyACopyIsKnownByItsPath) {
  const std::string image = samples::VasBytes(Sample(3, 2));
  Load("dir/in.vas", image);
  CopyFieldToBuffer(context_);
  EXPECT_EQ(program_.TakeLog(), "Vektorfeld in Buffer kopieren... fertig\r\n");
  EXPECT_EQ(LoadBuffer("dir/in.vas", "damaged"),
            "Datei 'dir/in.vas' in Buffer einlesen... befindet sich bereits im Buffer -> fertig\r\n");
  LoadBuffer("other.vas", image);
  LoadBuffer("other.vas", "damaged");
  EXPECT_TRUE(context_.abortCurrentFile) << "it has been read again";
}

TEST_F(BufferCommands, AFailedLoadEndsTheFileAndLeavesTheBufferEmpty) {
  samples::SampleField sample = Sample(3, 2);
  sample.offsetX = 4711;
  const std::string image = samples::VasBytes(sample), vec = samples::VecBytes(sample, 2);
  const std::size_t gridEnd = image.find(Bytes().F64(4711).Get()) - 4;
  const std::pair<std::string, std::string> cases[] = {{"a.dat", "Date and Time: 24.11.03\r\n"},
                                                       {"a.vec", std::string(vec).replace(10, 1, "\x03")},
                                                       {"a.vas", "quiverion" + image.substr(9)},
                                                       {"a.vas", image.substr(0, gridEnd - 1)},
                                                       {"a.txt", ""},
                                                       {"b.vas/vas", image},
                                                       {"gone.vas", ""}};
  std::string told;
  for (const auto& [path, bytes] : cases) {
    FillBuffer(MakeField(3, 2));
    buffer_.bufferFileName = "copied.vas";
    if (path != "gone.vas") files_.files[path] = bytes;
    told += LoadBuffer(path);
    EXPECT_TRUE(context_.abortCurrentFile);
    EXPECT_TRUE(buffer_.bufferFileName.empty() && buffer_.bufferColumnCount == 0 && buffer_.bufferRowCount == 0);
  }
  ExpectApproved("refused_buffers.txt", told);
  EXPECT_TRUE(LoadBuffer("a.vas", image.substr(0, gridEnd)).ends_with("fertig\r\n"))
      << "what follows the statuses is not read";
}

}  // namespace
}  // namespace quiverion::test
