#pragma once

#include <optional>

#include "picture/compose.h"

namespace quiverion {

enum class Subtracted { nothing, mean, typed };

/// What a person has chosen while looking at a series. Whatever is not chosen is as each file says.
struct ViewWishes {
  std::optional<Quantity> quantity{};  ///< as in the file if none
  std::optional<Limits> limits{};      ///< typed ones
  ArrowMode mode = ArrowMode::proportional;
  ArrowAnchor anchor = ArrowAnchor::middle;
  double factor = 1.0;  ///< of the length, besides that of the file
  Subtracted subtracted = Subtracted::nothing;
  double subtractU = 0.0, subtractV = 0.0;  ///< m/s, if typed
  bool holdScale = true;                    ///< one scale for the whole series
  bool equalScales = true;
  std::optional<bool> coordinateSystem{}, header{}, arrows{};
  std::array<bool, kStatusKinds> hidden{};
};

/// The scale of a series, for one quantity.
struct HeldScale {
  Quantity quantity = Quantity::none;
  std::optional<StatisticResult> result;  ///< of fields like these; a measured field has none
  double reference = 0.0;                 ///< m/s
  Limits limits;
};

/// The choices for the picture of a field; `summary` is that of its velocities as they are. Limits are, in this order:
/// typed ones, those of the file if its own background is shown, held ones, automatic ones. Held references are those
/// of the velocities as they are, so they do not count if something is subtracted.
PictureChoices ChoicesFor(const VectorField& field, const FieldSummary& summary, const ViewWishes& wishes,
                          const std::optional<HeldScale>& held);

/// The quantity that is shown of a field.
Quantity QuantityFor(const VectorField& field, const ViewWishes& wishes);

}  // namespace quiverion
