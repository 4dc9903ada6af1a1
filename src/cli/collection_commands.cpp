#include <algorithm>
#include <nlohmann/json.hpp>

#include "cli/commands.h"
#include "cli/services.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"
#include "statistics/collection_contents.h"

namespace quiverion::cli {
namespace {

using Json = nlohmann::ordered_json;

std::string AsText(const std::string& path, const CollectionContents& contents) {
  std::string text = DescribeCollection(path, contents.header) + "\n";
  int number = 0;
  for (std::string sourcePath : contents.sourcePaths) {
    ReplaceControls(sourcePath, "");
    text += std::to_string(++number) + "\t" + sourcePath + "\n";
  }
  return text;
}

std::string AsJson(const CollectionContents& contents) {
  const CollectionHeader& header = contents.header;
  return Json{{"columnCount", header.columnCount},
              {"rowCount", header.rowCount},
              {"fieldCount", header.fieldCount},
              {"sourcePaths", contents.sourcePaths}}
             .dump(2) +
         "\n";
}

}  // namespace

int ListCollection(const std::string& path, bool json) {
  Services services;
  const auto contents = ReadCollectionContents(services.session.context, path);
  if (!contents) return services.FailedOn(path);
  services.terminal.Print(json ? AsJson(*contents) : AsText(path, *contents));
  return services.Done();
}

int RemoveFromCollection(const std::string& path, const std::vector<std::int32_t>& numbers) {
  Services services;
  Context& context = services.session.context;
  const auto contents = ReadCollectionContents(context, path);
  if (!contents) return services.FailedOn(path);
  const std::int32_t largest = *std::max_element(numbers.begin(), numbers.end());
  if (largest > contents->header.fieldCount) {
    services.terminal.PrintError("'" + path + "': Die Nummer " + std::to_string(largest) +
                                 " gibt es nicht, die Zahl der Vektorfelder ist " +
                                 std::to_string(contents->header.fieldCount) + ".\n");
    return kFailed;
  }
  CatchAbortRequests();  // a removal that has begun runs to its end
  const RemovalOutcome outcome = RemoveRecords(context, path, numbers, contents->sourcePaths);
  const bool done = outcome == RemovalOutcome::removed || outcome == RemovalOutcome::collectionDeleted;
  return done ? services.Done() : services.FailedOn(path);
}

}  // namespace quiverion::cli
