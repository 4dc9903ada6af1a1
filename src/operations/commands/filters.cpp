#include "operations/commands/filters.h"

#include <string_view>

#include "log/log_lines.h"
#include "operations/kernels/filter_kernel.h"
#include "operations/kernels/mathematical.h"

namespace quiverion {
namespace {

WeightMatrix RectWeights(std::int32_t halfWidth) {
  return {-halfWidth, halfWidth, -halfWidth, halfWidth, 1.0};
}

WeightMatrix GaussWeights(std::int32_t halfWidth) {
  WeightMatrix weights = RectWeights(halfWidth);
  for (std::int32_t k = -halfWidth; k <= halfWidth; ++k) {
    for (std::int32_t l = -halfWidth; l <= halfWidth; ++l) {
      weights(k, l) =
          BinomialCoefficient(2 * halfWidth, k + halfWidth) * BinomialCoefficient(2 * halfWidth, l + halfWidth);
    }
  }
  return weights;
}

void Filter(Context& context, std::string_view announcement, const WeightMatrix& weights) {
  context.log.WriteLogLine(announcement);
  ApplyFilterKernel(context.field, weights);
  LogLines(context.log, {kDoneText});
}

}  // namespace

void FilterRect3x3(Context& context) {
  Filter(context, "3x3 Rechteck-Filter... ", RectWeights(1));
}

void FilterRect5x5(Context& context) {
  Filter(context, "5x5 Rechteck-Filter... ", RectWeights(2));
}

void FilterGauss3x3(Context& context) {
  Filter(context, "3x3 Gauss-Filter... ", GaussWeights(1));
}

void FilterGauss5x5(Context& context) {
  Filter(context, "5x5 Gauss-Filter... ", GaussWeights(2));
}

void FilterVelocityProfile(Context& context) {
  const std::int32_t reach = context.field.columnCount - 1;
  Filter(context, "Filter: Geschwindigkeitsprofil erzeugen... ", WeightMatrix(-reach, reach, 0, 0, 1.0));
}

}  // namespace quiverion
