#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <memory>
#include <string>

#include "field/formats/field_readers.h"
#include "field/frames.h"
#include "platform/numeric/multi_target.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr std::size_t kHeaderSize = 256;
constexpr std::int16_t kFloatImage = 20;

constexpr std::string_view RowsNotDivisibleBy2(LoadTarget target) {
  return target == LoadTarget::field
             ? "    Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 2 teilbar (für 2 frames)!"
             : "     Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 2 teilbar (für 2 frames)!";
}

constexpr std::string_view kWrongSubType =
    "    Ungültiges VEC-Format ('image sub type' ungültig)!\r\n"
    "    Es können nur folgende Formate gelesen werden:\r\n"
    "       1: extended (PIV) vector format\r\n"
    "       2: simple vector format\r\n"
    "       3: extended vector format with peak ratio";

// The bytes of the header; offsets are those of the format.
class VecHeader {
 public:
  explicit VecHeader(InputFile& file) : size_(file.Read(bytes_, kHeaderSize)) {}

  std::int16_t Int16(std::size_t offset) const { return At<std::int16_t>(offset); }
  double Float(std::size_t offset) const { return static_cast<double>(At<float>(offset)); }

  // Characters up to the first zero byte.
  std::string Text(std::size_t offset, std::size_t size) const {
    Require(offset + size);
    const std::string_view all(bytes_ + offset, size);
    return Utf8FromWindows1252(all.substr(0, all.find('\0')));
  }

  void Require(std::size_t size) const {
    if (size_ < size) throw SystemError(ErrorNumber::endOfFile);
  }

 private:
  template <class T>
  T At(std::size_t offset) const {
    Require(offset + sizeof(T));
    T value;
    std::memcpy(&value, bytes_ + offset, sizeof value);
    return value;
  }

  char bytes_[kHeaderSize];
  std::size_t size_;
};

// Checks the sub type; the rows of all frames together must be divisible by the number of frames it returns.
std::int16_t FrameCount(std::int16_t subType, std::int16_t rows, LoadTarget target) {
  const auto checked = [rows](std::int16_t frames, std::string_view message) {
    if (rows % frames != 0) throw FormatError(std::string(message));
    return frames;
  };
  switch (subType) {
    case 1:
      return checked(9, "    Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 9 teilbar (für 9 frames)!");
    case 2:
      return checked(2, RowsNotDivisibleBy2(target));
    case 3:
      return checked(10, "    Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 10 teilbar (für 10 frames)!");
    default:
      throw FormatError(std::string(kWrongSubType));
  }
}

struct VelocityScale {
  double u;
  double v;
};

// Positions, texts and geometry from the header. Returns the factors from displacement to velocity.
VelocityScale ApplyHeader(VectorField& field, const VecHeader& header) {
  header.Require(kHeaderSize);
  const std::int16_t spacing = header.Int16(20);
  const double fx = header.Float(54);
  const double fy = header.Float(86);
  const double fv = header.Float(118);
  const double dx = fx * spacing;
  const double dy = fy * spacing;
  const double x0 = header.Float(58) + dx / 2;
  const double y0 = header.Float(90) + dy / 2;
  field.gridStepX = field.gridStepY = spacing;
  for (std::size_t i = 0; i < field.posX.size(); ++i) field.posX[i] = static_cast<double>(i) * dx + x0;
  for (std::size_t j = 0; j < field.posY.size(); ++j) field.posY[j] = static_cast<double>(j) * dy + y0;
  field.pixelScale = fx == 0 ? 0 : RoundToInt32(1 / fx);
  field.pulseDelay = fv != 0 && spacing != 0 ? RoundToInt32(dx / spacing / fv * 1000) : 0;

  field.headerLines.fill("No information (DaVis)");
  field.headerLines[0] = header.Text(34, 9);
  if (const std::string time = header.Text(43, 9); !time.empty()) field.headerLines[0] += " " + time;
  for (const std::size_t offset : {148u, 188u}) {
    if (const std::string comment = header.Text(offset, 40); !comment.empty()) field.infoText += comment + "\r\n";
  }
  return {fv, dx == 0 ? fv : dy * fv / dx};
}

void WarnOfStatus(Context& context, std::int32_t status) {
  constexpr std::string_view text = "    Ungültiger Status eines Vektors:  frame ";
  char line[text.size() + 16];
  char* end = std::copy(text.begin(), text.end(), line);
  end = std::to_chars(end, line + sizeof line, status).ptr;
  // May be called for every vector of a file, so it writes the two pieces of LogWarning without allocating.
  *end++ = '\r';
  *end++ = '\n';
  context.log.WriteLogLine("!!! WARNUNG !!!\r\n");
  context.log.WriteLogLine({line, end});
  context.runHadError = true;
}

// True if every value is 0 to 4.5 (and not -0): as integers, floats of one sign have the same order, and the loop needs
// no branch.
QUIVERION_MULTI_TARGET bool AreUsualStatuses(const float* values, std::size_t count) {
  constexpr auto limit = std::bit_cast<std::int32_t>(4.5f);
  std::int32_t signs = 0;
  for (std::size_t p = 0; p < count; ++p) {
    const auto bits = std::bit_cast<std::int32_t>(values[p]);
    signs |= bits | (limit - (bits & 0x7FFFFFFF));
  }
  return signs >= 0;
}

QUIVERION_MULTI_TARGET void RoundUsualStatuses(const float* values, std::size_t count, std::int32_t* status) {
  for (std::size_t p = 0; p < count; ++p) {
    status[p] = static_cast<std::int32_t>((static_cast<double>(values[p]) + kNoFraction) - kNoFraction);
  }
}

// The statuses of the first frame, rounded; warns of each that is not 0 to 4. A frame without such values takes the
// fast path.
void ConvertStatus(Context& context, std::span<std::int32_t> status, const float* values) {
  if (AreUsualStatuses(values, status.size())) return RoundUsualStatuses(values, status.size(), status.data());
  for (std::size_t p = 0; p < status.size(); ++p) {
    status[p] = RoundToInt32(static_cast<double>(values[p]));
    if (status[p] < 0 || status[p] > 4) WarnOfStatus(context, status[p]);
  }
}

// `frames` are the nine frames of `count` values each. Only the displacement of the selected peak is read.
QUIVERION_MULTI_TARGET void ConvertExtended(const float* frames, std::size_t count, const std::int32_t* status,
                                            VelocityScale scale, double* velX, double* velY) {
  for (std::size_t p = 0; p < count; ++p) {
    const auto peak = static_cast<std::size_t>(status[p]);
    const bool chosen = peak >= 1 && peak <= 4;
    const float* const displacement = frames + (chosen ? (2 * peak - 1) * count : 0) + p;
    const double u = static_cast<double>(displacement[0]) * scale.u;
    const double v = static_cast<double>(displacement[count]) * scale.v;
    velX[p] = chosen ? u : 0.0;
    velY[p] = chosen ? v : 0.0;
  }
}

// One pass, so that each value is read once. All operands are plain pointers, so that the compiler can process several
// vectors at once.
QUIVERION_MULTI_TARGET void ConvertSimple(const float* frames, std::size_t count, VelocityScale scale, double* velX,
                                          double* velY, std::int32_t* status) {
  for (std::size_t p = 0; p < count; ++p) {
    const double x = static_cast<double>(frames[p]) * scale.u;
    const double y = static_cast<double>(frames[count + p]) * scale.v;
    velX[p] = x;
    velY[p] = y;
    status[p] = (x != 0) | (y != 0);
  }
}

QUIVERION_MULTI_TARGET std::int32_t CountValid(const std::int32_t* status, std::size_t count) {
  std::int32_t valid = 0;
  for (std::size_t p = 0; p < count; ++p) valid += status[p] > 0;
  return valid;
}

// `frames` are the frames of the file one after the other, each of as many values as the field has vectors.
void ConvertFrames(Context& context, VectorField& field, std::int16_t subType, const float* frames,
                   VelocityScale scale) {
  const std::span<std::int32_t> status = field.status.Values();
  double* const velX = field.velX.Values().data();
  double* const velY = field.velY.Values().data();
  if (subType == 2) {
    ConvertSimple(frames, status.size(), scale, velX, velY, status.data());
  } else {
    ConvertStatus(context, status, frames);
    ConvertExtended(frames, status.size(), status.data(), scale, velX, velY);
  }
  field.validVectorCount = CountValid(status.data(), status.size());
}

}  // namespace

void ReadVec(Context& context, VectorField& field, InputFile& file, LoadTarget target) {
  const VecHeader header(file);
  if (header.Int16(0) != kFloatImage) throw FormatError("    Ungültiges VEC-Format: ImageType nicht FLOAT!");
  const std::int16_t rows = header.Int16(10);
  const std::int16_t columns = header.Int16(12);
  const std::int16_t subType = header.Int16(14);
  const std::int16_t frameCount = FrameCount(subType, rows, target);
  if (rows < 1 || columns < 1) throw SystemError(ErrorNumber::indexOutOfRange);
  header.Require(kHeaderSize);

  const auto framesRead = static_cast<std::size_t>(std::min<std::int16_t>(frameCount, 9));  // without the peak ratio
  const std::size_t values =
      framesRead * static_cast<std::size_t>(rows / frameCount) * static_cast<std::size_t>(columns);
  if (file.Size() < kHeaderSize + values * sizeof(float)) throw SystemError(ErrorNumber::endOfFile);
  CreateArraysForReading(field, columns, rows / frameCount);
  const VelocityScale scale = ApplyHeader(field, header);

  const std::unique_ptr<float[]> frames(new float[values]);  // not zeroed: overwritten at once
  if (file.Read(frames.get(), values * sizeof(float)) < values * sizeof(float)) {
    throw SystemError(ErrorNumber::endOfFile);
  }
  ConvertFrames(context, field, subType, frames.get(), scale);
}

}  // namespace quiverion
