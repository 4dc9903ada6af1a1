#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quiverion {

/// The weights W(k, l) of a filter: k is the offset in columns (x), l in rows (y). Both ranges are arbitrary and may be
/// negative.
class WeightMatrix {
 public:
  /// All weights are `value`. Each range has at least one offset.
  WeightMatrix(std::int32_t firstK, std::int32_t lastK, std::int32_t firstL, std::int32_t lastL, double value)
      : firstK_(firstK), lastK_(lastK), firstL_(firstL), lastL_(lastL) {
    weights_.assign(static_cast<std::size_t>(Columns()) * static_cast<std::size_t>(Rows()), value);
  }

  std::int32_t FirstK() const { return firstK_; }
  std::int32_t LastK() const { return lastK_; }
  std::int32_t FirstL() const { return firstL_; }
  std::int32_t LastL() const { return lastL_; }
  std::int32_t Columns() const { return lastK_ - firstK_ + 1; }
  std::int32_t Rows() const { return lastL_ - firstL_ + 1; }

  double& operator()(std::int32_t k, std::int32_t l) { return weights_[Position(k, l)]; }
  double operator()(std::int32_t k, std::int32_t l) const { return weights_[Position(k, l)]; }

  /// In the order of the sum: k outer, l inner.
  const std::vector<double>& Values() const { return weights_; }

 private:
  std::size_t Position(std::int32_t k, std::int32_t l) const {
    return static_cast<std::size_t>(k - firstK_) * static_cast<std::size_t>(Rows()) +
           static_cast<std::size_t>(l - firstL_);
  }

  std::int32_t firstK_, lastK_, firstL_, lastL_;
  std::vector<double> weights_;
};

}  // namespace quiverion
