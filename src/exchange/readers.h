#pragma once

#include <optional>
#include <string>
#include <vector>

#include "exchange/formats.h"

/// The recogniser and the reader of every format, for the table in formats.cpp.
namespace quiverion::exchange {

/// The first line with anything in it, without its end; empty if there is none.
std::string_view FirstLine(std::string_view head);

bool IsNetCdf(std::string_view head);
ForeignFile ReadNetCdf(const ForeignSource& source);

bool IsMatFile(std::string_view head);
ForeignFile ReadMatFile(const ForeignSource& source);

bool IsVtk(std::string_view head);
ForeignFile ReadVtk(const ForeignSource& source);

/// ParaView's list of the files of a series (.pvd).
bool IsVtkList(std::string_view head);
struct VtkListItem {
  std::string file;  // relative to the list
  std::optional<double> time;
};
std::vector<VtkListItem> ReadVtkList(InputFile& file);

bool IsVc7(std::string_view head);
ForeignFile ReadVc7(const ForeignSource& source);

bool IsDavisText(std::string_view head);
ForeignFile ReadDavisText(const ForeignSource& source);

bool IsPivLabText(std::string_view head);
ForeignFile ReadPivLabText(const ForeignSource& source);

bool IsTecplot(std::string_view head);
ForeignFile ReadTecplot(const ForeignSource& source);

/// "# x y u v ..." and lines of four to six numbers.
bool IsOpenPiv(std::string_view head);
ForeignFile ReadOpenPiv(const ForeignSource& source);

/// Never by content: five numbers per line, which OpenPIV writes, too.
bool IsJpiv(std::string_view head);
ForeignFile ReadJpiv(const ForeignSource& source);

bool IsCsv(std::string_view head);
ForeignFile ReadCsv(const ForeignSource& source);

}  // namespace quiverion::exchange
