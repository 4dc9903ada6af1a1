#pragma once

#include <string>

#include "picture/picture.h"

namespace quiverion {

/// A picture as an SVG 1.1 file, UTF-8, lines ending in "\n". Coordinates have two decimals. `fontFamily` is a list of
/// CSS names.
std::string SvgOf(const Picture& picture, std::string_view fontFamily = "DejaVu Sans, Arial, sans-serif");

}  // namespace quiverion
