#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "field/load_original_file.h"
#include "field/vas_file.h"
#include "generator/sample_files.h"
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
inline std::string LoadRefused(const std::string& path, const std::string& lines) {
  return Loading(path) + "!!! FEHLER !!!\r\n" + lines +
         "\r\n    Die Bearbeitung der aktuellen Datei wird abgebrochen!\r\n";
}

inline std::string ErrorTextOf(int number) {
  return "    " + ErrorText(SystemError(static_cast<ErrorNumber>(number)));
}
inline std::string ReadFailed(const std::string& path, int number) {
  return LoadRefused(
      path, "    Während des Einlesens dieser Datei ist folgender Fehler aufgetreten:\r\n" + ErrorTextOf(number));
}

inline samples::SampleField Sample(int columns, int rows) {
  return samples::MakeSampleField({.columns = columns, .rows = rows, .maskedBody = false});
}

/// Loads and saves in a file system in memory and returns what was logged. A load sees only its own flags.
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
