#pragma once

#include <string>
#include <string_view>

namespace quiverion {

/// Which characters a text box takes.
enum class KeyRule {
  digits,
  unsignedNumber,  // and one point
  signedNumber,    // and a minus sign in front
  factor,          // digits, one point, minus signs
  prefix,          // of a file name: may name subdirectories
  postfix,         // of a file name
};

/// The characters of `typed` that the box takes, one after the other, between what stands to the left and to the right of
/// them (a selection that they replace stands in neither). A comma in a number becomes a point, a slash in a prefix a
/// backslash. Control characters are dropped: a text box has no use for them.
std::u16string FilterKeys(KeyRule rule, std::u16string_view left, std::u16string_view typed, std::u16string_view right);

}  // namespace quiverion
