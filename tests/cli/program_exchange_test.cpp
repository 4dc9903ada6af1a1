// import, export and info over files of other programs, as a script sees them: the texts are in tests/approved.
#include <gtest/gtest.h>

#include <iterator>
#include <sstream>

#include "cli/program_run.h"
#include "generator/foreign_files.h"

namespace quiverion::cli {
namespace {

class ProgramExchange : public ProgramRun {
 protected:
  ProgramExchange() {
    const samples::SampleField sample = samples::MakeSampleField({.columns = 4, .rows = 3, .maskedBody = false});
    const auto bytes = [&](std::string_view name) { return samples::ForeignSampleOf(name).bytes(sample); };
    place.Write("fremd/a.txt", bytes("openpiv5.txt"));
    place.Write("fremd/b.vc7", bytes("vc7_3.vc7"));
    place.Write("zeiten.dat", "VARIABLES = x y u v\nZONE I=1 J=1\n0 0 1 1\nZONE I=1 J=1\n0 0 2 2\n");
    place.Write("fremd/zeiten.dat",
                "VARIABLES = x y u v\nZONE I=2 J=1 SOLUTIONTIME=0.5\n0 0 1 1\n1 0 1 1\nZONE I=2 J=1\n"
                "0 0 2 2\n1 0 0 0\n");
    place.Write("fremd/.versteckt", "x");
    place.Write("leer/.versteckt", "x");
    place.Write("kurz.txt", bytes("openpiv5.txt").substr(0, 100));
    place.Write("a.vec", bytes("insight.vec"));
    place.Write("hdf5.nc", "\x89HDF\r\n\x1A\n");
    place.Write("csv.vas", "x,y,u,v\n1,1,1,1\n");
    place.Write("reihe/x1.vas", samples::VasBytes(sample));
    place.Write("reihe/x2.vas", samples::VasBytes(samples::MakeSampleField({.index = 1, .columns = 4, .rows = 3})));
    samples::SampleField moved = sample;
    moved.firstPixelX += 1;
    place.Write("verschoben.vas", samples::VasBytes(moved));
    place.Write("groß.vas", samples::VasBytes(samples::MakeSampleField({.columns = 5, .rows = 3})));
    place.Write("kaputt.vas", "Quiverion");
  }

  // What a call says, and which files below "aus" are new. Words are separated by "|".
  std::string Says(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; std::getline(stream, word, '|');) words.push_back(word);
    const Outcome outcome = RunProgram(place, words);
    std::string text = "> " + line + "\n" + outcome.out + outcome.err + "= " + std::to_string(outcome.code) + "\n";
    for (const std::string& name : place.Files()) {
      if (name.starts_with("aus")) text += "  " + name + " " + std::to_string(place.Read(name).size()) + "\n";
    }
    RemoveTree(PathOf(place.At("aus")));
    return text + "\n";
  }
};

TEST_F(ProgramExchange, SaysWhatItAssumesAndGoesOnAfterAnError) {
  std::string said;
  for (const char* call : {"import|--to|aus|fremd",
                           "import|--to|aus/neu|kurz.txt|fehlt.txt|hdf5.nc|reihe/x1.vas|fremd/a.txt",
                           "import|--to|aus|--y|down|--units|m;mm/s|--zeros|invalid|--column5|valid|fremd/a.txt",
                           "import|--to|aus|--length|2.5|--velocity|1E-3|--format|jpiv|fremd/a.txt",
                           "import|--to|aus|fremd/a.txt|a.vec",
                           "import|--to|aus|fremd/a.txt|fremd/a.txt",
                           "import|--to|.|--format|csv|csv.vas",
                           "import|--to|aus|--units|mm|a.vec",
                           "import|--to|aus|--length|1,5|a.vec",
                           "import|--to|aus|--y|left|a.vec",
                           "import|--to|aus|--format|word|a.vec",
                           "import|a.vec",
                           "import|--to|aus",
                           "info|a.vec",
                           "info|--json|zeiten.dat",
                           "info|hdf5.nc",
                           "info|kurz.txt",
                           "export|--as|netcdf|--to|aus|reihe",
                           "export|--as|vtk|--to|aus|--series|s.pvd|--dt|0.5|reihe",
                           "export|--as|netcdf|--to|aus|--series|aus/neu/s.nc|--dt|0.5|reihe",
                           "export|--as|tecplot|--to|aus|--series|s.tec|reihe",
                           "export|--as|matlab|--to|aus|kaputt.vas|reihe/x1.vas",
                           "export|--as|csv|--to|aus|--series|s.csv|reihe",
                           "export|--as|netcdf|--to|aus|--series|s.nc|reihe/x1.vas|groß.vas",
                           "export|--as|tecplot|--to|aus|--series|s.tec|reihe/x1.vas|verschoben.vas",
                           "export|--as|vtk|--to|aus|--series|s.pvd|reihe/x1.vas|kaputt.vas",
                           "export|--as|csv|--to|aus|--dt|0|reihe",
                           "export|--as|csv|--to|aus|fehlt.vas",
                           "export|--as|word|--to|aus|reihe",
                           "export|--to|aus|reihe",
                           "export|--as|netcdf|--to|aus|--series|s.nc|fremd",
                           "import|--to|aus|leer"}) {
    said += Says(call);
  }
  ExpectApproved(place, "exchange_calls.txt", said);
}

}  // namespace
}  // namespace quiverion::cli
