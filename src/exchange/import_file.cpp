#include "exchange/import_file.h"

#include <algorithm>

#include "exchange/formats.h"
#include "field/formats/vas_file.h"
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

}  // namespace

ForeignFile ReadForeignFile(FileSystem& files, const std::string& path, const ImportOptions& options) {
  const auto file = files.OpenForReading(path);
  return ReadForeignFile(*file, path, options);
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
