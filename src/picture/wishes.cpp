#include "picture/wishes.h"

namespace quiverion {

Quantity QuantityFor(const VectorField& field, const ViewWishes& wishes) {
  return wishes.quantity.value_or(ChoicesOf(field).quantity);
}

PictureChoices ChoicesFor(const VectorField& field, const FieldSummary& summary, const ViewWishes& wishes,
                          const std::optional<HeldScale>& held) {
  PictureChoices choices = ChoicesOf(field);
  if (wishes.quantity && *wishes.quantity != choices.quantity) {
    choices.quantity = *wishes.quantity;
    choices.limits.reset();
  }
  choices.equalScales = wishes.equalScales;
  const bool holds = wishes.holdScale && held && held->result == StatisticResultOf(field);
  if (!choices.limits && holds && held->quantity == choices.quantity) choices.limits = held->limits;
  if (wishes.limits) choices.limits = wishes.limits;
  choices.mode = wishes.mode;
  choices.anchor = wishes.anchor;
  choices.factor *= wishes.factor;
  choices.coordinateSystem = wishes.coordinateSystem.value_or(choices.coordinateSystem);
  choices.header = wishes.header.value_or(choices.header);
  choices.arrows = wishes.arrows.value_or(choices.arrows);
  choices.hidden = wishes.hidden;
  if (wishes.subtracted == Subtracted::mean) {
    choices.subtractU = summary.meanU;
    choices.subtractV = summary.meanV;
  } else if (wishes.subtracted == Subtracted::typed) {
    choices.subtractU = wishes.subtractU;
    choices.subtractV = wishes.subtractV;
  } else if (holds) {
    choices.reference = held->reference;
  }
  return choices;
}

}  // namespace quiverion
