#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"

/// The bytes of collections, and ways to damage them.
namespace quiverion::test {

inline constexpr std::size_t kCountAt = 31, kColumnsAt = 35, kRowsAt = 39, kHeader = 75;
inline constexpr std::size_t kRecord = 225;  // of 3 x 2 vectors

/// The file with an int32 changed.
inline std::string With(std::string bytes, std::size_t at, std::int32_t value) {
  return bytes.replace(at, 4, Bytes().I32(value).Get());
}

/// The file up to its last counted record.
inline std::string CountedRecords(const std::string& bytes) {
  const auto at = [&bytes](std::size_t position) {
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + position, sizeof value);
    return static_cast<std::size_t>(value);
  };
  const std::size_t vectors = at(kColumnsAt) * at(kRowsAt);
  return bytes.substr(0, kHeader + at(kCountAt) * (128 + 16 * vectors + vectors / 8 + 1));
}

/// Collections that every reader refuses, with the number of the read error; 0: not a collection at all. `good` has 3 x
/// 2 vectors in several fields.
inline std::vector<std::pair<std::string, int>> Damaged(const std::string& good) {
  const auto sized = [&good](std::int32_t columns, std::int32_t rows) {
    return With(With(good, kColumnsAt, columns), kRowsAt, rows);
  };
  return {{"", 0},
          {"quiverion" + good.substr(9), 0},
          {good.substr(0, 30), 62},
          {good.substr(0, kHeader - 1), 62},
          {good.substr(0, good.size() - 1), 62},
          {With(good, kCountAt, 2147483647), 62},
          {With(good, kCountAt, -1), 5},
          {sized(0, 2), 9},
          {sized(3, -2), 9},
          {sized(2147483647, 2147483647), 62},
          {sized(575292019, 1988527723), 62}};  // a record of 147 bytes modulo 2^64
}

}  // namespace quiverion::test
