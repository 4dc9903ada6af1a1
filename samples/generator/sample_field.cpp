#include "sample_field.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <stdexcept>

namespace quiverion::samples {
namespace {

constexpr int kMaxCount = 30000;
constexpr std::int64_t kMaxPoints = std::int64_t{1} << 26;
constexpr int kWindow = 32;      // px
constexpr int kStep = 8;         // px
constexpr int kScale = 80;       // px/cm: one grid step is 1 mm
constexpr int kPulseDelay = 50;  // µs: one pixel of displacement is 2.5 m/s
constexpr int kVortexCount = 4;

// The distributions of <random> differ between libraries; the raw numbers of the engine do not.
class RandomSource {
 public:
  explicit RandomSource(std::uint64_t seed) : engine_(seed) {}

  /// Uniform in [0,1), 53 random bits.
  double Uniform() { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }

  /// Two independent normal numbers (Box-Muller).
  std::array<double, 2> Normal() {
    const double radius = std::sqrt(-2.0 * std::log(1.0 - Uniform()));
    const double angle = 2.0 * std::numbers::pi * Uniform();
    return {radius * std::cos(angle), radius * std::sin(angle)};
  }

 private:
  std::mt19937_64 engine_;
};

// Spreads neighbouring seeds and file numbers over the whole range (the splitmix64 finaliser).
std::uint64_t MixSeed(std::uint64_t seed, std::uint64_t stream) {
  std::uint64_t z = seed + 0x9E3779B97F4A7C15u * (stream + 1);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
  return z ^ (z >> 31);
}

struct Vortex {
  double x = 0;  // mm
  double y = 0;
  double core = 1;  // radius of the largest swirl velocity, mm
  double peak = 0;  // that velocity, m/s; positive turns from x to y
};

struct Flow {
  double width = 0;  // mm
  double height = 0;
  double centreY = 0;        // of the shear layer, mm
  double meanVelocity = 11;  // m/s
  double halfJump = 6.5;     // m/s: 4.5 m/s below and 17.5 m/s above the layer
  std::array<Vortex, kVortexCount> vortices;
};

// The vortices belong to the series (they depend only on the seed) and move by a fixed distance per file. They leave
// the image downstream and re-enter upstream, half a spacing outside on either side.
Flow MakeFlow(const SampleOptions& options, const SampleField& field) {
  Flow flow;
  flow.width = 10.0 * field.imageWidth / field.pixelScale;
  flow.height = 10.0 * field.imageHeight / field.pixelScale;
  flow.centreY = 0.5 * flow.height;
  const double extent = std::min(flow.width, flow.height);
  const double spacing = flow.width / (kVortexCount - 1);
  const double period = spacing * kVortexCount;
  RandomSource random(MixSeed(options.seed, 0));
  for (int k = 0; k < kVortexCount; ++k) {
    Vortex& vortex = flow.vortices[static_cast<std::size_t>(k)];
    const double start = (k + 0.5 + 0.3 * (random.Uniform() - 0.5)) * spacing;
    vortex.x = std::fmod(start + 0.057 * flow.width * options.index, period) - 0.5 * spacing;
    vortex.y = flow.centreY + 0.08 * extent * (random.Uniform() - 0.5);
    vortex.core = extent * (0.045 + 0.02 * random.Uniform());
    vortex.peak = -(3.5 + 2.0 * random.Uniform());  // the same sense as the vorticity of the layer
  }
  return flow;
}

// Swirl velocity of a Lamb-Oseen vortex divided by the radius, so that the centre needs no special case.
double SwirlRate(const Vortex& vortex, double radius2) {
  constexpr double kAlpha = 1.2564312086;  // puts the largest velocity at the core radius
  const double core2 = vortex.core * vortex.core;
  const double factor = vortex.peak * (1.0 + 0.5 / kAlpha) * vortex.core;
  const double exponent = kAlpha * radius2 / core2;
  if (exponent < 1e-12) return factor * kAlpha / core2;
  return -factor * std::expm1(-exponent) / radius2;
}

std::array<double, 2> VelocityAt(const Flow& flow, double x, double y) {
  const double thickness = flow.height * (0.04 + 0.05 * x / flow.width);
  double u = flow.meanVelocity + flow.halfJump * std::tanh((y - flow.centreY) / thickness);
  double v = 0;
  for (const Vortex& vortex : flow.vortices) {
    const double dx = x - vortex.x;
    const double dy = y - vortex.y;
    const double rate = SwirlRate(vortex, dx * dx + dy * dy);
    u -= rate * dy;
    v += rate * dx;
  }
  return {u, v};
}

// A circle upstream and below the layer.
bool InBody(const Flow& flow, double x, double y) {
  const double radius = 0.08 * std::min(flow.width, flow.height);
  const double dx = x - 0.2 * flow.width;
  const double dy = y - 0.25 * flow.height;
  return dx * dx + dy * dy <= radius * radius;
}

// Also removes the last-bit differences between mathematical libraries. The sum turns -0 into 0.
double RoundVelocity(double value) {
  return std::round(value * 1e6) / 1e6 + 0.0;
}

// Every point consumes the same random numbers in any case, so that switching off the holes, the outliers or the body
// does not change any other vector.
void FillPoint(const SampleOptions& options, const Flow& flow, RandomSource& random, SampleField& field, int column,
               int row) {
  const std::array<double, 2> noise = random.Normal();
  const double lot = random.Uniform();
  const double size = 15.0 + 25.0 * random.Uniform();  // m/s
  const double angle = 2.0 * std::numbers::pi * random.Uniform();
  const double x = PositionX(field, column);
  const double y = PositionY(field, row);
  const std::size_t point = PointIndex(field, column, row);
  if (options.maskedBody && InBody(flow, x, y)) {
    field.status[point] = -1;
    return;
  }
  if (lot < options.holeShare) return;
  std::array<double, 2> velocity = VelocityAt(flow, x, y);
  if (lot < options.holeShare + options.outlierShare) {
    velocity[0] += size * std::cos(angle);
    velocity[1] += size * std::sin(angle);
  }
  field.u[point] = RoundVelocity(velocity[0] + options.noise * noise[0]);
  field.v[point] = RoundVelocity(velocity[1] + options.noise * noise[1]);
  field.status[point] = 1;
}

// The image is exactly as large as the outermost interrogation windows need: a reader that places the grid from image,
// window and step then finds the intended number of columns and rows.
void SetGeometry(const SampleOptions& options, SampleField& field) {
  field.columns = options.columns;
  field.rows = options.rows;
  field.windowWidth = kWindow;
  field.windowHeight = kWindow;
  field.gridStep = kStep;
  field.firstPixelX = kWindow / 2;
  field.firstPixelY = kWindow / 2 + (options.rows - 1) * kStep;
  field.imageWidth = field.firstPixelX + (options.columns - 1) * kStep + kWindow / 2;
  field.imageHeight = field.firstPixelY + kWindow / 2;
  field.pixelScale = kScale;
  field.pulseDelay = kPulseDelay;
}

std::string TwoDigits(int value) {
  return {static_cast<char>('0' + value / 10 % 10), static_cast<char>('0' + value % 10)};
}

void SetTexts(int index, SampleField& field) {
  const int second = (36900 + index % 86400 * 2) % 86400;  // from 10:15:00, one pair of images every 2 s
  field.date = "24.11.03";
  field.time = TwoDigits(second / 3600) + ":" + TwoDigits(second / 60 % 60) + ":" + TwoDigits(second % 60);
  field.headerLines = {field.date + " " + field.time,
                       "duese_" + std::to_string(index + 1) + ".tif",
                       "Freistrahl – Scherschicht",
                       "M. Größmann",
                       "Düse, Querschnitt 1",
                       "Nd:YAG, 2 × 120 mJ",
                       "Austrittsfläche 12 cm², Öltröpfchen Ø 1 µm"};
  field.commentLines = {"Scherschicht hinter der Düse", "Lichtschnitt 80 cm², synthetisch"};
}

void SetViewerItems(SampleField& field) {
  const double width = 10.0 * field.imageWidth / field.pixelScale;
  const double height = 10.0 * field.imageHeight / field.pixelScale;
  field.streamlines = {{0.25 * width, 0.5 * height, 1.0, 200.0}, {0.25 * width, 0.625 * height, 2.0, 150.0}};
  field.streamlineSetting = 10;
  field.paletteMin = -2000;
  field.paletteSetting = 0.5;
  field.paletteMax = 2500;
  field.viewerSettings = {1.5, 2.25, 3.125};
  field.showCoordSystem = true;
}

void CheckOptions(const SampleOptions& options) {
  if (options.columns < 1 || options.columns > kMaxCount || options.rows < 1 || options.rows > kMaxCount) {
    throw std::invalid_argument("columns and rows must be from 1 to 30000");
  }
  if (std::int64_t{options.columns} * options.rows > kMaxPoints) {
    throw std::invalid_argument("the grid may have at most 67108864 points");
  }
  if (options.index < 0) throw std::invalid_argument("the index must not be negative");
  if (!std::isfinite(options.noise) || options.noise < 0) {
    throw std::invalid_argument("the noise must be a number of at least 0");
  }
  const bool sharesFit =
      options.outlierShare >= 0 && options.holeShare >= 0 && options.outlierShare + options.holeShare <= 1;
  if (!sharesFit) throw std::invalid_argument("the shares must be at least 0 and together at most 1");
}

}  // namespace

std::size_t PointIndex(const SampleField& field, int column, int row) {
  return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(field.columns) +
         static_cast<std::size_t>(column - 1);
}

double PositionX(const SampleField& field, int column) {
  return static_cast<double>(field.firstPixelX + (column - 1) * field.gridStep) / field.pixelScale * 10.0;
}

double PositionY(const SampleField& field, int row) {
  return static_cast<double>(field.firstPixelY - (row - 1) * field.gridStep) / field.pixelScale * 10.0;
}

std::int32_t ValidVectorCount(const SampleField& field) {
  const auto isValid = [](std::int32_t status) { return status > 0; };
  return static_cast<std::int32_t>(std::count_if(field.status.begin(), field.status.end(), isValid));
}

SampleField MakeSampleField(const SampleOptions& options) {
  CheckOptions(options);
  SampleField field;
  SetGeometry(options, field);
  SetTexts(options.index, field);
  SetViewerItems(field);
  const std::size_t points = static_cast<std::size_t>(field.columns) * static_cast<std::size_t>(field.rows);
  field.u.assign(points, 0.0);
  field.v.assign(points, 0.0);
  field.status.assign(points, 0);
  const Flow flow = MakeFlow(options, field);
  RandomSource random(MixSeed(options.seed, static_cast<std::uint64_t>(options.index) + 1));
  for (int row = 1; row <= field.rows; ++row) {
    for (int column = 1; column <= field.columns; ++column) {
      FillPoint(options, flow, random, field, column, row);
    }
  }
  return field;
}

}  // namespace quiverion::samples
