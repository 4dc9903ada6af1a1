#pragma once

#include <array>

#include "picture/picture.h"

/// Colours for values. Neighbouring colours of a palette differ by the same amount everywhere (in Oklab, Ottosson
/// 2020), and lightness alone tells their order, so that every kind of colour vision and grey print can read them.
namespace quiverion {

/// An odd number of colours: the middle one of a diverging palette stands for 0.
inline constexpr std::size_t kPaletteSize = 251;
using Palette = std::array<Colour, kPaletteSize>;

enum class PaletteKind {
  sequential,  ///< from the paper's shade to blue
  diverging    ///< from blue through the paper's shade to orange
};

/// Palettes stay light on light paper and dark on dark paper, so that arrows in black or white are seen on all of them.
const Palette& PaletteOf(PaletteKind kind, bool darkPaper);

/// The ends of a colour bar. Lower is below upper.
struct Limits {
  double lower = 0.0;
  double upper = 1.0;
  bool operator==(const Limits&) const = default;
};

/// Limits around 0 take the diverging palette, whose middle is 0 even if one side is shorter.
PaletteKind KindFor(const Limits& limits);

/// Colours of values. Beyond the limits they are those of the nearer limit, as at the ends of the colour bar.
class PaletteScale {
 public:
  explicit PaletteScale(const Limits& limits);

  /// The index in the palette of KindFor(limits). The value is finite.
  std::size_t IndexOf(double value) const;

 private:
  Limits limits_;
  double factor_ = 0.0;
  double zero_ = 0.0;  // what has index 0.5
};

}  // namespace quiverion
