#pragma once

#include <gtest/gtest.h>

#include <string>

#include "generator/sample_files.h"
#include "support/bytes.h"
#include "support/program.h"

namespace quiverion::cli {

// Saves every file as VAS with the postfix "_s".
inline const std::string kSaveMacro = test::Bytes().I32(1).I32(10001).Text("").Text("_s");

inline samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 5, .rows = 4});
}

class ProgramRun : public testing::Test {
 protected:
  ProgramRun() {
    place.Write("s.mak", kSaveMacro);
    place.Write("serie/b.vas", samples::VasBytes(Sample(0)));
  }

  // Runs over one file of that name, in a temporary directory.
  void TakesFile(const std::string& name) const {
    place.Write("Reihe ä/" + name + ".vas", samples::VasBytes(Sample(0)));
    EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "Reihe ä/" + name + ".vas"}).code, 0) << name;
    EXPECT_EQ(place.Read("Reihe ä/" + name + "_s.vas"), place.Read("Reihe ä/" + name + ".vas")) << name;
  }

  Workplace place;
};

// Runs that take long enough to be stopped.
class ProgramSignals : public ProgramRun {
 protected:
  ProgramSignals() {
    for (int k = 10; k < 50; ++k) place.Write("viele/" + std::to_string(k) + ".vas", samples::VasBytes(Sample(k)));
  }
};

}  // namespace quiverion::cli
