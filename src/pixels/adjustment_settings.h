// The stored tonal and filter settings, re-applied to the original picture on every
// adjusted rebuild, plus the blend factor.
#pragma once

struct AdjustmentSettings {
  bool gray = false;
  int sharpenSteps = 0;
  int smoothSteps = 0;
  int brightness = 0;
  int contrast = 0;
  double hue = 0.0;
  double saturation = 1.0;
  double redGamma = 1.0;
  double greenGamma = 1.0;
  double blueGamma = 1.0;
  bool invert = false;
  double blend = 0.0;
  int whitenSteps = 0;

  bool operator==(const AdjustmentSettings&) const = default;

  // Whether both passes leave every pixel as it is (each of their steps is skipped),
  // so that a rebuild with these settings need not read the pixels at all.
  bool IsNeutral() const {
    return brightness == 0 && contrast == 0 && redGamma == 1.0 && greenGamma == 1.0 && blueGamma == 1.0 &&
           hue == 0.0 && saturation == 1.0 && whitenSteps <= 0 && sharpenSteps <= 0 && smoothSteps <= 0 &&
           !invert && !gray;
  }
};
