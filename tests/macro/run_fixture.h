#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "generator/sample_files.h"
#include "macro/pre_run_checks.h"
#include "macro/run_driver.h"
#include "support/test_session.h"

namespace quiverion::test {

/// An event with the given values.
inline MacroEvent Event(std::int32_t eventId, std::initializer_list<std::pair<const char*, MacroValue>> values = {}) {
  MacroEvent event(eventId);
  for (const auto& [key, value] : values) event.Set(key, value);
  return event;
}

inline MacroEvent SaveEvent(const std::string& prefix, const std::string& postfix) {
  return Event(10001, {{"Prefix", prefix}, {"Postfix", postfix}});
}

inline samples::SampleField SmallSample(int index = 0) {
  return samples::MakeSampleField({.index = index, .columns = 4, .rows = 3});
}

/// A series in memory under /serie/.
class RunTest : public testing::Test {
 protected:
  void AddFile(const std::string& name, const std::string& content) {
    program.files.files["/serie/" + name] = content;
    Select(name);
  }
  void Select(const std::string& name) { session.selectedFiles.push_back(name); }

  /// Runs the macro with a stopped clock, so that there is no duration, and returns the log.
  std::string RunLogOf(const MacroEventList& macro) {
    session.macro = macro;
    RunMacro(session);
    EXPECT_FALSE(ui.running);
    EXPECT_EQ(program.files.openWrittenFiles, 0);
    return program.TakeLog();
  }

  RunTest() { session.inputDirectory = "/serie/"; }

  TestSession program;
  Session& session = program.session;
  ScriptedUi& ui = program.ui;
  std::map<std::string, std::string>& files = program.files.files;
};

}  // namespace quiverion::test
