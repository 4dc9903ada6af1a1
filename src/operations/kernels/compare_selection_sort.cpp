#include <algorithm>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

#include "operations/kernels/compare_vectors.h"
#include "operations/kernels/faulty_vectors_plain.h"

namespace quiverion {
namespace {

struct Entry {
  double u, v, magnitude;
};

// The result of the selection sort at the positions up to `last`. The sort takes the largest remaining magnitude, among
// equal ones the first by current position, and swaps it forward. A swap never moves another entry of the same
// magnitude (the one at the front would have been taken itself). So a group of equal magnitudes is taken in the order
// of its positions when its turn comes. Magnitudes of 0 and NaN are never taken.
class SelectionSort {
 public:
  explicit SelectionSort(std::span<const Entry> entries)
      : entries_(entries), at_(entries.size()), place_(entries.size()) {
    std::iota(at_.begin(), at_.end(), std::size_t{0});
    std::iota(place_.begin(), place_.end(), std::size_t{0});
  }

  void SortUpTo(std::size_t last) {
    std::vector<std::size_t> order;
    for (std::size_t e = 0; e < entries_.size(); ++e) {
      if (entries_[e].magnitude > 0.0) order.push_back(e);
    }
    std::sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
      return entries_[a].magnitude != entries_[b].magnitude ? entries_[a].magnitude > entries_[b].magnitude : a < b;
    });
    std::size_t front = 0;
    for (auto group = order.begin(); group != order.end() && front <= last;) {
      const auto end = std::find_if(group, order.end(),
                                    [&](std::size_t e) { return entries_[e].magnitude != entries_[*group].magnitude; });
      std::sort(group, end, [this](std::size_t a, std::size_t b) { return place_[a] < place_[b]; });
      for (; group != end; ++group) SwapTo(front++, *group);
    }
  }

  const Entry& At(std::size_t position) const { return entries_[at_[position]]; }

 private:
  void SwapTo(std::size_t position, std::size_t entry) {
    const std::size_t other = at_[position], from = place_[entry];
    std::swap(at_[position], at_[from]);
    place_[entry] = position;
    place_[other] = from;
  }

  std::span<const Entry> entries_;
  std::vector<std::size_t> at_;     // entry at each position
  std::vector<std::size_t> place_;  // position of each entry
};

}  // namespace

void MedianBySelectionSort(const VectorField& field, const Magnitudes& magnitudes, Window window, std::int32_t i,
                           std::int32_t j, CompareVectors& compare) {
  std::vector<Entry> entries;
  plain::ForEachInWindow(field, i, j, window.halfX, window.halfY, [&](std::int32_t k, std::int32_t l) {
    entries.push_back({field.velX(k, l), field.velY(k, l), magnitudes.values(k, l)});
  });
  Entry median{};
  if (!entries.empty()) {
    const std::size_t middle = (entries.size() - 1) / 2;
    SelectionSort sort(entries);
    sort.SortUpTo(middle + 1);
    median = sort.At(middle);
    if (entries.size() % 2 == 0) {
      const Entry& next = sort.At(middle + 1);
      median = {(median.u + next.u) / 2.0, (median.v + next.v) / 2.0, (median.magnitude + next.magnitude) / 2.0};
    }
  }
  if (compare.needMagnitude) compare.magnitude(i, j) = median.magnitude;
  if (compare.needDirection) compare.x(i, j) = median.u, compare.y(i, j) = median.v;
}

}  // namespace quiverion
