// Pictures without a window.
#include <gtest/gtest.h>

#include <filesystem>

#include "generator/foreign_files.h"
#include "generator/sample_files.h"
#include "macro/macro_file.h"
#include "messages/silent_user_interface.h"
#include "support/program.h"
#include "viewer/arguments.h"

namespace quiverion::test {
namespace {

class PictureCommand : public testing::Test {
 protected:
  PictureCommand() {
    for (int k = 0; k < 2; ++k) {
      place.Write("f" + std::to_string(k) + ".vas",
                  samples::VasBytes(samples::MakeSampleField({.index = k, .columns = 12, .rows = 9})));
    }
  }

  // Runs the program with arguments, "@" before a name being the workplace.
  int Run(std::vector<std::string> arguments) {
    for (std::string& argument : arguments) {
      if (argument.starts_with("@")) argument = place.At(argument.substr(1));
    }
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const ViewerArguments read = ReadArguments(arguments);
    const int code = read.exitCode ? *read.exitCode : read.picture ? WritePictures(*read.picture) : -1;
    err = testing::internal::GetCapturedStderr();
    out = testing::internal::GetCapturedStdout();
    return code;
  }

  void WriteMacro(const std::string& name, const std::vector<MacroEvent>& events) {
    const auto files = MakeSystemFileSystem();
    SilentUserInterface ui;
    RunLog log;
    SystemClock clock;
    Session session(*files, ui, log, clock);
    session.macro = events;
    EXPECT_TRUE(SaveMacroFile(session, place.At(name)));
  }

  cli::Workplace place;
  std::string out, err;
};

TEST_F(PictureCommand, AnswersWrongCallsWithTwoAndWritesNothing) {
  const auto before = place.Files();
  const std::vector<std::string> calls[] = {{"--picture", "@a.gif", "@f0.vas"},
                                            {"--picture", "@a.png"},
                                            {"--picture", "@a.png", "--size", "0x5", "@f0.vas"},
                                            {"--picture", "@a.png", "--size", "20000x20000", "@f0.vas"},
                                            {"--picture", "@a.png", "--size", "100", "@f0.vas"},
                                            {"--picture", "@a.png", "--background", "blue", "@f0.vas"},
                                            {"--picture", "@a.png", "--limits", "3:1", "@f0.vas"},
                                            {"--picture", "@a.png", "--limits", "1:nan", "@f0.vas"},
                                            {"--picture", "@a.png", "--reference", "0", "@f0.vas"},
                                            {"--picture", "@a.png", "--step", "1", "@f0.vas"},
                                            {"--size", "100x100", "@f0.vas"},
                                            {"--picture", "@bilder", "@f0.vas", "@sub/f0.dat"},
                                            {"--farbe"}};
  for (const auto& call : calls) {
    EXPECT_EQ(Run(call), 2) << call.back() << err;
    EXPECT_FALSE(err.empty());
  }
  EXPECT_EQ(place.Files(), before);
  EXPECT_EQ(Run({"--help"}), 0);
  EXPECT_NE(out.find("--background GRÖSSE nur mit: --picture"), std::string::npos) << out;
  EXPECT_EQ(Run({"@f0.vas"}), -1) << "the window";
}

TEST_F(PictureCommand, TheSameCallGivesTheSameBytes) {
  for (const char* const name : {"@a.png", "@a.svg", "@a.pdf"}) {
    const std::string file = std::string(name).substr(1);
    EXPECT_EQ(Run({"--picture", name, "--background", "vorticity", "--size", "400x300", "@f0.vas"}), 0) << err;
    const std::string first = place.Read(file);
    EXPECT_EQ(Run({"--picture", name, "--background", "vorticity", "--size", "400x300", "@f0.vas"}), 0) << err;
    EXPECT_EQ(place.Read(file), first);
    EXPECT_GT(first.size(), 3000u);
  }
}

TEST_F(PictureCommand, OneScaleForASeries) {
  place.Write("kaputt.vas", "Quiverion");
  EXPECT_EQ(Run({"--picture", "@bilder.svg", "--background", "speed", "@f0.vas", "@kaputt.vas", "@f1.vas"}), 1);
  EXPECT_NE(err.find("!!! FEHLER !!!"), std::string::npos) << err;
  EXPECT_FALSE(place.Has("bilder.svg/kaputt.svg"));
  const std::string f0 = place.Read("bilder.svg/f0.svg"), f1 = place.Read("bilder.svg/f1.svg");
  const auto labelsOfBar = [&](const std::string& svg) {
    const std::size_t end = svg.find("|v| [m/s]");
    return svg.substr(end - 550, 550);
  };
  EXPECT_EQ(labelsOfBar(f0), labelsOfBar(f1));
  EXPECT_EQ(Run({"--picture", "@alle", "--size", "200x150", place.Path()}), 1) << "a directory stands for its fields";
  EXPECT_TRUE(place.Has("alle/f0.png") && place.Has("alle/f1.png"));
}

TEST_F(PictureCommand, DrawsAFileOfAnotherProgramLikeItsField) {
  const samples::SampleField field = samples::MakeSampleField({.columns = 12, .rows = 9});
  place.Write("fremd.csv", samples::ForeignSampleOf("table.csv").bytes(field));
  place.Write("kaputt.csv", "x,y,u,v\n1,2,3\n");
  EXPECT_EQ(Run({"--picture", "@fremd.svg", "--background", "u", "@fremd.csv"}), 0) << err;
  EXPECT_NE(place.Read("fremd.svg").find("12 x 9 Vektoren"), std::string::npos);
  EXPECT_EQ(Run({"--picture", "@kaputt.svg", "@kaputt.csv"}), 1);
  EXPECT_NE(err.find("Zeile 2: zu wenige Zahlen"), std::string::npos) << err;
}

TEST_F(PictureCommand, ShowsTheFieldAfterAMacroAndWritesNothingElse) {
  MacroEvent add(40201), save(10001);
  add.Set("XComp", 100.0);
  add.Set("YComp", 0.0);
  save.Set("Prefix", std::string());
  save.Set("Postfix", std::string());
  WriteMacro("m.mak", {add, save});
  const auto before = place.Files();
  const std::string original = place.Read("f0.vas");
  std::string pictures[3];
  for (const char* const step : {"0", "1", "2"}) {
    EXPECT_EQ(Run({"--picture", "@bild.svg", "--macro", "@m.mak", "--step", step, "@f0.vas"}), 0) << err;
    pictures[*step - '0'] = place.Read("bild.svg");
    std::filesystem::remove(place.At("bild.svg"));
  }
  EXPECT_EQ(Run({"--picture", "@bild.svg", "--macro", "@m.mak", "@f0.vas"}), 0) << err;
  EXPECT_EQ(place.Read("bild.svg"), pictures[2]);
  EXPECT_NE(pictures[0], pictures[1]);
  EXPECT_EQ(pictures[1], pictures[2]) << "a save shows nothing new";
  std::filesystem::remove(place.At("bild.svg"));
  EXPECT_EQ(Run({"--picture", "@bild.svg", "--macro", "@m.mak", "--step", "3", "@f0.vas"}), 2);
  EXPECT_EQ(Run({"--picture", "@bild.svg", "--macro", "@fehlt.mak", "@f0.vas"}), 1);
  EXPECT_EQ(place.Read("f0.vas"), original);
  EXPECT_EQ(place.Files(), before);
}

}  // namespace
}  // namespace quiverion::test
