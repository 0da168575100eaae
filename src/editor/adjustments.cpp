// The editor's adjustment settings: the ten setters and the adjusted rebuild that
// re-applies every stored setting to a fresh copy of the original picture.
#include <algorithm>
#include <utility>

#include "editor/image_edit_wnd.h"
#include "pixels/adjust_colors.h"
#include "pixels/filters.h"

namespace {

// 0.0249 as the nearest double above it (bit pattern 0x3F997F62B6AE7D57), so that 40
// maps to exactly 1.0.
constexpr double kGammaStep = 0x1.97F62B6AE7D57p-6;

int ClampSetterArgument(int value) { return std::clamp(value, 0, 200); }

double GammaOf(int argument) { return ClampSetterArgument(argument) * kGammaStep + 0.004; }

OutOfMemoryHandler ReportOutOfMemory(const CImageEditWnd& editor) {
  return [&editor] {
    if (editor.m_verbose) editor.ShowOutOfMemoryMessage();
  };
}

// Refills the image rectangle from the original, hands its pixels to `passes` and
// writes them back; false when the pixels could not be read.
template <typename Passes>
bool RebuildImagePixels(CImageEditWnd& editor, Passes&& passes) {
  const Surface& surface = editor.m_surfaces.imageSurface;
  editor.RebuildImageSurface();
  PixelBuffer buffer = editor.ReadSurfacePixels(surface.dc(), surface.bitmap());
  if (!buffer) return false;
  passes(buffer.Area(editor.m_view.imageRect));
  editor.WriteSurfacePixels(surface.dc(), surface.bitmap(), std::move(buffer));
  return true;
}

// What every setter does once its argument is mapped: nothing when the value is
// unchanged, otherwise a rebuild whose passes store the new value, a repaint and a
// history level, all under the wait cursor.
template <typename Passes>
void RunSetter(CImageEditWnd& editor, bool unchanged, Passes&& passes) {
  editor.CloseTextEntry();
  if (!editor.m_surfaces.imageSurface.dc() || unchanged) return;
  editor.BeginWaitCursor();
  if (RebuildImagePixels(editor, passes)) {
    editor.RedrawWindow();
    editor.CommitHistoryLevel(nullptr, 0, 0);
  }
  editor.EndWaitCursor();
}

// A colour setting is stored first and then applied with all the others.
template <typename Value>
void SetColorSetting(CImageEditWnd& editor, Value AdjustmentSettings::*setting, Value value) {
  AdjustmentSettings& settings = editor.m_settings;
  RunSetter(editor, settings.*setting == value, [&](const PixelRect& rect) {
    settings.*setting = value;
    AdjustColors(rect, settings);
    ApplyFilters(rect, settings, ReportOutOfMemory(editor));
  });
}

// A filter setting runs last on this call: the passes run with it off, then it is
// stored and its filter runs alone with the new value. Later rebuilds put it back
// in the fixed filter order.
template <typename Value, typename Filter>
void SetFilterSetting(CImageEditWnd& editor, Value AdjustmentSettings::*setting, Value value,
                      Filter&& runAlone) {
  AdjustmentSettings& settings = editor.m_settings;
  RunSetter(editor, settings.*setting == value, [&](const PixelRect& rect) {
    AdjustmentSettings withoutIt = settings;
    withoutIt.*setting = Value{};
    AdjustColors(rect, settings);
    ApplyFilters(rect, withoutIt, ReportOutOfMemory(editor));
    settings.*setting = value;
    runAlone(rect, value);
  });
}

}  // namespace

void CImageEditWnd::RunAdjustedRebuild() {
  RebuildImagePixels(*this, [this](const PixelRect& rect) {
    AdjustColors(rect, m_settings);
    ApplyFilters(rect, m_settings, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::BrightenImage(int nBrightness) {
  SetColorSetting(*this, &AdjustmentSettings::brightness, ClampSetterArgument(nBrightness) - 100);
}

void CImageEditWnd::ContrastImage(int nContrast) {
  SetColorSetting(*this, &AdjustmentSettings::contrast, ClampSetterArgument(nContrast) - 100);
}

void CImageEditWnd::HueImage(int nHue) {
  SetColorSetting(*this, &AdjustmentSettings::hue, ClampSetterArgument(nHue) * 1.8);
}

void CImageEditWnd::SaturateImage(int nSaturation) {
  SetColorSetting(*this, &AdjustmentSettings::saturation, ClampSetterArgument(nSaturation) * 0.01);
}

void CImageEditWnd::CorrectGamma(int nRedGamma, int nGreenGamma, int nBlueGamma) {
  const double red = GammaOf(nRedGamma);
  const double green = GammaOf(nGreenGamma);
  const double blue = GammaOf(nBlueGamma);
  AdjustmentSettings& s = m_settings;
  const bool unchanged = s.redGamma == red && s.greenGamma == green && s.blueGamma == blue;
  RunSetter(*this, unchanged, [&](const PixelRect& rect) {
    s.redGamma = red;
    s.greenGamma = green;
    s.blueGamma = blue;
    AdjustColors(rect, s);
    ApplyFilters(rect, s, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::GrayImage(bool bGraying) {
  SetFilterSetting(*this, &AdjustmentSettings::gray, bGraying, [](const PixelRect& rect, bool on) {
    if (on) GrayPixels(rect);
  });
}

void CImageEditWnd::InvertImage(bool bInverting) {
  SetFilterSetting(*this, &AdjustmentSettings::invert, bInverting, [](const PixelRect& rect, bool on) {
    if (on) InvertPixels(rect);
  });
}

void CImageEditWnd::SharpenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::sharpenSteps, nStep, [this](const PixelRect& rect, int steps) {
    SharpenPixels(rect, steps, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::SmoothImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::smoothSteps, nStep, [this](const PixelRect& rect, int steps) {
    SmoothPixels(rect, steps, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::WhitenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::whitenSteps, nStep, [this](const PixelRect& rect, int steps) {
    WhitenPixels(rect, steps, ReportOutOfMemory(*this));
  });
}
