#include "operations/commands/buffer_commands.h"

#include <utility>

#include "field/formats/field_readers.h"
#include "field/frames.h"
#include "operations/kernels/buffer_combination.h"
#include "platform/files/paths.h"

namespace quiverion {
namespace {

// Reads into a field of its own, so that the buffer stays empty if the file fails.
void LoadWith(FieldReader* read, Context& context, const std::string& path) {
  BufferField& buffer = context.buffer;
  VectorField loaded;
  // The arrays keep their memory: the next buffer of a series nearly always has the same size.
  std::swap(loaded.velX, buffer.bufferVelX);
  std::swap(loaded.velY, buffer.bufferVelY);
  std::swap(loaded.status, buffer.bufferStatus);
  RunLoadFrame(context, path, [&](InputFile& file) {
    read(context, loaded, file, LoadTarget::buffer);
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

using Combination = void(VectorField&, const BufferField&);

void Combine(Context& context, std::string_view announcement, Combination* combination) {
  context.log.WriteLogLine(announcement);
  if (!HasSizeOfField(context)) return;
  combination(context.field, context.buffer);
  LogLines(context.log, {kDoneText});
}

}  // namespace

void CopyFieldToBuffer(Context& context) {
  context.log.WriteLogLine("Vektorfeld in Buffer kopieren... ");
  const VectorField& field = context.field;
  BufferField& buffer = context.buffer;
  buffer.bufferColumnCount = buffer.bufferRowCount = 0;  // until everything has been copied
  buffer.bufferFileName = field.filePath;
  buffer.bufferVelX = field.velX;
  buffer.bufferVelY = field.velY;
  buffer.bufferStatus = field.status;
  buffer.bufferColumnCount = field.columnCount;
  buffer.bufferRowCount = field.rowCount;
  LogLines(context.log, {kDoneText});
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
  FieldReader* const read = ReaderOf(ExtensionOf(path));
  if (read == nullptr) return FailLoad(context, {"    Unbekanntes Format!"});
  LoadWith(read, context, path);
}

void UseBufferAsMask(Context& context) {
  Combine(context, "Buffer als Maske für Vektorfeld verwenden... ", MaskWithBuffer);
}

void AddBufferToField(Context& context) {
  Combine(context, "Buffer zu Vektorfeld addieren... ", AddBuffer);
}

void SubtractBufferFromField(Context& context) {
  Combine(context, "Buffer vom Vektorfeld subtrahieren... ", SubtractBuffer);
}

void SubtractFieldFromBuffer(Context& context) {
  Combine(context, "Vektorfeld vom Buffer subtrahieren... ", SubtractFromBuffer);
}

}  // namespace quiverion
