#pragma once

#include <string>
#include <string_view>

namespace quiverion {

/// Which characters a text box accepts.
enum class KeyRule {
  digits,
  unsignedNumber,  // and one point
  signedNumber,    // and a minus sign in front
  factor,          // digits, one point, minus signs
  prefix,          // of a file name: may name subdirectories
  postfix,         // of a file name
};

/// The characters of `typed` that the box accepts, one after the other, between the text to the left and the text to
/// the right of them (neither includes a selection that they replace). A comma in a number becomes a point, a slash in
/// a prefix a backslash. Control characters are dropped.
std::u16string FilterKeys(KeyRule rule, std::u16string_view left, std::u16string_view typed, std::u16string_view right);

}  // namespace quiverion
