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
};
