#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace quiverion {

/// Leaves new elements of trivial types uninitialised, for memory that is overwritten at once.
template <class T>
class UninitialisedAllocator : public std::allocator<T> {
 public:
  template <class U>
  struct rebind {
    using other = UninitialisedAllocator<U>;
  };
  template <class U, class... Arguments>
  void construct(U* place, Arguments&&... arguments) {
    if constexpr (sizeof...(Arguments) == 0) {
      ::new (static_cast<void*>(place)) U;
    } else {
      ::new (static_cast<void*>(place)) U(std::forward<Arguments>(arguments)...);
    }
  }
};

/// A two-dimensional array, one-based: element (column i, row j), the column index running fastest.
template <class T>
class Grid {
 public:
  Grid() = default;
  Grid(std::int32_t columns, std::int32_t rows) { Reset(columns, rows); }

  /// New size, every element 0.
  void Reset(std::int32_t columns, std::int32_t rows) { elements_.assign(SetSize(columns, rows), T{}); }

  /// New size, elements unspecified: the caller overwrites all of them.
  void ResetUninitialised(std::int32_t columns, std::int32_t rows) {
    const std::size_t count = SetSize(columns, rows);
    if (count > elements_.capacity()) elements_.clear();  // the old elements need not be moved
    elements_.resize(count);
  }

  std::int32_t Columns() const { return columns_; }
  std::int32_t Rows() const { return rows_; }

  T& operator()(std::int32_t i, std::int32_t j) { return elements_[Position(i, j)]; }
  const T& operator()(std::int32_t i, std::int32_t j) const { return elements_[Position(i, j)]; }

  /// Elements (1, j), (2, j), ... of row j.
  T* Row(std::int32_t j) { return elements_.data() + Position(1, j); }
  const T* Row(std::int32_t j) const { return elements_.data() + Position(1, j); }

  /// All elements, row 1 first.
  std::span<T> Values() { return elements_; }
  std::span<const T> Values() const { return elements_; }

 private:
  std::size_t SetSize(std::int32_t columns, std::int32_t rows) {
    columns_ = columns;
    rows_ = rows;
    return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
  }
  std::size_t Position(std::int32_t i, std::int32_t j) const {
    return static_cast<std::size_t>(j - 1) * static_cast<std::size_t>(columns_) + static_cast<std::size_t>(i - 1);
  }

  std::int32_t columns_ = 0;
  std::int32_t rows_ = 0;
  std::vector<T, UninitialisedAllocator<T>> elements_;
};

}  // namespace quiverion
