#include "field/buffer_commands.h"

#include <utility>

#include "field/buffer_commands_plain.h"
#include "field/dat_file.h"
#include "field/frames.h"
#include "field/new_vectors.h"
#include "field/vas_file.h"
#include "field/vec_file.h"
#include "platform/bit_select.h"
#include "platform/float_errors.h"
#include "platform/multi_target.h"
#include "platform/paths.h"

namespace quiverion {
namespace {

constexpr std::string_view kNotADatFile = "    Ungültiges Dateiformat!";
constexpr std::string_view kBufferRowsNotDivisibleBy2 =
    "     Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 2 teilbar (für 2 frames)!";

// Reads into a field of its own, so that the buffer stays empty where the file fails.
template <class Read>
void LoadWith(Context& context, const std::string& path, Read read) {
  BufferField& buffer = context.buffer;
  VectorField loaded;
  // The arrays keep their memory: the next buffer of a series nearly always has the same size.
  std::swap(loaded.velX, buffer.bufferVelX);
  std::swap(loaded.velY, buffer.bufferVelY);
  std::swap(loaded.status, buffer.bufferStatus);
  RunLoadFrame(context, path, [&](InputFile& file) {
    read(loaded, file);
    buffer.bufferColumnCount = loaded.columnCount;
    buffer.bufferRowCount = loaded.rowCount;
    std::swap(loaded.velX, buffer.bufferVelX);
    std::swap(loaded.velY, buffer.bufferVelY);
    std::swap(loaded.status, buffer.bufferStatus);
  });
}

bool HasSizeOfField(Context& context) {
  const VectorField& field = context.field;
  const BufferField& buffer = context.buffer;
  if (buffer.bufferColumnCount == field.columnCount && buffer.bufferRowCount == field.rowCount) return true;
  LogLines(context.log, {kErrorMark, "    Fehler: Die Anzahl der Vektoren stimmt nicht überein!"});
  context.abortCurrentFile = true;
  return false;
}

// The arrays of field and buffer, in the order of the memory.
struct CombineInput {
  std::size_t count;
  const double *velX, *velY, *bufferVelX, *bufferVelY;
  const std::int32_t *status, *bufferStatus;
};

template <class Operation>
QUIVERION_ALWAYS_INLINE std::int64_t CombinePoints(const CombineInput& input, double* __restrict velX,
                                                   double* __restrict velY, std::int32_t* __restrict status,
                                                   Operation operation) {
  const CombineInput in = input;  // a copy cannot alias the targets
  std::int64_t lost = 0;
  for (std::size_t p = 0; p < in.count; ++p) {
    const std::int32_t s = in.status[p], b = in.bufferStatus[p];
    const double x = in.velX[p], y = in.velY[p];
    const Mask both = MaskOf((s > 0) & (b > 0));
    velX[p] = Select(both, operation(x, in.bufferVelX[p]), x);
    velY[p] = Select(both, operation(y, in.bufferVelY[p]), y);
    status[p] = ((s > 0) & (b > 0)) ? 2 : -static_cast<std::int32_t>((s < 0) | (b < 0));
    lost += (s > 0) & (b <= 0);
  }
  return lost;
}

QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::FieldPlusBuffer operation) {
  return CombinePoints(in, velX, velY, status, operation);
}
QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::FieldMinusBuffer operation) {
  return CombinePoints(in, velX, velY, status, operation);
}
QUIVERION_MULTI_TARGET std::int64_t Combine(const CombineInput& in, double* velX, double* velY, std::int32_t* status,
                                            plain::BufferMinusField operation) {
  return CombinePoints(in, velX, velY, status, operation);
}

QUIVERION_MULTI_TARGET std::int64_t MaskPoints(const std::int32_t* bufferStatus, std::size_t count,
                                               std::int32_t* status) {
  std::int64_t lost = 0;
  for (std::size_t p = 0; p < count; ++p) {
    lost += (status[p] > 0) & (bufferStatus[p] < 0);
    status[p] = bufferStatus[p] < 0 ? -1 : status[p];
  }
  return lost;
}

// The fast kernel works on scratch memory. Where it meets an arithmetic error the plain loops run in place: they stop
// at the exact point, if there is one.
template <class Operation>
void CombineWithBuffer(VectorField& field, const BufferField& buffer, Operation operation) {
  const auto data = [](auto& grid) { return grid.Values().data(); };
  const CombineInput input{field.status.Values().size(), data(field.velX),        data(field.velY),
                           data(buffer.bufferVelX),      data(buffer.bufferVelY), data(field.status),
                           data(buffer.bufferStatus)};
  NewVectors result(field);
  const auto combine = [&] {
    result.gained = -Combine(input, data(result.velX), data(result.velY), data(result.status), operation);
  };
  if (RaisesFloatError(combine)) {
    plain::CombineWithBuffer<CheckedReal>(field, buffer, operation);
  } else {
    result.SwapInto(field);
  }
}

template <class Operation>
void RunCombination(Context& context, std::string_view announcement, Operation operation) {
  context.log.WriteLogLine(announcement);
  if (!HasSizeOfField(context)) return;
  CombineWithBuffer(context.field, context.buffer, operation);
  LogLines(context.log, {"fertig"});
}

}  // namespace

void CopyFieldToBuffer(Context& context) {
  context.log.WriteLogLine("Vektorfeld in Buffer kopieren... ");
  const VectorField& field = context.field;
  BufferField& buffer = context.buffer;
  buffer.bufferColumnCount = buffer.bufferRowCount = 0;  // until all is there
  buffer.bufferFileName = field.filePath;
  buffer.bufferVelX = field.velX;
  buffer.bufferVelY = field.velY;
  buffer.bufferStatus = field.status;
  buffer.bufferColumnCount = field.columnCount;
  buffer.bufferRowCount = field.rowCount;
  LogLines(context.log, {"fertig"});
}

void LoadFileIntoBuffer(Context& context, const std::string& path) {
  context.log.WriteLogLine("Datei '" + path + "' in Buffer einlesen... ");
  BufferField& buffer = context.buffer;
  if (path == buffer.bufferFileName) {
    LogLines(context.log, {"befindet sich bereits im Buffer -> fertig"});
    return;
  }
  buffer.bufferFileName.clear();
  buffer.bufferColumnCount = buffer.bufferRowCount = 0;
  const std::string extension = ExtensionOf(path);
  if (extension == "DAT") {
    LoadWith(context, path, [](VectorField& field, InputFile& file) { ReadDat(field, file, kNotADatFile); });
  } else if (extension == "VAS") {
    LoadWith(context, path, ReadVasGrid);
  } else if (extension == "VEC") {
    LoadWith(context, path,
             [&](VectorField& field, InputFile& file) { ReadVec(context, field, file, kBufferRowsNotDivisibleBy2); });
  } else {
    FailLoad(context, {"    Unbekanntes Format!"});
  }
}

void UseBufferAsMask(Context& context) {
  context.log.WriteLogLine("Buffer als Maske für Vektorfeld verwenden... ");
  if (!HasSizeOfField(context)) return;
  VectorField& field = context.field;
  const auto status = field.status.Values();
  ChangeValidCount(field, -MaskPoints(context.buffer.bufferStatus.Values().data(), status.size(), status.data()));
  LogLines(context.log, {"fertig"});
}

void AddBufferToField(Context& context) {
  RunCombination(context, "Buffer zu Vektorfeld addieren... ", plain::FieldPlusBuffer{});
}

void SubtractBufferFromField(Context& context) {
  RunCombination(context, "Buffer vom Vektorfeld subtrahieren... ", plain::FieldMinusBuffer{});
}

void SubtractFieldFromBuffer(Context& context) {
  RunCombination(context, "Vektorfeld vom Buffer subtrahieren... ", plain::BufferMinusField{});
}

}  // namespace quiverion
