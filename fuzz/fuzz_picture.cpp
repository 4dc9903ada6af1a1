#include <cstddef>
#include <cstdint>

#include "picture/readout.h"
#include "picture/svg.h"
#include "round_trip.h"
#include "support/picture_check.h"

// The bytes are a VAS file; its palette limits, as bits, also choose what is shown and how large.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quiverion;
  test::TestSession program;
  if (!fuzz::LoadBytes(program, "in.vas", std::string(data, data + size))) return 0;
  VectorField& field = program.context.field;
  const auto bits =
      std::bit_cast<std::uint64_t>(field.paletteMin) ^ std::bit_cast<std::uint64_t>(field.paletteMax) ^ size;
  PictureChoices choices = ChoicesOf(field);
  choices.width = static_cast<double>(1 + bits % 700);
  choices.height = static_cast<double>(1 + bits / 700 % 500);
  choices.quantity = AllQuantities()[bits / 7 % AllQuantities().size()].quantity;
  choices.mode = static_cast<ArrowMode>(bits % 3);
  choices.darkPaper = bits % 2 == 1;
  choices.processed = bits % 5 == 0;
  for (const bool zoomed : {false, true}) {
    if (zoomed) choices.view = Extent{field.posX[0], field.posX[0] + 1e-3, -1e3, field.paletteMax};
    const bool usable = !zoomed || (choices.view->left < choices.view->right &&
                                    choices.view->lower < choices.view->upper && std::isfinite(choices.view->Height()));
    if (!usable) continue;
    const Picture picture = Compose(field, choices).picture;
    fuzz::Demand(test::WrongInPicture(picture).empty(), test::WrongInPicture(picture));
    fuzz::Demand(SvgOf(picture).ends_with("</svg>\n"), "no end");
  }
  ReadoutText(field, {field.columnCount, field.rowCount});
  return 0;
}
