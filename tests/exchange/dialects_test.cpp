// The dialects as short texts: what each is taken for, what is assumed, and every vector. The results are in
// tests/approved/exchange_dialects.txt and exchange_refusals.txt.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cstring>

#include "exchange/exchange_fixture.h"
#include "platform/text/numbers.h"
#include "support/approved.h"

namespace quiverion::exchange::test {
namespace {

struct Case {
  const char* name;
  std::string text;
  ImportOptions options = {};
};

const std::string kUnnamed = "1 2 3 4 0\n2 2 -3 0.5 1\n1 1 0 0 0\n2 1 nan 1 0\n";
const std::string kNames = "VARIABLES = \"x\", \"y\", \"u\", \"v\"";
const std::string kPoints = "0 1 1 2\n1 1 3 4\n0 0 5 6\n1 0 0 0\n";

std::string WithColumn(const std::string& name, std::initializer_list<const char*> values) {
  std::string text = "x,y,u,v," + name + "\n";
  int k = 0;
  for (const char* value : values) text += std::to_string(k++) + ",0,1,2," + value + "\n";
  return text;
}

// A length and so many zeros, packed.
std::string PackedZeros(std::size_t count) {
  const std::vector<Bytef> zeros(count);
  std::vector<Bytef> packed(compressBound(static_cast<uLong>(count)));
  auto size = static_cast<uLongf>(packed.size());
  compress(packed.data(), &size, zeros.data(), static_cast<uLong>(count));
  std::string bytes(4 + size, '\0');
  std::memcpy(bytes.data(), &size, 4);
  std::memcpy(bytes.data() + 4, packed.data(), size);
  return bytes;
}

std::string Davis(const std::string& points) {
  return "#DaVis 8.1.6 2D-vector 32 2 3 \"position\" \"mm\" \"position\" \"mm\" \"velocity\" \"m/s\"\r\n" + points;
}

const Case kRead[] = {
    {"openpiv, four columns", "1 2 3 4\n2 2 5 6\n1 1 0 0\n2 1 7 8\n"},
    {"openpiv, fifth column 0 and 1", kUnnamed},
    {"fifth column of signal to noise", "1 1 2 2 28.5\n2 1 0 0 1\n"},
    {"fifth column with negative values", "1 1 2 2 -1\n2 1 3 3 0\n3 1 4 4 2\n"},
    {"fifth column by option", kUnnamed, {.column5 = Column5::signalToNoise}},
    {"fifth column valid by option", kUnnamed, {.column5 = Column5::valid}},
    {"fifth column of jpiv", kUnnamed, {.format = "jpiv"}},
    {"openpiv, six columns without names", "1 1 2 2 0 0\n2 1 3 3 1 0\n3 1 4 4 2 0\n4 1 5 5 0 1\n"},
    {"openpiv, mask of five columns", "# x\ty\tu\tv\tmask\n 1.0\t1\t2\t3\t 0.0\n2\t1\t2\t3\t1\n"},
    {"openpiv, commas and byte order mark", "\xEF\xBB\xBF# x,y,u,v,flags,mask\n1e0,1,2,3,0,0\n2,1,0,0,0,1\n"},
    {"comments without names", "# made by hand\n#\n1 2 3 4\n2 2 5 6\n"},
    {"row order and y down", kUnnamed, {.yPointsDown = true}},
    {"columns from the right, x slow", "2 1 1 1\n2 2 2 2\n1 1 3 3\n1 2 4 4\n"},
    {"units and factors by option",
     "x [px],y [px],u [px/frame],v [px/frame]\n1,1,2,3\n2,1,4,5\n",
     {.lengthUnit = "cm", .velocityUnit = "mm/ms"}},
    {"factors go before units",
     "x [cm],y [cm],u [mm/s],v [mm/s]\n1,1,2,3\n2,1,4,5\n",
     {.lengthUnit = "m", .lengthFactor = 3.0}},
    {"units of every kind", "x (\xC2\xB5m)[\xB5m];y [um];ux [nm/us];uy\n1000;1;1;2\n2000;1;3;4\n"},
    {"unit after a bar", "x_cm,y_cm,u_cm/s,v_cm/s\n1,1,2,3\n2,1,4,5\n"},
    {"zeros valid by option", kUnnamed, {.zerosAreInvalid = false}},
    {"zeros invalid in spite of a status", WithColumn("CHC", {"1", "1"}) + "2,0,0,0,1\n", {.zerosAreInvalid = true}},
    {"status as it stands", WithColumn("status", {"-1", "0", "4", "17"})},
    {"typevector", WithColumn("typevector", {"0", "1", "2", "3", "4", "nan"})},
    {"flags", WithColumn("flags", {"0", "1", "2", "3"})},
    {"flag", WithColumn("flag", {"0", "1", "-1", "65572"})},
    {"CHC", WithColumn("CHC", {"-3", "-1", "0", "1", "5"})},
    {"isNaN", WithColumn("isNaN", {"0", "1"})},
    {"invalid", WithColumn("invalid", {"0", "1"})},
    {"the first status counts", WithColumn("valid,flags", {"0,0", "1,1"})},
    {"status goes before everything", WithColumn("mask,status", {"1,2", "0,0"})},
    {"velocities that are not finite", WithColumn("status", {"1"}) + "1,0,nan,1,3\n2,0,1,-inf,-1\n3,0,1.#QNAN,1,0\n"},
    {"velocity too large for a double", "1 1 2 2\n2 1 2 -1e999\n"},
    {"numbers of every kind", "+1 1. 1D+01 -1d-1\n.2e1 1.0 1.E+00 -0\n"},
    {"davis with decimal commas", Davis("-1,5\t2\t0,25\t1\r\n0\t2\t0\t-0\r\n1,5\t2\t1e-3\t1\r\n"
                                        "-1,5\t1\t1\t1\r\n0\t1\t1\t1\r\n1,5\t1\t1\t1\r\n")},
    {"davis 10",
     "#DaVis 10.1 2C vector field 4 1 2 \"x [mm]\";\"y [mm]\";\"Vx [m/s]\";\"Vy [m/s]\"\n1;2;3;4\n2;2;0;-0\n"},
    {"davis stereo",
     "#DaVis 7.2.2 3D-vector 16 1 2 \"\" \"[mm]\" \"\" \"[mm]\" \"velocity\" \"m/s\"\n1\t2\t3\t4\t5\n2\t2\t3\t4\t5\n"},
    {"pivlab with all of its header",
     "PIVlab by W.Th. & E.J.S., ASCII chart output - 14-Mar-2017\r\nFRAME: 1, filenames: A & B, conversion factor xy "
     "(px "
     "-> m): 1, conversion factor uv (px/frame -> m/s): 1\r\nx [m],y [m],u [m/s],v [m/s],Vector type [-],vorticity "
     "[1/s]\r\n1,1,1,1,1,9\r\n1,2,NaN,NaN,0,NaN\r\n2,1,1,1,2,9\r\n2,2,1,1,3,9\r\n"},
    {"pivlab without names", "PIVlab, ASCII chart output\n1 1 1 1 1\n1 2 1 1 0\n"},
    {"pivlab with vorticity in column 5", "PIVlab, ASCII chart output\n1 1 1 1 0.5\n1 2 1 1 -3\n"},
    {"pivlab without any header", "1,1,1,1,1\n1,2,1,1,0\n", {.format = "pivlab"}},
    {"pivlab names separated by blanks",
     "x [px] y [px] u [px/frame] v [px/frame] Vector type [-]\n1 1 1 1 2\n1 2 1 1 3\n"},
    {"insight",
     "TITLE=\"C:\\a.vec\" VARIABLES=\"X mm\", \"Y mm\", \"U m/s\", \"V m/s\", \"CHC\", DATASETAUXDATA "
     "Application=\"PIV\" ZONE I=2, J=1, F=POINT\n0.5, 1.0, 2.0, 3.0, 4\n1.5, 1.0, 2.0, 3.0, -1\n"},
    {"davis tecplot without F",
     "TITLE = \"B00001\"\r\nVARIABLES = \"x\", \"y\", \"Vx\", \"Vy\"\r\nZONE T=\"Frame 0\", I=2, "
     "J=2, K=1\r\n" +
         kPoints},
    {"pivview",
     "# Software: PIVTEC PIVview\n# image origin upper-left\n# var 1: 'x' - X in [mm]\n# var 4: 'u' - X in "
     "[m/s]\nVARIABLES = \"x\", \"y\", \"u\", \"v\", \"flag\"\nZONE I=6, J=1\n0 0 1 1 0 \n1 0 1 1 1 \n2 0 1 1 2 "
     "\n3 0 1 1 3 \n4 0 1 1 4 \n5 0 1 1 5 \n"},
    {"tecplot in lower case, over several lines",
     "title = \"a, b\"\nvariables = x y\n u v\nzone\n t = \"1\"\n i = 2 j = 2\n" + kPoints},
    {"tecplot blocks with repeats", kNames + "\nZONE I=2, J=2, DATAPACKING=BLOCK\n0 1 0 1\n2*1, 2*0\n3*7 8 1\n2 3 4\n"},
    {"tecplot without packing", kNames + "\nZONE I=2, J=2\n0 1\n0 1\n1 1\n0 0\n1 2\n3 4\n5 6\n7 8\n"},
    {"tecplot points over line ends", kNames + "\nZONE I=2, J=1, F=POINT\n0 1 1\n2 1 1\n3 4\n"},
    {"tecplot zones", kNames + "\nZONE I=2, J=2, SOLUTIONTIME=0.5\n" + kPoints + "ZONE I=2, J=2, SOLUTIONTIME=1\n" +
                          kPoints + "# the end\n"},
    {"tecplot comments and commas", kNames + "\n# one\nZONE I=2, J=1, F=POINT\n0, 1, 1, 2\n# two\n\n1, 1, 3, 4\n"},
    {"csv with a text column", "x;y;name;u;v\n1,5;1;a b c;2;3\n2,5;1;d;4;5,5\n"},
    {"one point", "1 2 3 4\n"},
    {"one column from below", "1 1 1 1\n1 2 2 2\n1 3 3 3\n"},
    {"positions within two percent", "0 1 1 1\n0.99 1 1 1\n2 1 1 1\n0 0 1 1\n0.99 0.001 1 1\n2 0 1 1\n"},
    {"line ends of old machines", "1 2 3 4\r2 2 5 6\r"},
};

std::string Dump(const ForeignFile& foreign) {
  std::string text = foreign.report.format + ": " + foreign.report.Line() + "\n";
  for (const std::string& warning : foreign.report.warnings) text += "  ! " + warning + "\n";
  for (const ForeignField& field : foreign.fields) {
    text += field.time ? "  t = " + FormatNumber(*field.time) + "\n" : "";
    for (std::int32_t j = 1; j <= field.field.rowCount; ++j) {
      text += " ";
      for (std::int32_t i = 1; i <= field.field.columnCount; ++i) {
        text += " (" + FormatNumber(field.field.posX[static_cast<std::size_t>(i - 1)]) + ", " +
                FormatNumber(field.field.posY[static_cast<std::size_t>(j - 1)]) +
                "): " + FormatNumber(field.field.velX(i, j)) + ", " + FormatNumber(field.field.velY(i, j)) + " [" +
                std::to_string(field.field.status(i, j)) + "]";
      }
      text += "\n";
    }
  }
  return text;
}

TEST(Dialects, AreReadAsTheirProgramsMeanThem) {
  std::string said;
  for (const Case& one : kRead) {
    said += std::string("== ") + one.name + "\n";
    const auto failure = Attempt([&] { said += Dump(ReadBytes(one.text, one.options)); });
    if (failure) said += "refused: " + failure->formatMessage.value_or(failure->error.Description()) + "\n";
  }
  quiverion::test::ExpectApproved("exchange_dialects.txt", said);
}

// A header of a VC7 file.
std::string Vc7Header(int pack, int format, std::int32_t columns, std::int32_t rows) {
  std::string bytes(256, '\0');
  const auto put = [&](std::size_t at, std::int32_t value, std::size_t size) {
    for (std::size_t k = 0; k < size; ++k) bytes[at + k] = static_cast<char>(value >> (8 * k) & 0xFF);
  };
  put(2, pack, 2);
  put(4, format, 2);
  put(8, columns, 4);
  put(12, rows, 4);
  put(16, 1, 4);
  put(20, 1, 4);
  put(26, 16, 2);
  return bytes;
}

const Case kRefused[] = {
    {"empty", ""},
    {"blank lines", "\n\n  \n"},
    {"a picture", "\x89PNG\r\n\x1A\n" + std::string(300, '\x01')},
    {"prose", "Dear reader,\nthese are not vectors.\n"},
    {"three columns", "1 2 3\n2 2 3\n"},
    {"seven columns", "1 2 3 4 5 6 7\n"},
    {"hdf5", "\x89HDF\r\n\x1A\n\x01"},
    {"matlab 7.3", "MATLAB 7.3 MAT-file, Platform: PCWIN64"},
    {"own file", "Quiverion"},
    {"korvo", "Date and time: 1"},
    {"davis 5", std::string("\x14\0", 2) + std::string(300, '\0')},
    {"dynamic studio", ">>*HEADER*<<\nFileID:DSExport.CSV\n"},
    {"unknown format of the option", "1 2 3 4\n", {.format = "hdf5"}},
    {"missing number", "1 1 2 2\n2 1 2\n"},
    {"number too many", "1 1 2 2\n2 1 2 2 2\n"},
    {"no number", "1 1 2 2\n2 1 2 x\n"},
    {"position too large", "1 1 2 2\n1e999 1 2 2\n"},
    {"text at the end", "1 1 2 2\n2 1 2 2\nend\n"},
    {"mixed separators", "1,1,2,2\n2;1;2;2\n"},
    {"comma in a file with blanks", "1.5 1 2 2\n2.5 1,5 2 2\n"},
    {"point in a file with decimal commas", "1,5\t1\t2\t2\n2,5\t1.5\t2\t2\n"},
    {"decimal commas between commas", "x,y,u,v\n1,5,1,0,2,0,2,5\n"},
    {"missing point", "0 1 1 1\n1 1 1 1\n2 1 1 1\n0 0 1 1\n2 0 1 1\n"},
    {"missing last point", "0 1 1 1\n1 1 1 1\n2 1 1 1\n0 0 1 1\n1 0 1 1\n"},
    {"doubled point", "0 1 1 1\n0 1 1 1\n1 1 1 1\n"},
    {"doubled point later", "0 1 1 1\n1 1 1 1\n1 1 1 1\n"},
    {"doubled row", "0 1 1 1\n1 1 1 1\n0 1 1 1\n1 1 1 1\n"},
    {"step beyond two percent", "0 1 1 1\n0.9 1 1 1\n2 1 1 1\n"},
    {"position that is no number", "0 1 1 1\nnan 1 1 1\n2 1 1 1\n"},
    {"points on a diagonal", "0 0 1 1\n1 1 1 1\n2 2 1 1\n"},
    {"swapped counts",
     "#DaVis 8 2D-vector 32 3 2 \"a\" \"mm\" \"b\" \"mm\" \"c\" \"m/s\"\n0\t1\t1\t1\n1\t1\t1\t1\n2\t1\t1\t1\n"
     "0\t0\t1\t1\n1\t0\t1\t1\n2\t0\t1\t1\n"},
    {"davis header without counts", "#DaVis 8.1.6 2D-vector\n1 1 1 1\n"},
    {"tecplot counts too large", kNames + "\nZONE I=46341, J=46341, F=POINT\n" + kPoints},
    {"tecplot counts of a bomb", kNames + "\nZONE I=46341, J=46341, F=BLOCK\n2147483647*0\n"},
    {"tecplot repeats beyond the zone", kNames + "\nZONE I=2, J=2, F=BLOCK\n17*0\n"},
    {"tecplot without numbers", kNames + "\n"},
    {"tecplot without v", "VARIABLES = x y u\nZONE I=2 J=1\n1 1 1\n2 1 1\n"},
    {"tecplot finite elements", kNames + "\nZONE N=4, E=1, ZONETYPE=FEQUADRILATERAL\n" + kPoints},
    {"tecplot volume", kNames + "\nZONE I=2, J=2, K=2, F=POINT\n" + kPoints},
    {"tecplot zones of different size", kNames + "\nZONE I=2, J=2\n" + kPoints + "ZONE I=2, J=1\n0 1 1 1\n1 1 1 1\n"},
    {"tecplot text without end", "TITLE = \"a\nVARIABLES = x y u v\n"},
    {"status that is none", WithColumn("status", {"1", "1.5"})},
    {"netcdf cut off", std::string("CDF\x01\0\0\0\0\0\0\0\x0A\0\0\0\x09", 16)},
    {"netcdf without variables", std::string("CDF\x02", 4) + std::string(28, '\0')},
    {"mat cut off", "MATLAB 5.0 MAT-file" + std::string(40, ' ')},
    {"vtk of another kind", "<?xml version=\"1.0\"?>\n<VTKFile type=\"PolyData\"></VTKFile>\n"},
    {"list of vtk files", "<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\"></VTKFile>\n"},
    {"vc7 image", Vc7Header(0, -4, 10, 10)},
    {"vc7 packed in an old way", Vc7Header(1, 3, 10, 10) + std::string(1000, '\0')},
    {"vc7 of 2^31 points", Vc7Header(0, 3, 46341, 46341) + std::string(1000, '\0')},
    {"vc7 bomb", Vc7Header(2, 3, 2147483647, 2147483647) + std::string("\x08\0\0\0\x78\x9C\x03\0\0\0\0\x01", 12)},
    {"vc7 bomb of zeros", Vc7Header(2, 2, 3000, 3000) + PackedZeros(8 * 3000 * 3000)},
    {"vc7 packed data damaged", Vc7Header(2, 3, 10, 10) + std::string("\x04\0\0\0abcd", 8)},
};

TEST(Dialects, ThatAreDamagedAreRefusedWithTheirPlace) {
  std::string said;
  for (const Case& one : kRefused) {
    const std::string refusal = RefusalOf(one.text, one.options);
    EXPECT_NE(refusal, "") << one.name;
    said += std::string("== ") + one.name + "\n" + refusal + "\n";
  }
  quiverion::test::ExpectApproved("exchange_refusals.txt", said);
}

TEST(Dialects, OneLineOfAHundredMegabytesIsRefusedAtOnce) {
  std::string line;
  line.reserve(100'000'000);
  while (line.size() < 100'000'000) line += "1.25 ";
  EXPECT_NE(RefusalOf(line), "");
  EXPECT_NE(RefusalOf("x,y,u,v\n" + line), "");
  EXPECT_NE(RefusalOf(line, {.format = "csv"}), "");
}

}  // namespace
}  // namespace quiverion::exchange::test
