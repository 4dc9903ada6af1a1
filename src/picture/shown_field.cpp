#include "picture/shown_field.h"

namespace quiverion {

void ShownField::Changed() {
  summary_.reset();
  values_.reset();
}

const FieldSummary& ShownField::Summary(double subtractU, double subtractV) {
  if (!summary_ || subtractU != subtractU_ || subtractV != subtractV_) {
    summary_ = Summarise(field_, subtractU, subtractV);
    subtractU_ = subtractU;
    subtractV_ = subtractV;
  }
  return *summary_;
}

const ShownValues& ShownField::Values(Quantity quantity) {
  if (!values_ || quantity != quantity_) values_ = ShowValues(field_, quantity);
  quantity_ = quantity;
  return *values_;
}

Composition ShownField::Compose(const PictureChoices& choices) {
  const FieldSummary& summary = Summary(choices.subtractU, choices.subtractV);
  return quiverion::Compose(field_, summary, Values(choices.quantity), choices);
}

}  // namespace quiverion
