// What is around the plot can be read, and says the same as the plot.
#include "picture/frame.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include "picture/scales.h"

#include "platform/text/text.h"
#include "support/field_builder.h"

namespace quiverion::test {
namespace {

VectorField Flow(std::int32_t columns, std::int32_t rows, const char* fileName = "a.vas", const char* info = "") {
  VectorField field = MakeField(columns, rows);
  SetVelocities(
      field, [](double, double y) { return y; }, [](double x, double) { return 0.1 * x; });
  field.fileName = fileName;
  field.infoText = info;
  return field;
}

// The place of a text in common fonts.
Rectangle PlaceOf(const Label& label) {
  const double width = 0.6 * label.size * static_cast<double>(CharacterCount(label.text));
  if (label.upwards) return {label.at.x - label.size / 2.0, label.at.y - width / 2.0, label.size, width};
  const double before = label.align == Align::start ? 0.0 : label.align == Align::end ? width : width / 2.0;
  return {label.at.x - before, label.at.y - label.size / 2.0, width, label.size};
}

struct Scene {
  const char* name;
  VectorField field;
  PictureChoices choices;
};

std::vector<Scene> Scenes() {
  const char* const means = "Mittelwerte erzeugt aus der Kollektion: S.col";
  std::vector<Scene> scenes = {
      {"long", Flow(60, 10), {.quantity = Quantity::swirl2}},
      {"high", Flow(4, 70), {.quantity = Quantity::vorticity}},
      {"product", Flow(60, 10, "SUSTIMESVS.VAS", means), {}},
      {"zoomed", Flow(50, 40), {.view = Extent{20.0, 20.0004, 10.0, 10.0003}}},
      {"few", Flow(2, 2), {}},
      {"few and long", Flow(2, 2), {.factor = 3.0}},
      {"equal length", Flow(2, 2), {.mode = ArrowMode::equalLength, .factor = 3.0}},
      {"square root", Flow(3, 2), {.equalScales = false, .mode = ArrowMode::squareRoot, .factor = 1e300}},
      {"backwards", Flow(3, 2), {.equalScales = false, .factor = -2.0}},
  };
  for (Scene& scene : scenes) {
    const Quantity quantity = ChoicesOf(scene.field).quantity;
    if (quantity != Quantity::none) scene.choices.quantity = quantity;
    for (const std::int32_t status : {0, -1, 2, 3, 4})
      scene.field.status.Values()[static_cast<std::size_t>(status + 1) % 4] = status;
  }
  return scenes;
}

TEST(Frame, TextsLieInThePictureAndApart) {
  for (Scene& scene : Scenes()) {
    for (const auto& [width, height] : {std::pair(400.0, 300.0), {700.0, 400.0}, {1200.0, 900.0}}) {
      scene.choices.width = width, scene.choices.height = height;
      const Picture picture = Compose(scene.field, scene.choices).picture;
      for (std::size_t k = 0; k < picture.labels.size(); ++k) {
        const Label& label = picture.labels[k];
        const Rectangle place = PlaceOf(label);
        EXPECT_TRUE(place.left >= 0.0 && place.top >= 0.0 && place.Right() <= width && place.Bottom() <= height)
            << scene.name << " " << width << ": " << label.text;
        for (std::size_t n = 0; n < k; ++n) {
          const Rectangle other = PlaceOf(picture.labels[n]);
          EXPECT_FALSE(place.left < other.Right() && other.left < place.Right() && place.top < other.Bottom() &&
                       other.top < place.Bottom())
              << scene.name << " " << width << ": " << picture.labels[n].text << " and " << label.text;
        }
        for (const Shapes& shapes : picture.shapes) {
          for (const Segment& line : shapes.lines) {
            const bool through = line.from.y == line.to.y && !shapes.inPlot && line.from.y > place.top &&
                                 line.from.y < place.Bottom() && std::min(line.from.x, line.to.x) < place.Right() &&
                                 std::max(line.from.x, line.to.x) > place.left;
            EXPECT_FALSE(through) << scene.name << " " << width << ": a line through " << label.text;
          }
        }
      }
    }
  }
}

// An arrow that is cut, in the plot or below it, stands for no speed.
TEST(Frame, TheReferenceArrowIsThatOfItsSpeed) {
  for (const double factor : {0.1, 1.0, 3.0, 40.0, -3.0}) {
    VectorField field = Flow(5, 4);
    const Picture picture =
        Compose(field, {.width = 400.0, .height = 300.0, .factor = factor, .reference = 4.0}).picture;
    const double step = picture.plot.width / 5.0;
    const double below = picture.plot.Bottom() + 10.0;
    for (const Label& label : picture.labels) {
      if (!label.text.ends_with(" m/s")) continue;
      double left = 1e9, right = -1e9;
      for (const Shapes& shapes : picture.shapes) {
        for (const Segment& line : shapes.lines) {
          if (line.from.y != label.at.y || line.from.y < below) continue;
          left = std::min(left, line.from.x), right = std::max(right, line.to.x);
        }
      }
      std::string number = label.text.substr(0, label.text.find(' '));
      std::ranges::replace(number, ',', '.');
      const double expected = 0.9 * step * std::fabs(factor) * std::stod(number) / 4.0;
      EXPECT_NEAR(right - left, expected, 0.3 * expected) << factor << ": without its head";
    }
  }
}

TEST(Frame, EveryTickHasItsOwnText) {
  const std::pair<double, double> ranges[] = {{20, 20.0004}, {-1e6, -999994},    {123456, 123456.03}, {1e7, 1e7 + 5},
                                              {0, 3e-9},     {0.99999, 1.00001}, {-5e8, 5e8},         {0, 70}};
  for (const auto& [lower, upper] : ranges) {
    const Ticks ticks = TicksBetween(lower, upper, 6);
    std::set<std::string> texts;
    for (const double value : ticks.values) texts.insert(TickText(value, ticks.step));
    EXPECT_GE(texts.size(), 3u);
    EXPECT_EQ(texts.size(), ticks.values.size()) << lower << ": " << *texts.begin();
  }
}

// XML has no place for control characters and two others, whatever a name contains.
TEST(Frame, DrawnTextsAreCharactersOfXml) {
  const std::tuple<const char*, std::size_t, const char*> cases[] = {{"a\x01\x7F\r\n", 9, "a    "},
                                                                     {"\xEF\xBF\xBE|\xEF\xBF\xBF", 9, "\uFFFD|\uFFFD"},
                                                                     {"D\xFC", 9, "D\uFFFD"},
                                                                     {"\xED\xA0\x80", 9, "\uFFFD\uFFFD\uFFFD"},
                                                                     {"Düsenstrahl", 11, "Düsenstrahl"},
                                                                     {"Düsenstrahl", 4, "Düs…"},
                                                                     {"\xF0\x9F\x8C\x8A", 9, "\U0001F30A"}};
  for (const auto& [text, characters, expected] : cases) EXPECT_EQ(DrawnText(text, characters), expected) << expected;
}

}  // namespace
}  // namespace quiverion::test
