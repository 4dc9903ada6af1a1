#pragma once

#include <optional>

#include "picture/compose.h"

namespace quiverion {

/// A field with what was computed for its last picture, so that the next one (zoomed, moved, other arrows) is cheap.
class ShownField {
 public:
  /// The field must outlive the object. Changed must be called after every change of it.
  explicit ShownField(VectorField& field) : field_(field) {}

  void Changed();

  const VectorField& Field() const { return field_; }

  /// For velocities minus the given one (m/s).
  const FieldSummary& Summary(double subtractU = 0.0, double subtractV = 0.0);

  /// Valid until another quantity is asked for.
  const ShownValues& Values(Quantity quantity);

  Composition Compose(const PictureChoices& choices);

 private:
  VectorField& field_;
  std::optional<FieldSummary> summary_;
  double subtractU_ = 0.0, subtractV_ = 0.0;
  std::optional<ShownValues> values_;
  Quantity quantity_ = Quantity::none;
};

}  // namespace quiverion
