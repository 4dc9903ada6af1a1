#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>

#include "support/bytes.h"

namespace quiverion::test {

/// Damages files as disks, transfers and people do: bits, numbers, cuts, repetitions, pieces of other files. Seeded,
/// and the same on all systems.
class Damage {
 public:
  explicit Damage(std::uint32_t seed) : random_(seed) {}

  std::size_t Below(std::size_t limit) { return random_() % limit; }

  /// `bytes` with one to four damages; `other` is the source of pieces.
  std::string operator()(std::string bytes, const std::string& other) {
    for (std::size_t k = 0, times = 1 + Below(4); k < times; ++k) Once(bytes, other);
    return bytes;
  }

 private:
  static constexpr std::int32_t kExtremes[] = {
      0, -1, 1, 2, 50, 51, 255, 20000, 32767, -32768, 65535, 1000000, 1 << 30, 2147483647, -2147483647 - 1};

  void Once(std::string& bytes, const std::string& other) {
    // Headers, which contain the counts, are hit as often as all the rest.
    const std::size_t at = Below((Below(2) == 0 ? std::min<std::size_t>(bytes.size(), 300) : bytes.size()) + 1);
    const std::size_t length = std::min(bytes.size() - at, 1 + Below(64));
    const std::size_t number = std::min<std::size_t>(bytes.size() - at, 4);
    switch (Below(8)) {
      case 0:
        if (length > 0) bytes[at] = static_cast<char>(bytes[at] ^ (1 << Below(8)));
        break;
      case 1:
        bytes.insert(at, 1 + Below(9), static_cast<char>(Below(256)));
        break;
      case 2:
        bytes.replace(at, number, Bytes().I32(kExtremes[Below(std::size(kExtremes))]).Get().substr(0, number));
        break;
      case 3:
        bytes.resize(at);
        break;
      case 4:
        bytes.insert(at, bytes.substr(at, length));
        break;
      case 5:
        bytes.erase(at, length);
        break;
      case 6:
        bytes.replace(at, length, other.substr(std::min(at, other.size()), length));
        break;
      default:
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length, Below(2) == 0 ? '\0' : '9');
    }
  }

  std::mt19937_64 random_;
};

}  // namespace quiverion::test
