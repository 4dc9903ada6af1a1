// Medians of small windows: a sorting network whose wires are the places of the window, run for many output points side
// by side.
#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "operations/kernels/compare_vectors.h"
#include "platform/numeric/bit_select.h"

namespace quiverion {
namespace {

struct Comparator {
  std::size_t low, high;       // wires: the smaller value goes to `low`
  bool lowIsUsed, highIsUsed;  // by a later comparator or as a result
};

template <std::size_t N>
struct Network {
  std::array<Comparator, N * N> comparators{};
  std::size_t count = 0;

  constexpr void Add(const Comparator& comparator) { comparators[count++] = comparator; }
};

// Batcher's merge exchange for N values (Knuth, The Art of Computer Programming 3, algorithm 5.2.2M), reduced to what
// the two middle results need.
template <std::size_t N>
constexpr Network<N> MakeMedianNetwork() {
  Network<N> all;
  const std::size_t top = std::bit_ceil(N) / 2;
  for (std::size_t p = top; p > 0; p /= 2) {
    std::size_t q = top, r = 0, d = p;
    for (;;) {
      for (std::size_t i = 0; i + d < N; ++i) {
        if ((i & p) == r) all.Add({i, i + d, false, false});
      }
      if (q == p) break;
      d = q - p, q /= 2, r = p;
    }
  }
  std::array<bool, N> used{};
  used[N / 2 - 1] = used[N / 2] = true;
  Network<N> kept;
  for (std::size_t k = all.count; k-- > 0;) {
    const auto [low, high, unused1, unused2] = all.comparators[k];
    if (!used[low] && !used[high]) continue;
    kept.Add({low, high, used[low], used[high]});
    used[low] = used[high] = true;
  }
  Network<N> network;
  for (std::size_t k = kept.count; k-- > 0;) network.Add(kept.comparators[k]);
  return network;
}

template <std::size_t N>
constexpr Network<N> kMedianNetwork = MakeMedianNetwork<N>();

// A window of Width x Width places without its centre. Places are counted column by column.
template <std::size_t Width>
struct Shape {
  static constexpr std::size_t width = Width;
  static constexpr std::size_t places = Width * Width - 1;
  static constexpr std::size_t Term(std::size_t place) { return place < places / 2 ? place : place + 1; }
  static constexpr std::size_t Column(std::size_t place) { return Term(place) / Width; }
  static constexpr std::size_t Row(std::size_t place) { return Term(place) % Width; }
};

// The rows under a window, beginning with its first column for output column 1. The magnitude is 0 for invalid vectors.
template <std::size_t Width>
struct WindowRows {
  const double* magnitude[Width];
  const Mask* invalid[Width];
  const double* u[Width];
  const double* v[Width];
};

// The two middle magnitudes of one row of points: `lower` is the middle one if the number of vectors is odd; then `odd`
// has all bits set. Without any vector, `lower` is -infinity.
struct Middle {
  std::vector<double> lower, upper;
  std::vector<Mask> odd;
  explicit Middle(std::size_t count) : lower(count), upper(count), odd(count) {}
};

template <std::size_t N, std::size_t... C>
QUIVERION_ALWAYS_INLINE void RunNetwork(double (&wires)[N], std::index_sequence<C...> /*comparators*/) {
  const auto compare = [&wires]<std::size_t c>() QUIVERION_LAMBDA_INLINE {
    constexpr Comparator comparator = kMedianNetwork<N>.comparators[c];
    const double a = wires[comparator.low], b = wires[comparator.high];
    if constexpr (comparator.lowIsUsed) wires[comparator.low] = a < b ? a : b;
    if constexpr (comparator.highIsUsed) wires[comparator.high] = a > b ? a : b;
  };
  (compare.template operator()<C>(), ...);
}

// Places without a vector alternate between +infinity and -infinity, so that the middle of the vectors is the middle of
// the wires. With an odd number of vectors there is one more +infinity, and the lower middle is that of the vectors.
template <class ShapeType, std::size_t... P>
QUIVERION_ALWAYS_INLINE void FindMiddle(const WindowRows<ShapeType::width>& rows, std::size_t count,
                                        double* __restrict lower, double* __restrict upper, Mask* __restrict odd,
                                        std::index_sequence<P...> /*places*/) {
  constexpr std::size_t n = ShapeType::places;
  constexpr Mask infinity = std::bit_cast<Mask>(std::numeric_limits<double>::infinity());
  constexpr Mask sign = Mask{1} << 63;
  const WindowRows<ShapeType::width> in = rows;
  for (std::size_t i = 0; i < count; ++i) {
    double wires[n];
    Mask turn = 0;
    const auto load = [&]<std::size_t p>() QUIVERION_LAMBDA_INLINE {
      constexpr std::size_t row = ShapeType::Row(p), column = ShapeType::Column(p);
      const Mask invalid = in.invalid[row][i + column];
      const Mask filler = invalid & (infinity | (turn & sign));
      wires[p] = std::bit_cast<double>(std::bit_cast<Mask>(in.magnitude[row][i + column]) | filler);
      turn ^= invalid;
    };
    (load.template operator()<P>(), ...);
    RunNetwork(wires, std::make_index_sequence<kMedianNetwork<n>.count>());
    lower[i] = wires[n / 2 - 1];
    upper[i] = wires[n / 2];
    odd[i] = turn;
  }
}

// The vector whose magnitude is `wanted`; `unclear` gets all bits if several different vectors have it.
template <class ShapeType, std::size_t... P>
QUIVERION_ALWAYS_INLINE void FindVector(const WindowRows<ShapeType::width>& rows, std::size_t count,
                                        const double* wanted, double* __restrict u, double* __restrict v,
                                        Mask* __restrict unclear, std::index_sequence<P...> /*places*/) {
  const WindowRows<ShapeType::width> in = rows;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t i = 0; i < count; ++i) {
    // Bits that are set in some vector of this magnitude, and bits that are set in all.
    Mask someU = 0, someV = 0, allU = ~Mask{0}, allV = ~Mask{0}, found = 0;
    const double magnitude = wanted[i];
    const auto look = [&]<std::size_t p>() QUIVERION_LAMBDA_INLINE {
      constexpr std::size_t row = ShapeType::Row(p), column = ShapeType::Column(p);
      const Mask match = MaskOf(in.magnitude[row][i + column] == magnitude) & ~in.invalid[row][i + column];
      const Mask bitsU = std::bit_cast<Mask>(in.u[row][i + column]), bitsV = std::bit_cast<Mask>(in.v[row][i + column]);
      someU |= bitsU & match, someV |= bitsV & match;
      allU &= bitsU | ~match, allV &= bitsV | ~match;
      found |= match;
    };
    (look.template operator()<P>(), ...);
    u[i] = std::bit_cast<double>(someU);
    v[i] = std::bit_cast<double>(someV);
    const Mask different = ((someU ^ allU) | (someV ^ allV)) & found;
    unclear[i] = MaskOf(different != 0);
  }
}

// The rows of a field with a border of invalid vectors.
class BorderedRows {
 public:
  BorderedRows(const VectorField& field, const Magnitudes& magnitudes, std::int32_t border, bool withVectors)
      : border_(static_cast<std::size_t>(border)),
        width_(static_cast<std::size_t>(field.columnCount) + 2 * border_),
        elements_(width_ * (static_cast<std::size_t>(field.rowCount) + 2 * border_)),
        magnitude_(elements_, 0.0),
        invalid_(elements_, ~Mask{0}),
        u_(withVectors ? elements_ : 0, 0.0),
        v_(withVectors ? elements_ : 0, 0.0) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      const std::size_t begin = (static_cast<std::size_t>(j - 1) + border_) * width_ + border_;
      const auto columns = static_cast<std::size_t>(field.columnCount);
      std::copy_n(magnitudes.values.Row(j), columns, magnitude_.data() + begin);
      const std::int32_t* const status = field.status.Row(j);
      for (std::size_t i = 0; i < columns; ++i) invalid_[begin + i] = MaskOf(status[i] <= 0);
      if (!withVectors) continue;
      std::copy_n(field.velX.Row(j), columns, u_.data() + begin);
      std::copy_n(field.velY.Row(j), columns, v_.data() + begin);
    }
  }

  // The rows under the windows of output row j.
  template <std::size_t Width>
  WindowRows<Width> Under(std::int32_t j) const {
    WindowRows<Width> rows{};
    for (std::size_t l = 0; l < Width; ++l) {
      const std::size_t begin = (static_cast<std::size_t>(j - 1) + l) * width_;
      rows.magnitude[l] = magnitude_.data() + begin;
      rows.invalid[l] = invalid_.data() + begin;
      rows.u[l] = u_.empty() ? nullptr : u_.data() + begin;
      rows.v[l] = v_.empty() ? nullptr : v_.data() + begin;
    }
    return rows;
  }

 private:
  std::size_t border_, width_, elements_;
  std::vector<double> magnitude_;
  std::vector<Mask> invalid_;
  std::vector<double> u_, v_;
};

using Shape3 = Shape<3>;
using Shape5 = Shape<5>;
template <class ShapeType>
using Places = std::make_index_sequence<ShapeType::places>;

QUIVERION_MULTI_TARGET_CALL(FindMiddle3, (const WindowRows<3>& rows, std::size_t count, Middle& middle),
                            (rows, count, middle),
                            FindMiddle<Shape3>(rows, count, middle.lower.data(), middle.upper.data(), middle.odd.data(),
                                               Places<Shape3>()))
QUIVERION_MULTI_TARGET_CALL(FindMiddle5, (const WindowRows<5>& rows, std::size_t count, Middle& middle),
                            (rows, count, middle),
                            FindMiddle<Shape5>(rows, count, middle.lower.data(), middle.upper.data(), middle.odd.data(),
                                               Places<Shape5>()))
QUIVERION_MULTI_TARGET_CALL(FindVector3,
                            (const WindowRows<3>& rows, std::size_t count, const double* wanted, double* u, double* v,
                             Mask* unclear),
                            (rows, count, wanted, u, v, unclear),
                            FindVector<Shape3>(rows, count, wanted, u, v, unclear, Places<Shape3>()))
QUIVERION_MULTI_TARGET_CALL(FindVector5,
                            (const WindowRows<5>& rows, std::size_t count, const double* wanted, double* u, double* v,
                             Mask* unclear),
                            (rows, count, wanted, u, v, unclear),
                            FindVector<Shape5>(rows, count, wanted, u, v, unclear, Places<Shape5>()))

// The middle value, or the mean of the two; 0 if there is none.
QUIVERION_MULTI_TARGET void Combine(const Middle& middle, const double* atLower, const double* atUpper,
                                    std::size_t count, double* __restrict target) {
  const double* const lower = middle.lower.data();
  const Mask* const odd = middle.odd.data();
  for (std::size_t i = 0; i < count; ++i) {
    const double mean = (atUpper[i] + atLower[i]) / 2.0;
    target[i] = SelectOrZero(MaskOf(lower[i] >= 0.0), Select(odd[i], atLower[i], mean));
  }
}

// Directions of one row, once its middle magnitudes are known.
template <std::size_t Width, class Find>
class DirectionRow {
 public:
  DirectionRow(std::size_t count, Find find) : find_(find), lower_(count), upper_(count) {}

  void Fill(const WindowRows<Width>& rows, const Middle& middle, double* x, double* y) {
    const std::size_t count = middle.lower.size();
    find_(rows, count, middle.lower.data(), lower_.u.data(), lower_.v.data(), lower_.unclear.data());
    find_(rows, count, middle.upper.data(), upper_.u.data(), upper_.v.data(), upper_.unclear.data());
    Combine(middle, lower_.u.data(), upper_.u.data(), count, x);
    Combine(middle, lower_.v.data(), upper_.v.data(), count, y);
  }

  // Several different vectors have a middle magnitude: the order of the plain selection sort decides.
  bool IsUnclear(std::size_t i, const Middle& middle) const {
    return lower_.unclear[i] != 0 || (middle.odd[i] == 0 && upper_.unclear[i] != 0);
  }

 private:
  struct Found {
    std::vector<double> u, v;
    std::vector<Mask> unclear;
    explicit Found(std::size_t count) : u(count), v(count), unclear(count) {}
  };
  Find find_;
  Found lower_, upper_;
};

template <std::size_t Width, class FindMiddleFunction, class FindVectorFunction>
void MediansOf(const VectorField& field, const Magnitudes& magnitudes, CompareVectors& compare,
               FindMiddleFunction findMiddle, FindVectorFunction findVector) {
  constexpr auto half = static_cast<std::int32_t>(Width / 2);
  const auto columns = static_cast<std::size_t>(field.columnCount);
  const BorderedRows source(field, magnitudes, half, compare.needDirection);
  Middle middle(columns);
  DirectionRow<Width, FindVectorFunction> directions(compare.needDirection ? columns : 0, findVector);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    const WindowRows<Width> rows = source.Under<Width>(j);
    findMiddle(rows, columns, middle);
    if (compare.needMagnitude) {
      Combine(middle, middle.lower.data(), middle.upper.data(), columns, compare.magnitude.Row(j));
    }
    if (!compare.needDirection) continue;
    directions.Fill(rows, middle, compare.x.Row(j), compare.y.Row(j));
    for (std::size_t i = 0; i < columns; ++i) {
      if (!directions.IsUnclear(i, middle)) continue;
      MedianBySelectionSort(field, magnitudes, {half, half}, static_cast<std::int32_t>(i) + 1, j, compare);
    }
  }
}

}  // namespace

void Medians(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare) {
  const bool isSquare = window.halfX == window.halfY && !magnitudes.haveNaN;
  if (isSquare && window.halfX == 1) {
    MediansOf<3>(field, magnitudes, compare, FindMiddle3, FindVector3);
  } else if (isSquare && window.halfX == 2) {
    MediansOf<5>(field, magnitudes, compare, FindMiddle5, FindVector5);
  } else {
    MediansByRank(field, magnitudes, window, compare);
  }
}

}  // namespace quiverion
