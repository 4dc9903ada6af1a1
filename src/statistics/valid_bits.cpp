#include "statistics/valid_bits.h"

#include <algorithm>
#include <array>

#include "platform/numeric/multi_target.h"
#include "platform/text/byte_words.h"

namespace quiverion {
namespace {

constexpr std::size_t kBlock = 512;

// `count` is at most kBlock.
QUIVERION_MULTI_TARGET void FlagValid(const std::int32_t* status, std::size_t count, unsigned char* flags) {
  for (std::size_t k = 0; k < count; ++k) flags[k] = status[k] > 0 ? 1 : 0;
}

}  // namespace

ValidBits PackValidBits(std::span<const std::int32_t> status) {
  ValidBits bits(status.size() / 8 + 1);
  std::array<unsigned char, kBlock> flags;
  for (std::size_t begin = 0; begin < status.size(); begin += kBlock) {
    const std::size_t count = std::min(kBlock, status.size() - begin);
    std::fill_n(flags.begin() + static_cast<std::ptrdiff_t>(count / 8 * 8), count % 8 == 0 ? 0 : 8, 0);
    FlagValid(status.data() + begin, count, flags.data());
    for (std::size_t k = 0; k < count; k += 8) bits[(begin + k) / 8] = words::GatherBits(words::Load(flags.data() + k));
  }
  return bits;
}

}  // namespace quiverion
