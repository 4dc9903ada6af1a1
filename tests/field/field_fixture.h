#pragma once

#include <gtest/gtest.h>

#include <charconv>
#include <string>
#include <string_view>

#include "field/formats/load_original_file.h"
#include "field/formats/vas_file.h"
#include "generator/sample_files.h"
#include "support/approved.h"
#include "support/bytes.h"
#include "support/error_of.h"
#include "support/field_builder.h"
#include "support/field_compare.h"
#include "support/peak_memory.h"
#include "support/test_session.h"

namespace quiverion::test {

inline std::string Loading(const std::string& path) {
  return "Orginaldatei '" + path + "' einladen... ";
}
inline std::string Loaded(const std::string& path) {
  return Loading(path) + "fertig\r\n";
}
inline std::string ReadFailed(const std::string& path, int number) {
  return Loading(path) +
         "!!! FEHLER !!!\r\n    Während des Einlesens dieser Datei ist folgender Fehler aufgetreten:\r\n    " +
         ErrorText(SystemError(static_cast<ErrorNumber>(number))) +
         "\r\n    Die Bearbeitung der aktuellen Datei wird abgebrochen!\r\n";
}

inline samples::SampleField Sample(int columns, int rows) {
  return samples::MakeSampleField({.columns = columns, .rows = rows, .maskedBody = false});
}

/// Loads and saves in an in-memory file system and returns the log. The flags are reset before each load.
class FieldTest : public testing::Test {
 protected:
  std::string LoadExisting(const std::string& path) {
    context_.abortCurrentFile = context_.runHadError = context_.userAbortRequested = false;
    LoadOriginalFile(context_, path);
    const std::string log = program_.TakeLog();
    EXPECT_EQ(context_.abortCurrentFile, !log.ends_with("fertig\r\n")) << log;
    EXPECT_FALSE(context_.userAbortRequested);
    return log;
  }
  std::string Load(const std::string& path, const std::string& bytes) {
    files_.files[path] = bytes;
    return LoadExisting(path);
  }
  /// The log of a load, and what the field holds then: measures, the ends of the positions, every vector that is not 0.
  std::string Told(const std::string& path, const std::string& bytes) {
    std::string text = Load(path, bytes);
    if (context_.abortCurrentFile) return text + "\r\n";
    const auto tell = [&text](double value) {
      char digits[32];
      text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr) += ' ';
    };
    const VectorField& f = field_;
    for (const std::int32_t number :
         {f.imageWidth, f.imageHeight, f.windowWidth, f.windowHeight, f.gridStepX, f.gridStepY, f.firstPixelX,
          f.firstPixelY, f.pixelScale, f.pulseDelay, f.columnCount, f.rowCount, f.validVectorCount}) {
      tell(number);
    }
    for (const double position : {f.posX.front(), f.posX.back(), f.posY.front(), f.posY.back()}) tell(position);
    for (std::int32_t j = 1; j <= f.rowCount; ++j) {
      for (std::int32_t i = 1; i <= f.columnCount; ++i) {
        if (f.status(i, j) == 0 && f.velX(i, j) == 0 && f.velY(i, j) == 0) continue;
        text += "(" + std::to_string(i) + "," + std::to_string(j) + "): ";
        for (const double value : {f.velX(i, j), f.velY(i, j), static_cast<double>(f.status(i, j))}) tell(value);
      }
    }
    for (const std::string& line : f.headerLines) text += "|" + line;
    return text + "|" + f.infoText + (context_.runHadError ? "|warned\r\n\r\n" : "\r\n\r\n");
  }
  std::string Save(const std::string& path) {
    context_.abortCurrentFile = context_.runHadError = context_.userAbortRequested = false;
    SaveVas(context_, path);
    EXPECT_FALSE(context_.abortCurrentFile) << "a failed save must not stop the file";
    EXPECT_EQ(files_.openWrittenFiles, 0);
    return program_.TakeLog();
  }

  TestSession program_;
  Context& context_ = program_.context;
  VectorField& field_ = program_.context.field;
  MemoryFileSystem& files_ = program_.files;
};

}  // namespace quiverion::test
