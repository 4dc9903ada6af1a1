// Medians of any window: all magnitudes are ranked once, and a window is a set of ranks that slides along the row.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "operations/kernels/compare_vectors.h"
#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

using Rank = std::uint32_t;
constexpr Rank kBits = 64;   // ranks of a word
constexpr Rank kBlock = 64;  // words of a block
constexpr Rank kAlone = ~Rank{0};

struct RankedVector {
  std::uint64_t key;  // the bits of a magnitude, which have the same order; 0 for NaN
  std::size_t position;
};

// Stable sort by key: a radix sort from the least significant digits.
void SortByKey(std::vector<RankedVector>& vectors) {
  constexpr int digitBits = 11;
  std::vector<RankedVector> other(vectors.size());
  for (int shift = 0; shift < 64; shift += digitBits) {
    const auto digit = [shift](std::uint64_t key) { return key >> shift & ((1u << digitBits) - 1); };
    std::array<std::size_t, std::size_t{1} << digitBits> begin{};
    for (const RankedVector& vector : vectors) ++begin[digit(vector.key)];
    if (vectors.empty() || begin[digit(vectors.front().key)] == vectors.size()) continue;
    std::size_t sum = 0;
    for (std::size_t& count : begin) sum += std::exchange(count, sum);
    for (const RankedVector& vector : vectors) other[begin[digit(vector.key)]++] = vector;
    vectors.swap(other);
  }
}

// The valid vectors in ascending order of magnitude.
class Ranking {
 public:
  Ranking(const VectorField& field, const Magnitudes& magnitudes, bool identityMatters)
      : rows_(static_cast<std::size_t>(field.rowCount)),
        ranks_(field.status.Values().size()),
        magnitudes_(magnitudes.values.Values()) {
    const auto status = field.status.Values();
    vectors_.reserve(status.size());
    for (std::size_t p = 0; p < status.size(); ++p) {
      const double magnitude = magnitudes_[p];
      if (status[p] > 0) vectors_.push_back({magnitude > 0.0 ? std::bit_cast<std::uint64_t>(magnitude) : 0, p});
    }
    SortByKey(vectors_);
    SpreadRanks(static_cast<std::size_t>(field.columnCount));
    if (identityMatters || magnitudes.haveNaN) FindUnclearGroups(field, identityMatters);
  }

  Rank Count() const { return static_cast<Rank>(vectors_.size()); }

  // The rank of an invalid vector: after all ranks, in a separate block.
  Rank Nothing() const { return (Count() / (kBits * kBlock) + 1) * kBits * kBlock; }

  // Ranks of the rows of column i.
  const Rank* Column(std::int32_t i) const { return ranks_.data() + static_cast<std::size_t>(i - 1) * rows_; }

  std::size_t PositionOf(Rank rank) const { return vectors_[rank].position; }

  // The ranks [first, second) of vectors that tie with this one, if they differ from each other; otherwise {kAlone,
  // kAlone}.
  std::pair<Rank, Rank> UnclearGroup(Rank rank) const {
    const auto after = std::upper_bound(groups_.begin(), groups_.end(), rank,
                                        [](Rank r, const std::pair<Rank, Rank>& group) { return r < group.second; });
    const bool inside = after != groups_.end() && rank >= after->first;
    return inside ? *after : std::pair{kAlone, kAlone};
  }

 private:
  // Column by column, so that the ranks that enter and leave a window are contiguous.
  void SpreadRanks(std::size_t columns) {
    std::fill(ranks_.begin(), ranks_.end(), Nothing());
    for (std::size_t rank = 0; rank < vectors_.size(); ++rank) {
      const std::size_t p = vectors_[rank].position;
      ranks_[p % columns * rows_ + p / columns] = static_cast<Rank>(rank);
    }
  }

  void FindUnclearGroups(const VectorField& field, bool identityMatters) {
    const auto bitsOf = [&field](std::size_t p) {
      return std::pair(std::bit_cast<std::uint64_t>(field.velX.Values()[p]),
                       std::bit_cast<std::uint64_t>(field.velY.Values()[p]));
    };
    const auto differ = [&](std::size_t p, std::size_t q) {
      if (identityMatters && bitsOf(p) != bitsOf(q)) return true;
      return (magnitudes_[p] == 0.0) != (magnitudes_[q] == 0.0);  // NaN and 0
    };
    for (std::size_t begin = 0, end = 0; begin < vectors_.size(); begin = end) {
      bool unclear = false;
      for (end = begin + 1; end < vectors_.size() && vectors_[end].key == vectors_[begin].key; ++end) {
        unclear = unclear || differ(vectors_[begin].position, vectors_[end].position);
      }
      if (unclear) groups_.emplace_back(static_cast<Rank>(begin), static_cast<Rank>(end));
    }
  }

  std::size_t rows_;
  std::vector<Rank> ranks_;
  std::span<const double> magnitudes_;
  std::vector<RankedVector> vectors_;
  std::vector<std::pair<Rank, Rank>> groups_;  // ascending
};

// A set of ranks, one bit each, with a pointer near its middle that moves a little from query to query (Huang, Yang,
// Tang, IEEE Trans. ASSP 27, 1979, with bits instead of a histogram).
//
// With many ranks, they are also counted by blocks, so that the pointer can skip whole blocks. With few ranks that
// costs more than it saves.
template <bool hasBlocks>
class RankSet {
 public:
  explicit RankSet(Rank end) : words_(end / kBits + 1), blocks_(words_.size() / kBlock + 1) {}

  void Clear() {
    std::fill(words_.begin(), words_.end(), 0);
    std::fill(blocks_.begin(), blocks_.end(), 0);
    word_ = below_ = 0;
  }

  QUIVERION_ALWAYS_INLINE void Add(Rank rank) {
    const Rank word = rank / kBits;
    words_[word] |= std::uint64_t{1} << rank % kBits;
    if constexpr (hasBlocks) ++blocks_[word / kBlock];
    below_ += word < word_ ? 1 : 0;
  }
  QUIVERION_ALWAYS_INLINE void Remove(Rank rank) {
    const Rank word = rank / kBits;
    words_[word] &= ~(std::uint64_t{1} << rank % kBits);
    if constexpr (hasBlocks) --blocks_[word / kBlock];
    below_ -= word < word_ ? 1 : 0;
  }

  // The rank at `index` in ascending order, counted from 0; it must exist.
  QUIVERION_ALWAYS_INLINE Rank At(Rank index) {
    MoveDownTo(index);
    MoveUpTo(index);
    std::uint64_t bits = words_[word_];
    for (Rank k = below_; k < index; ++k) bits &= bits - 1;
    return word_ * kBits + static_cast<Rank>(std::countr_zero(bits));
  }

  // The next rank in the set above one that is in the set; it must exist.
  QUIVERION_ALWAYS_INLINE Rank After(Rank rank) const {
    Rank word = rank / kBits;
    std::uint64_t bits = words_[word] & ~std::uint64_t{1} << rank % kBits;
    while (bits == 0) bits = words_[++word];
    return word * kBits + static_cast<Rank>(std::countr_zero(bits));
  }

  // True if at most one rank of [begin, end) is in the set.
  bool HasAtMostOne(Rank begin, Rank end) const {
    int count = 0;
    for (Rank rank = begin; rank < end && count < 2; ++rank) count += (words_[rank / kBits] >> rank % kBits & 1) != 0;
    return count < 2;
  }

 private:
  QUIVERION_ALWAYS_INLINE void MoveDownTo(Rank index) {
    while (below_ > index) {
      if (hasBlocks && word_ % kBlock == 0 && below_ - blocks_[word_ / kBlock - 1] > index) {
        word_ -= kBlock;
        below_ -= blocks_[word_ / kBlock];
      } else {
        below_ -= static_cast<Rank>(std::popcount(words_[--word_]));
      }
    }
  }
  QUIVERION_ALWAYS_INLINE void MoveUpTo(Rank index) {
    for (;;) {
      if (hasBlocks && word_ % kBlock == 0 && below_ + blocks_[word_ / kBlock] <= index) {
        below_ += blocks_[word_ / kBlock];
        word_ += kBlock;
        continue;
      }
      const auto here = static_cast<Rank>(std::popcount(words_[word_]));
      if (below_ + here > index) return;
      below_ += here;
      ++word_;
    }
  }

  std::vector<std::uint64_t> words_;
  std::vector<Rank> blocks_;  // ranks in each block
  Rank word_ = 0;             // the pointer
  Rank below_ = 0;            // ranks in the words before it
};

template <class Set>
QUIVERION_ALWAYS_INLINE void AddColumn(Set& set, const Rank* ranks, std::int32_t begin, std::int32_t end) {
  for (std::int32_t j = begin; j < end; ++j) set.Add(ranks[j]);
}

template <class Set>
QUIVERION_ALWAYS_INLINE void RemoveColumn(Set& set, const Rank* ranks, std::int32_t begin, std::int32_t end) {
  for (std::int32_t j = begin; j < end; ++j) set.Remove(ranks[j]);
}

struct MiddleRanks {
  Rank lower, upper;
};

// The middle of `count` > 0 ranks.
template <class Set>
QUIVERION_ALWAYS_INLINE MiddleRanks MiddleOf(Set& set, Rank count) {
  const Rank lower = set.At((count - 1) / 2);
  return {lower, count % 2 == 1 ? lower : set.After(lower)};
}

template <bool hasBlocks>
class RankMedians {
 public:
  RankMedians(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare)
      : field_(field),
        magnitudes_(magnitudes),
        window_(window),
        compare_(compare),
        ranking_(field, magnitudes, compare.needDirection),
        set_(ranking_.Nothing() + kBits * kBlock),
        valid_(field.columnCount, field.rowCount,
               [&](std::int32_t i, std::int32_t j) { return field.status(i, j) > 0; }) {}

  QUIVERION_ALWAYS_INLINE void FillRow(std::int32_t j) {
    const std::int32_t columns = field_.columnCount;
    const std::int32_t begin = std::max(0, j - 1 - window_.halfY), end = std::min(field_.rowCount, j + window_.halfY);
    set_.Clear();
    ClearRow(j);
    for (std::int32_t i = 1; i <= std::min(window_.halfX, columns); ++i) {
      AddColumn(set_, ranking_.Column(i), begin, end);
    }
    for (std::int32_t i = 1; i <= columns; ++i) {
      if (columns - i >= window_.halfX) AddColumn(set_, ranking_.Column(i + window_.halfX), begin, end);
      if (i - 1 > window_.halfX) RemoveColumn(set_, ranking_.Column(i - 1 - window_.halfX), begin, end);
      if (field_.status(i, j) > 0) FillPoint(i, j);
    }
  }

 private:
  void ClearRow(std::int32_t j) {
    const auto clear = [&](Grid<double>& grid) { std::fill_n(grid.Row(j), field_.columnCount, 0.0); };
    if (compare_.needMagnitude) clear(compare_.magnitude);
    if (compare_.needDirection) clear(compare_.x), clear(compare_.y);
  }

  QUIVERION_ALWAYS_INLINE void FillPoint(std::int32_t i, std::int32_t j) {
    const Rank count = valid_.Around(i, j, window_) - 1;
    if (count == 0) return;
    const Rank own = ranking_.Column(i)[j - 1];
    set_.Remove(own);
    const auto [lower, upper] = MiddleOf(set_, count);
    if (IsClear(lower) && IsClear(upper)) {
      Store(i, j, ranking_.PositionOf(lower), ranking_.PositionOf(upper), count % 2 == 1);
    } else {
      MedianBySelectionSort(field_, magnitudes_, window_, i, j, compare_);
    }
    set_.Add(own);
  }

  // Different vectors with the same magnitude: the plain selection sort determines which of them is in the middle.
  bool IsClear(Rank rank) const {
    const auto [begin, end] = ranking_.UnclearGroup(rank);
    return begin == kAlone || set_.HasAtMostOne(begin, end);
  }

  void Store(std::int32_t i, std::int32_t j, std::size_t lower, std::size_t upper, bool odd) {
    const auto middle = [=](const Grid<double>& source) {
      const auto values = source.Values();
      return odd ? values[lower] : (values[upper] + values[lower]) / 2.0;
    };
    if (compare_.needMagnitude) compare_.magnitude(i, j) = middle(magnitudes_.values);
    if (compare_.needDirection) {
      compare_.x(i, j) = middle(field_.velX);
      compare_.y(i, j) = middle(field_.velY);
    }
  }

  const VectorField& field_;
  const Magnitudes& magnitudes_;
  Window window_;
  CompareVectors& compare_;
  Ranking ranking_;
  RankSet<hasBlocks> set_;
  WindowCounts valid_;
};

// One function with everything that is called per point inlined, for the bit instructions of newer processors.
QUIVERION_MULTI_TARGET void FillRows(RankMedians<false>& medians, std::int32_t rows) {
  for (std::int32_t j = 1; j <= rows; ++j) medians.FillRow(j);
}
QUIVERION_MULTI_TARGET void FillRows(RankMedians<true>& medians, std::int32_t rows) {
  for (std::int32_t j = 1; j <= rows; ++j) medians.FillRow(j);
}

template <bool hasBlocks>
void MediansByRankSet(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare) {
  RankMedians<hasBlocks> medians(field, magnitudes, window, compare);
  FillRows(medians, field.rowCount);
}

}  // namespace

void MediansByRank(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare) {
  constexpr std::size_t fewRanks = std::size_t{1} << 18;
  const bool hasBlocks = field.status.Values().size() > fewRanks;
  (hasBlocks ? MediansByRankSet<true> : MediansByRankSet<false>)(field, magnitudes, window, compare);
}

}  // namespace quiverion
