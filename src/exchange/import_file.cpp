#include "exchange/import_file.h"

#include <algorithm>
#include <iterator>

#include "exchange/formats.h"
#include "exchange/readers.h"
#include "field/formats/vas_file.h"
#include "messages/failure.h"
#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"

namespace quiverion::exchange {
namespace {

// At least four digits.
std::string NumberText(std::size_t number) {
  const std::string digits = std::to_string(number);
  return std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits;
}

// What an XML attribute holds.
std::string Unescaped(std::string text) {
  for (const auto& [code, sign] : {std::pair("&lt;", "<"), {"&quot;", "\""}, {"&amp;", "&"}}) {
    for (std::size_t at = text.find(code); at != std::string::npos; at = text.find(code, at + 1)) {
      text.replace(at, std::string_view(code).size(), sign);
    }
  }
  return text;
}

void Append(ForeignFile item, const std::optional<double>& time, ForeignFile& all) {
  if (all.fields.empty()) {
    all = std::move(item);
  } else {
    if (item.report.columnCount != all.report.columnCount || item.report.rowCount != all.report.rowCount) {
      throw FormatError("die Felder der Liste sind verschieden groß");
    }
    all.report.validCount += item.report.validCount;
    all.report.vectorCount += item.report.vectorCount;
    all.report.fieldCount += item.report.fieldCount;
    std::ranges::move(item.fields, std::back_inserter(all.fields));
  }
  if (time) all.fields.back().time = time;
}

// The fields of all files of a list, which lie beside it.
ForeignFile ReadListed(FileSystem& files, InputFile& list, const std::string& path, const ImportOptions& options) {
  ForeignFile all;
  for (const VtkListItem& item : ReadVtkList(list)) {
    const std::string name = Unescaped(item.file);
    const bool isAbsolute = !name.empty() && (IsPathSeparator(name.front()) || name.find(':') == 1);
    const std::string itemPath = isAbsolute ? name : DirectoryPrefixOf(path) + name;
    const auto failure = Attempt([&] {
      const auto file = files.OpenForReading(itemPath);
      Append(ReadForeignFile(*file, itemPath, options), item.time, all);
    });
    if (!failure) continue;
    throw FormatError("'" + name + "': " + failure->formatMessage.value_or(ErrorText(failure->error)));
  }
  return all;
}

}  // namespace

ForeignFile ReadForeignFile(FileSystem& files, const std::string& path, const ImportOptions& options) {
  const auto file = files.OpenForReading(path);
  std::string head(static_cast<std::size_t>(std::min<std::uint64_t>(file->Size(), 1024)), '\0');
  head.resize(file->Read(head.data(), head.size()));
  file->Seek(0);
  return IsVtkList(head) ? ReadListed(files, *file, path, options) : ReadForeignFile(*file, path, options);
}

std::string ImportedPath(const std::string& source, const std::string& directory, std::size_t number,
                         std::size_t count) {
  std::string path = WithSeparator(directory);
  path += BaseNameOf(FileNameOf(source));
  if (count > 1) path += "_" + NumberText(number);
  return path + ".vas";
}

std::vector<std::string> SaveImported(Context& context, ForeignFile foreign, const std::string& source,
                                      const std::string& directory) {
  const std::size_t count = foreign.fields.size();
  for (std::size_t k = 1; k <= count; ++k) {
    const std::string path = ImportedPath(source, directory, k, count);
    if (IsSameFile(AbsolutePath(path), AbsolutePath(source))) {
      throw SystemError::Saying(ErrorNumber::pathAccess, "Das Ergebnis würde die Quelle ersetzen!");
    }
  }
  std::vector<std::string> written;
  for (std::size_t k = 1; k <= count; ++k) {
    const std::string path = ImportedPath(source, directory, k, count);
    context.field = std::move(foreign.fields[k - 1].field);
    foreign.fields[k - 1] = {};
    context.runHadError = false;
    SaveVas(context, path);
    if (context.runHadError) break;
    written.push_back(path);
  }
  return written;
}

}  // namespace quiverion::exchange
