#include "exchange/formats.h"

#include <algorithm>

#include "exchange/readers.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion::exchange {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Formats that are named but not read: the message says the way out.
template <const char* message>
ForeignFile Refuse(const ForeignSource& /*source*/) {
  throw FormatError(message);
}

constexpr char kHdf5Way[] =
    "Byte 1: HDF5 (netCDF-4, MATLAB 7.3) kann nicht gelesen werden. Als netCDF classic speichern (nccopy -k classic, "
    "in "
    "xarray to_netcdf mit format='NETCDF3_64BIT'), in MATLAB mit save -v7 oder in PIVlab als MAT-Datei oder Text "
    "exportieren.";
constexpr char kDynamicWay[] =
    "Zeile 1: Der Text-Export von DynamicStudio kann nicht gelesen werden. Die Felder als Tecplot-Datei oder als CSV "
    "mit "
    "einer Zeile von Namen (x, y, u, v) exportieren.";
constexpr char kOwnWay[] = "Byte 1: Das ist schon eine VAS-Datei, sie braucht keinen Import.";
constexpr char kKorvoWay[] =
    "Zeile 1: Das ist eine DAT-Datei von Korvo. Sie braucht keinen Import, das Makro und der Betrachter laden sie "
    "direkt.";
constexpr char kVecWay[] =
    "Byte 1: Das ist eine VEC-Datei von DaVis 5 oder 6. Sie braucht keinen Import, das Makro und der Betrachter laden "
    "sie "
    "direkt.";

bool IsHdf5(std::string_view head) {
  constexpr std::string_view signature = "\x89HDF\r\n\x1A\n";
  // MATLAB writes a text in front of it.
  return head.starts_with(signature) || head.starts_with("MATLAB 7.3 MAT-file") ||
         (head.size() > 512 && head.substr(512).starts_with(signature));
}

bool IsOwn(std::string_view head) {
  return head.starts_with("Quiverion");
}

bool IsKorvo(std::string_view head) {
  return head.starts_with("Date and time: ");
}

bool IsVec(std::string_view head) {
  return head.size() >= 256 && head[0] >= 18 && head[0] <= 23 && head[1] == 0;
}

bool IsDynamicStudio(std::string_view head) {
  return head.starts_with(">>*HEADER*<<");
}

constexpr ForeignFormat kFormats[] = {
    {"netcdf", "netCDF", IsNetCdf, ReadNetCdf},
    {"hdf5", "HDF5", IsHdf5, Refuse<kHdf5Way>},
    {"matlab", "MATLAB (PIVlab)", IsMatFile, ReadMatFile},
    {"vtk", "VTK", IsVtk, ReadVtk},
    {"vas", "VAS", IsOwn, Refuse<kOwnWay>, false},
    {"dat", "DAT (Korvo)", IsKorvo, Refuse<kKorvoWay>, false},
    {"vec", "VEC (DaVis 5 und 6)", IsVec, Refuse<kVecWay>, false},
    {"vc7", "VC7 (DaVis 7 und 8)", IsVc7, ReadVc7},
    {"davis", "DaVis (Text)", IsDavisText, ReadDavisText},
    {"pivlab", "PIVlab (Text)", IsPivLabText, ReadPivLabText},
    {"dynamicstudio", "DynamicStudio", IsDynamicStudio, Refuse<kDynamicWay>},
    {"tecplot", "Tecplot (auch Insight, DaVis, PIVview, PIVlab)", IsTecplot, ReadTecplot},
    {"openpiv", "OpenPIV", IsOpenPiv, ReadOpenPiv},
    {"jpiv", "JPIV", IsJpiv, ReadJpiv},
    {"csv", "CSV", IsCsv, ReadCsv},
};

// Lines of the info text: where the field comes from and what was assumed.
std::string InfoText(const std::string& path, const ImportReport& report, std::size_t number,
                     const std::optional<double>& time) {
  std::string text = "Importiert aus '" + std::string(FileNameOf(path)) + "'";
  if (report.fieldCount > 1) {
    text += ", Feld " + std::to_string(number) + " von " + std::to_string(report.fieldCount);
  }
  if (time) text += ", Zeit " + FormatNumber(*time);
  text += "\n" + report.Line() + "\n";
  for (const std::string& warning : report.warnings) text += warning + "\n";
  // The info text is stored in Windows-1252.
  text = Utf8FromWindows1252(Windows1252FromUtf8(text).bytes);
  std::string lines;
  for (const char c : text) lines += c == '\n' ? std::string("\r\n") : std::string(1, c);
  ReplaceControls(lines, "\r\n\t");
  return lines;
}

}  // namespace

std::span<const ForeignFormat> ForeignFormats() {
  return kFormats;
}

const ForeignFormat* FindFormat(std::string_view name) {
  const auto found = std::ranges::find(kFormats, name, &ForeignFormat::name);
  return found == std::end(kFormats) ? nullptr : &*found;
}

const ForeignFormat* RecogniseFormat(InputFile& file) {
  std::string head(static_cast<std::size_t>(std::min<std::uint64_t>(file.Size(), kHeadSize)), '\0');
  head.resize(file.Read(head.data(), head.size()));
  file.Seek(0);
  std::string_view text = head;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  const auto found =
      std::ranges::find_if(kFormats, [&](const ForeignFormat& format) { return format.recognises(text); });
  return found == std::end(kFormats) ? nullptr : &*found;
}

ForeignFile ReadForeignFile(InputFile& file, const std::string& path, const ImportOptions& options) {
  if (file.Size() == 0) throw FormatError("Byte 0: Die Datei ist leer.");
  const ForeignFormat* const format = options.format.empty() ? RecogniseFormat(file) : FindFormat(options.format);
  if (format == nullptr) {
    throw FormatError("Zeile 1 (Byte 1): Weder ein bekanntes Format noch eine Tabelle mit x, y, u und v.");
  }
  ForeignFile result = format->read({file, options, format->name});
  result.report.format = format->name;
  for (std::size_t k = 0; k < result.fields.size(); ++k) {
    ForeignField& field = result.fields[k];
    field.field.infoText = InfoText(path, result.report, k + 1, field.time);
  }
  return result;
}

}  // namespace quiverion::exchange
