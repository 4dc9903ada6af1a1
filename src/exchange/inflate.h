#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "field/grid.h"

namespace quiverion::exchange {

using ByteBlock = std::vector<char, UninitialisedAllocator<char>>;

/// The first `wanted` bytes of a zlib stream. Memory grows with what has really been inflated, so a header that
/// promises too much costs nothing. Throws FormatError that names `position`, the byte of the file where the stream
/// begins, if it is damaged, ends before or becomes large out of nearly nothing; with `mayBeShorter` the end is no
/// error.
ByteBlock Inflate(std::string_view compressed, std::size_t wanted, std::size_t position, bool mayBeShorter = false);

}  // namespace quiverion::exchange
