#include "pixels/adjust_colors.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "pixels/pass_plan.h"

namespace {

// The weights of the grey that saturation moves towards and hue rotates about,
// paired with bytes 0, 1 and 2 of a pixel in that order.
constexpr double kGreyWeights[3] = {0.3086, 0.6094, 0.0820};
// The double nearest 1/255; gamma multiplies by it rather than dividing.
constexpr double kInverse255 = 0.00392156862745098;
// Degrees to radians with pi taken as 3.1415.
constexpr double kRadiansPerDegree = 0.01745277777777778;

BYTE ClampByte(int value) { return static_cast<BYTE>(std::clamp(value, 0, 255)); }

template <typename Entry>
LookupTable BuildTable(Entry&& entry) {
  LookupTable table{};
  for (int i = 0; i < 256; ++i) table[static_cast<size_t>(i)] = ClampByte(entry(i));
  return table;
}

LookupTable BrightnessTable(int brightness) {
  return BuildTable(
      [&](int i) { return static_cast<int>(i + static_cast<double>(255 * brightness) * 0.01); });
}

LookupTable ContrastTable(int contrast) {
  const int k = contrast + 100;
  const int offset = static_cast<int>((1.0 - k * 0.01) * 255 * 0.5);
  return BuildTable([&](int i) { return static_cast<int>((i * k) * 0.01) + offset; });
}

LookupTable GammaTable(double gamma) {
  return BuildTable([&](int i) { return static_cast<int>(std::pow(i * kInverse255, gamma) * 255.0); });
}

ColorMatrix Identity() {
  ColorMatrix m{};
  for (int i = 0; i < 4; ++i) m[i][i] = 1.0;
  return m;
}

// m becomes m x step. Each entry sums its four products from the last to the first:
// the order decides the last bit of the matrix, and with it whether a near-grey
// colour truncates to the byte below (at 1.8 degrees (1, 1, 1) becomes (1, 1, 0)).
void Apply(ColorMatrix& m, const ColorMatrix& step) {
  ColorMatrix product{};
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 4; ++c) {
      double sum = 0.0;
      for (int k = 3; k >= 0; --k) sum += m[r][k] * step[k][c];
      product[r][c] = sum;
    }
  }
  m = product;
}

ColorMatrix SaturationMatrix(double s) {
  ColorMatrix m{};
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) m[r][c] = (1.0 - s) * kGreyWeights[r] + (r == c ? s : 0.0);
  }
  m[3][3] = 1.0;
  return m;
}

// A rotation in the plane of axes i and j: [i][i] = [j][j] = c, [i][j] = s,
// [j][i] = -s. The x, y and z rotations are the planes (1, 2), (2, 0) and (0, 1).
ColorMatrix PlaneRotation(int i, int j, double s, double c) {
  ColorMatrix m = Identity();
  m[i][i] = c;
  m[i][j] = s;
  m[j][i] = -s;
  m[j][j] = c;
  return m;
}
ColorMatrix RotateX(double s, double c) { return PlaneRotation(1, 2, s, c); }
ColorMatrix RotateY(double s, double c) { return PlaneRotation(2, 0, s, c); }
ColorMatrix RotateZ(double s, double c) { return PlaneRotation(0, 1, s, c); }

ColorMatrix ShearZ(double p, double q) {
  ColorMatrix m = Identity();
  m[0][2] = p;
  m[1][2] = q;
  return m;
}

// Turns the grey axis onto z, shears so that the grey weights' point lies on it too,
// rotates about z by the angle and undoes the rest, so the weighted grey of every
// colour is kept.
ColorMatrix HueMatrix(double degrees) {
  const double invSqrt2 = 1.0 / std::sqrt(2.0);
  const double sqrt2BySqrt3 = std::sqrt(2.0) / std::sqrt(3.0);
  const double invSqrt3 = 1.0 / std::sqrt(3.0);
  ColorMatrix h = Identity();
  Apply(h, RotateX(invSqrt2, invSqrt2));
  Apply(h, RotateY(-invSqrt3, sqrt2BySqrt3));
  double l[3];
  for (int c = 0; c < 3; ++c) {
    l[c] = kGreyWeights[0] * h[0][c] + kGreyWeights[1] * h[1][c] + kGreyWeights[2] * h[2][c] + h[3][c];
  }
  Apply(h, ShearZ(l[0] / l[2], l[1] / l[2]));
  const double t = degrees * kRadiansPerDegree;
  Apply(h, RotateZ(std::sin(t), std::cos(t)));
  Apply(h, ShearZ(-l[0] / l[2], -l[1] / l[2]));
  Apply(h, RotateY(invSqrt3, sqrt2BySqrt3));
  Apply(h, RotateX(-invSqrt2, invSqrt2));
  return h;
}

}  // namespace

std::vector<ByteTables> ColorTableSteps(const AdjustmentSettings& settings) {
  std::vector<ByteTables> steps;
  if (settings.brightness != 0) {
    const LookupTable table = BrightnessTable(settings.brightness);
    steps.push_back({{table, table, table}});
  }
  if (settings.contrast != 0) {
    const LookupTable table = ContrastTable(settings.contrast);
    steps.push_back({{table, table, table}});
  }
  if (settings.redGamma != 1.0 || settings.greenGamma != 1.0 || settings.blueGamma != 1.0) {
    // The first gamma of the triple acts on byte 0, the blue byte, and the last on
    // the red byte; the names follow the order the triple is given in.
    steps.push_back(
        {{GammaTable(settings.redGamma), GammaTable(settings.greenGamma), GammaTable(settings.blueGamma)}});
  }
  return steps;
}

std::optional<ColorMatrix> ColorMatrixStep(const AdjustmentSettings& settings) {
  if (settings.hue == 0.0 && settings.saturation == 1.0) return std::nullopt;
  ColorMatrix m = Identity();
  Apply(m, SaturationMatrix(settings.saturation));
  Apply(m, HueMatrix(settings.hue));
  return m;
}

void AdjustColors(const PixelRect& rect, const AdjustmentSettings& settings) {
  PassPlan plan;
  plan.AddColors(settings);
  plan.Run(rect);
}
