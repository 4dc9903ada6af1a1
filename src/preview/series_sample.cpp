#include "preview/series_sample.h"

#include <algorithm>

#include "platform/numeric/robust.h"

namespace quiverion {
namespace {

constexpr double kOdd = 5.0;               // robust standard deviations
constexpr double kLeastDeviation = 0.001;  // share of the points
constexpr std::size_t kValuesPerFile = 20000;

}  // namespace

std::vector<std::size_t> SpreadEvenly(std::size_t total, std::size_t count) {
  std::vector<std::size_t> indices;
  count = std::min(count, total);
  for (std::size_t k = 0; k < count; ++k) indices.push_back(count == 1 ? 0 : k * (total - 1) / (count - 1));
  return indices;
}

SampledFile SampleFile(MacroPreview& preview, const MacroEventList& macro, std::optional<std::size_t> searchStep) {
  SampledFile file;
  while (preview.ComputeNext()) {
    const std::size_t step = preview.StepsDone() - 1;
    const StepReport& report = preview.Report(step);
    file.failed = file.failed || report.failed;
    file.isKnown = file.isKnown && report.isKnown;
    file.rejected += report.changes.rejected;
    file.filled += report.changes.filled;
    if (file.failed || !file.isKnown) break;
    if (step > 0 && step + 1 != searchStep) continue;
    const std::unique_ptr<VectorField> field = preview.FieldAfter(step);
    if (step == 0) {
      file.points = std::ranges::count_if(field->status.Values(), [](std::int32_t each) { return each >= 0; });
    }
    if (step + 1 == searchStep) file.search = ReportSearch(*field, macro[step], kValuesPerFile);
  }
  return file;
}

void MarkOdd(std::vector<SampledFile>& files) {
  std::vector<SampledFile*> counted;
  for (SampledFile& file : files) {
    file.isOdd = file.failed;
    if (!file.failed && file.isKnown) counted.push_back(&file);
  }
  for (double (SampledFile::*const share)() const : {&SampledFile::RejectedShare, &SampledFile::FilledShare}) {
    std::vector<double> shares;
    for (const SampledFile* const file : counted) shares.push_back((file->*share)());
    const std::vector<double> distances = RobustDistances(shares, kLeastDeviation);
    for (std::size_t k = 0; k < counted.size(); ++k) counted[k]->isOdd = counted[k]->isOdd || distances[k] > kOdd;
  }
}

}  // namespace quiverion
