#include "operations/kernels/interpolation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "operations/kernels/interpolation_plain.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/float_errors.h"

namespace quiverion {
namespace {

constexpr std::uint8_t kAllNeighbours = 8;

// Position of a vector, counted from 0.
struct Place {
  std::uint32_t column, row;
};

enum Found : std::int32_t { kInvalid = 1, kMarked = 2 };

// Which of the two statuses that matter here occur. Most of a field has neither, so whole blocks are skipped.
QUIVERION_MULTI_TARGET std::int32_t FindStatuses(const std::int32_t* status, std::size_t count) {
  std::int32_t found = 0;
  for (std::size_t p = 0; p < count; ++p) {
    found |= (status[p] == 0 ? kInvalid : 0) | (status[p] == plain::kFilledInThisPass ? kMarked : 0);
  }
  return found;
}

// Fills the same vectors in the same passes as the plain loops, but looks only at the invalid ones: they are in buckets
// by the number of their valid neighbours, and filling a vector moves its neighbours up. Each is visited at most nine
// times, so the cost of a hole is its size, not its size times its depth.
class HoleFiller {
 public:
  explicit HoleFiller(VectorField& field)
      : field_(field),
        width_(static_cast<std::uint32_t>(field.columnCount)),
        height_(static_cast<std::uint32_t>(field.rowCount)),
        status_(field.status.Values()),
        velX_(field.velX.Values()),
        velY_(field.velY.Values()),
        counts_(status_.size(), 0) {
    CollectInvalid();
  }

  // False if invalid vectors remain that cannot be reached from a valid one. Throws SystemError.
  bool Fill() {
    while (left_ > 0) {
      const std::uint8_t most = TakeFullest();
      if (most == 0) return false;
      FillPass(most);
      for (const Place place : pass_) status_[At(place)] = plain::kFilled;
      if (most < kAllNeighbours) {  // otherwise no neighbour is left to be filled
        for (const Place place : pass_) {
          ForEachNeighbourOf(place, [this](std::uint32_t column, std::uint32_t row) { GainNeighbour({column, row}); });
        }
      }
      left_ -= pass_.size();
    }
    return true;
  }

 private:
  struct Mean {
    double u, v;
  };

  std::size_t At(Place place) const { return std::size_t{place.row} * width_ + place.column; }

  // Calls visit(column, row) for the neighbourhood of a place, column by column, the place itself included.
  template <class Visit>
  QUIVERION_ALWAYS_INLINE void ForEachNeighbourOf(Place place, Visit visit) const {
    if (place.column - 1 < width_ - 2 && place.row - 1 < height_ - 2) {  // inside (unsigned: no value is below 0)
      for (std::uint32_t column = 0; column < 3; ++column) {
        for (std::uint32_t row = 0; row < 3; ++row) visit(place.column - 1 + column, place.row - 1 + row);
      }
      return;
    }
    const std::uint32_t left = place.column - (place.column > 0), right = place.column + (place.column + 1 < width_);
    const std::uint32_t down = place.row - (place.row > 0), up = place.row + (place.row + 1 < height_);
    for (std::uint32_t column = left; column <= right; ++column) {
      for (std::uint32_t row = down; row <= up; ++row) visit(column, row);
    }
  }

  // Takes the invalid vectors of a row into `places` without a branch each, and returns how many there are.
  std::size_t TakeInvalid(std::uint32_t row, std::uint32_t begin, std::uint32_t end, Place* places) const {
    const std::int32_t* const status = &status_[At({0, row})];
    std::size_t count = 0;
    for (std::uint32_t column = begin; column < end; ++column) {
      places[count] = {column, row};
      count += status[column] == 0 ? 1 : 0;
    }
    return count;
  }

  void CollectInvalid() {
    constexpr std::uint32_t block = 64;
    Place places[block];
    std::vector<Place> invalid;
    for (std::uint32_t row = 0; row < height_; ++row) {
      for (std::uint32_t begin = 0; begin < width_; begin += block) {
        const std::uint32_t end = std::min(begin + block, width_);
        std::int32_t* const status = &status_[At({begin, row})];
        const std::int32_t found = FindStatuses(status, end - begin);
        if (found & kMarked) std::replace(status, status + (end - begin), plain::kFilledInThisPass, plain::kFilled);
        if (found & kInvalid) invalid.insert(invalid.end(), places, places + TakeInvalid(row, begin, end, places));
      }
    }
    for (const Place place : invalid) {
      std::uint8_t count = 0;
      ForEachNeighbourOf(place, [&](std::uint32_t column, std::uint32_t row) {
        count = static_cast<std::uint8_t>(count + (status_[At({column, row})] > 0));
      });
      counts_[At(place)] = count;
      buckets_[count].push_back(place);
    }
    left_ = invalid.size();
  }

  void GainNeighbour(Place place) {
    if (status_[At(place)] == 0) buckets_[++counts_[At(place)]].push_back(place);
  }

  // Takes the vectors with the most valid neighbours into `pass_` and returns that number. A vector that has moved up
  // to a later bucket was filled from there.
  std::uint8_t TakeFullest() {
    for (std::uint8_t count = kAllNeighbours; count > 0; --count) {
      pass_.swap(buckets_[count]);
      buckets_[count].clear();
      std::erase_if(pass_, [this](Place place) { return status_[At(place)] != 0; });
      if (!pass_.empty()) return count;
    }
    return 0;
  }

  // All means are computed before the first vector is filled, so that no vector of a pass uses another one of the same
  // pass.
  void FillPass(std::uint8_t count) {
    means_.resize(pass_.size());
    if (RaisesFloatError([&] { TakeMeans(count); })) {
      FillChecked();
      return;
    }
    for (std::size_t n = 0; n < pass_.size(); ++n) {
      velX_[At(pass_[n])] = means_[n].u;
      velY_[At(pass_[n])] = means_[n].v;
    }
    ChangeValidCount(field_, static_cast<std::int64_t>(pass_.size()));
  }

  void TakeMeans(std::uint8_t count) {
    for (std::size_t n = 0; n < pass_.size(); ++n) {
      means_[n] = count == kAllNeighbours ? MeanOfAll(pass_[n]) : MeanOfValid(pass_[n], count);
    }
  }

  Mean MeanOfAll(Place place) const {
    double u = 0.0, v = 0.0;
    ForEachNeighbourOf(place, [&](std::uint32_t column, std::uint32_t row) {
      if (column == place.column && row == place.row) return;
      u += velX_[At({column, row})];
      v += velY_[At({column, row})];
    });
    return {u / kAllNeighbours, v / kAllNeighbours};
  }

  // Invalid vectors (at least the place itself) add +0.0, which changes no sum.
  Mean MeanOfValid(Place place, std::uint8_t count) const {
    double u = 0.0, v = 0.0;
    ForEachNeighbourOf(place, [&](std::uint32_t column, std::uint32_t row) {
      const std::size_t p = At({column, row});
      const Mask valid = MaskOf(status_[p] > 0);
      u += SelectOrZero(valid, velX_[p]);
      v += SelectOrZero(valid, velY_[p]);
    });
    return {u / count, v / count};
  }

  // Fills the vectors of the pass in visiting order, up to the one at which the computation stops.
  void FillChecked() {
    std::sort(pass_.begin(), pass_.end(),
              [](Place a, Place b) { return a.column != b.column ? a.column < b.column : a.row < b.row; });
    for (const Place place : pass_) {
      plain::FillFromNeighbours<CheckedReal>(field_, static_cast<std::int32_t>(place.column) + 1,
                                             static_cast<std::int32_t>(place.row) + 1);
    }
  }

  VectorField& field_;
  std::uint32_t width_, height_;
  std::span<std::int32_t> status_;
  std::span<double> velX_, velY_;
  std::vector<std::uint8_t> counts_;  // valid neighbours of the invalid vectors
  std::array<std::vector<Place>, kAllNeighbours + 1> buckets_;
  std::vector<Place> pass_;
  std::vector<Mean> means_;
  std::size_t left_ = 0;
};

}  // namespace

bool Interpolate(VectorField& field) {
  return HoleFiller(field).Fill();
}

}  // namespace quiverion
