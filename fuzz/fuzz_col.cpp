#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "round_trip.h"
#include "statistics/collect.h"
#include "statistics/collection_contents.h"
#include "statistics/collection_file.h"
#include "statistics/compute_statistic.h"
#include "support/field_builder.h"

namespace quiverion::fuzz {
namespace {

class Collection {
 public:
  explicit Collection(std::string bytes) : bytes_(std::move(bytes)) {
    program_.files.freeBytes = {1 << 20};  // a damaged count must not fill memory
    Restore();
  }

  void Check() {
    const auto contents = ReadCollectionContents(context_, "c.col");
    Demand(program_.ui.messages.empty() == contents.has_value(), "either a list or a message");
    if (HasLargeGrid()) return;
    CheckStatistics();
    CheckAppend(contents);
    if (contents && contents->header.fieldCount > 0) CheckRemoval(*contents);
  }

 private:
  static constexpr std::uint64_t enoughPoints = 1 << 12;

  // The size that the header claims, whatever else is wrong with it: the statistics accept any version.
  bool HasLargeGrid() const {
    CollectionHeader header;
    if (bytes_.size() < collection::kHeaderBytes) return false;
    std::memcpy(&header.columnCount, bytes_.data() + 35, sizeof header.columnCount);
    std::memcpy(&header.rowCount, bytes_.data() + 39, sizeof header.rowCount);
    return header.columnCount > 0 && header.rowCount > 0 && header.VectorCount() > enoughPoints;
  }

  void Restore() {
    program_.files.files["c.col"] = bytes_;
    program_.ui.messages.clear();
    program_.TakeLog();
    context_.runHadError = false;
  }

  // A failure is reported once and saves nothing.
  void CheckStatistics() {
    Restore();
    const auto kind = static_cast<StatisticKind>(bytes_.size() % 6);
    const bool computed = ComputeStatistic(context_, kind, "c.col", "r.vas", 1E-5);
    Demand(program_.ui.messages.size() == (computed ? 0u : 1u), "a failure shows one message");
    Demand(program_.files.files.contains("r.vas") == computed, "only a result is saved");
    Demand(program_.files.files["c.col"] == bytes_, "a statistic only reads");
  }

  void CheckAppend(const std::optional<CollectionContents>& contents) {
    Restore();
    context_.field =
        test::MakeField(contents ? contents->header.columnCount : 3, contents ? contents->header.rowCount : 2);
    context_.field.filePath = "new";
    CollectForStatistics(context_, "c.col");
    const std::string& now = program_.files.files["c.col"];
    const bool refused = program_.TakeLog().find("!!! FEHLER !!!") != std::string::npos;
    Demand(!refused || (now == bytes_ && context_.runHadError), "a refused append changes nothing");
    if (refused || !contents) return;
    const auto after = ReadCollectionContents(context_, "c.col");
    const auto end = static_cast<std::size_t>(RecordPosition(contents->header, contents->header.fieldCount));
    Demand(after && after->header.fieldCount == contents->header.fieldCount + 1, "the count");
    Demand(after->sourcePaths.back() == "new", "the new path");
    Demand(now.compare(35, end - 35, bytes_, 35, end - 35) == 0, "what was there before");
  }

  // The last bytes determine which records are removed.
  void CheckRemoval(const CollectionContents& contents) {
    Restore();
    std::vector<std::int32_t> numbers;
    std::vector<std::string> left = contents.sourcePaths;
    for (std::size_t k = left.size(); k >= 1; --k) {
      if (k > 1 && bytes_[bytes_.size() - k % bytes_.size() - 1] % 2 == 0) continue;
      numbers.push_back(static_cast<std::int32_t>(k));
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(k - 1));
    }
    const RemovalOutcome outcome = RemoveRecords(context_, "c.col", numbers);
    if (left.empty()) {
      Demand(outcome == RemovalOutcome::collectionDeleted && !program_.files.files.contains("c.col"), "no record left");
      return;
    }
    Demand(outcome == RemovalOutcome::removed, "a removal");
    auto after = ReadCollectionContents(context_, "c.col");
    Demand(after.has_value(), "a list after a removal");
    Demand(program_.files.files["c.col"].size() == RecordPosition(after->header, after->header.fieldCount),
           "the length");
    std::ranges::sort(after->sourcePaths);
    std::ranges::sort(left);
    Demand(after->sourcePaths == left, "what stays");
  }

  std::string bytes_;
  test::TestSession program_;
  Context& context_ = program_.context;
};

}  // namespace
}  // namespace quiverion::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quiverion::fuzz::Collection(std::string(data, data + size)).Check();
  return 0;
}
