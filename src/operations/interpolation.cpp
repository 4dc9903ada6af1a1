#include "operations/interpolation.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "field/frames.h"
#include "operations/interpolation_plain.h"
#include "platform/float_errors.h"
#include "platform/lanes.h"

namespace quiverion {
namespace {

using Position = std::size_t;  // of an element in memory, from 0

bool IsInteresting(std::int32_t status) {
  return status == 0 || status == plain::kFilledInThisPass;
}

// True where one of the statuses is interesting; most of a field is not, so whole blocks are passed over.
QUIVERION_MULTI_TARGET bool HasInteresting(const std::int32_t* status, std::size_t count) {
  std::int32_t found = 0;
  for (std::size_t p = 0; p < count; ++p) {
    found |= (status[p] == 0 ? 1 : 0) | (status[p] == plain::kFilledInThisPass ? 1 : 0);
  }
  return found != 0;
}

template <class Visit>
void ForEachInteresting(std::span<const std::int32_t> status, Visit visit) {
  constexpr std::size_t block = 64;
  for (Position begin = 0; begin < status.size(); begin += block) {
    const std::size_t count = std::min(block, status.size() - begin);
    if (!HasInteresting(status.data() + begin, count)) continue;
    for (Position p = begin; p < begin + count; ++p) {
      if (IsInteresting(status[p])) visit(p);
    }
  }
}

// Fills the same vectors in the same passes as the plain loops, but looks only at the invalid ones: they lie in buckets
// by the number of their valid neighbours, and filling a vector moves its neighbours up. Each is looked at no more than
// nine times, so a hole costs its size and not its size times its depth.
class HoleFiller {
 public:
  explicit HoleFiller(VectorField& field)
      : field_(field),
        width_(static_cast<std::size_t>(field.columnCount)),
        height_(static_cast<std::size_t>(field.rowCount)),
        status_(field.status.Values()),
        velX_(field.velX.Values()),
        velY_(field.velY.Values()),
        counts_(status_.size(), 0) {
    CollectInvalid();
  }

  // False where invalid vectors remain that no valid one leads to. Throws SystemError.
  bool Fill() {
    while (left_ > 0) {
      const std::uint8_t most = TakeFullest();
      if (most == 0) return false;
      FillPass(most);
      for (const Position p : pass_) status_[p] = plain::kFilled;
      for (const Position p : pass_) ForEachNeighbourOf(p, [this](Position q) { GainNeighbour(q); });
      left_ -= pass_.size();
    }
    return true;
  }

 private:
  struct Mean {
    double u, v;
  };

  std::int32_t ColumnOf(Position p) const { return static_cast<std::int32_t>(p % width_) + 1; }
  std::int32_t RowOf(Position p) const { return static_cast<std::int32_t>(p / width_) + 1; }

  // Calls visit(position) for the neighbourhood of p, column by column, p included.
  template <class Visit>
  QUIVERION_ALWAYS_INLINE void ForEachNeighbourOf(Position p, Visit visit) const {
    const std::size_t column = p % width_, row = p / width_;
    const Position left = column > 0 ? p - 1 : p, right = column + 1 < width_ ? p + 1 : p;
    const std::size_t down = row > 0 ? width_ : 0, up = row + 1 < height_ ? width_ : 0;
    for (Position middle = left; middle <= right; ++middle) {
      for (Position q = middle - down; q <= middle + up; q += width_) visit(q);
    }
  }

  void CollectInvalid() {
    std::vector<Position> invalid;
    ForEachInteresting(status_, [&](Position p) {
      if (status_[p] == 0) {
        invalid.push_back(p);
      } else {
        status_[p] = plain::kFilled;
      }
    });
    for (const Position p : invalid) {
      ForEachNeighbourOf(p, [&](Position q) { counts_[p] = static_cast<std::uint8_t>(counts_[p] + (status_[q] > 0)); });
      buckets_[counts_[p]].push_back(p);
    }
    left_ = invalid.size();
  }

  void GainNeighbour(Position p) {
    if (status_[p] == 0) buckets_[++counts_[p]].push_back(p);
  }

  // Takes the vectors with the most valid neighbours into `pass_` and returns that number. What has been filled or has
  // moved on to another bucket meanwhile is dropped.
  std::uint8_t TakeFullest() {
    for (std::uint8_t count = 8; count > 0; --count) {
      pass_.swap(buckets_[count]);
      buckets_[count].clear();
      std::erase_if(pass_, [&](Position p) { return status_[p] != 0 || counts_[p] != count; });
      if (!pass_.empty()) return count;
    }
    return 0;
  }

  // All means are taken before the first vector is filled, so that none of a pass is a neighbour in it.
  void FillPass(std::uint8_t count) {
    means_.resize(pass_.size());
    const FloatErrorScope errors;
    TakeMeans(count);
    if (errors.Raised()) {
      FillChecked();
      return;
    }
    for (std::size_t n = 0; n < pass_.size(); ++n) {
      velX_[pass_[n]] = means_[n].u;
      velY_[pass_[n]] = means_[n].v;
    }
    field_.validVectorCount += static_cast<std::int32_t>(pass_.size());
  }

  // Not inlined: its floating-point flags are read after it. An invalid neighbour adds +0.0, which changes no sum.
  QUIVERION_NO_INLINE void TakeMeans(std::uint8_t count) {
    const double divisor = count;
    for (std::size_t n = 0; n < pass_.size(); ++n) {
      double u = 0.0, v = 0.0;
      ForEachNeighbourOf(pass_[n], [&](Position q) {
        const Mask valid = MaskOf(status_[q] > 0);
        u += SelectOrZero(valid, velX_[q]);
        v += SelectOrZero(valid, velY_[q]);
      });
      means_[n] = {u / divisor, v / divisor};
    }
  }

  // The vectors of the pass in visiting order, up to the one at which the computation stops.
  void FillChecked() {
    std::sort(pass_.begin(), pass_.end(), [this](Position a, Position b) {
      return ColumnOf(a) != ColumnOf(b) ? ColumnOf(a) < ColumnOf(b) : a < b;
    });
    for (const Position p : pass_) plain::FillFromNeighbours<CheckedReal>(field_, ColumnOf(p), RowOf(p));
  }

  VectorField& field_;
  std::size_t width_, height_;
  std::span<std::int32_t> status_;
  std::span<double> velX_, velY_;
  std::vector<std::uint8_t> counts_;  // valid neighbours of the invalid vectors
  std::array<std::vector<Position>, 9> buckets_;
  std::vector<Position> pass_;
  std::vector<Mean> means_;
  std::size_t left_ = 0;
};

}  // namespace

bool Interpolate(VectorField& field) {
  return HoleFiller(field).Fill();
}

void InterpolateInvalidVectors(Context& context) {
  context.log.WriteLogLine("Interpolation... ");
  if (!Interpolate(context.field)) {
    LogLines(context.log, {kErrorMark, "    Interpolation mit den vorhandenen Daten nicht möglich!"});
    context.runHadError = true;
  }
  LogLines(context.log, {"fertig"});
}

}  // namespace quiverion
