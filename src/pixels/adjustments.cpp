// The editor's adjustment settings: the ten setters and the adjusted rebuild that
// re-applies every stored setting to a fresh copy of the original picture.
#include <algorithm>

#include "editor/image_edit_wnd.h"
#include "pixels/adjust_colors.h"
#include "pixels/filters.h"

namespace {

// 0.0249 as the nearest double above it (bit pattern 0x3F997F62B6AE7D57), so that 40
// maps to exactly 1.0.
constexpr double kGammaStep = 0x1.97F62B6AE7D57p-6;

int ClampSetterArgument(int value) { return std::clamp(value, 0, 200); }

// The image rectangle as buffer rows counted from the bottom of a surface of that
// height, kept inside the surface.
PixelRect ImageRectInBuffer(BYTE* buffer, const RECT& imageRect, int width, int height, int stride) {
  const int left = std::clamp(static_cast<int>(imageRect.left), 0, width);
  const int right = std::clamp(static_cast<int>(imageRect.right), left, width);
  const int top = std::clamp(static_cast<int>(imageRect.top), 0, height);
  const int bottom = std::clamp(static_cast<int>(imageRect.bottom), top, height);
  return PixelRect{buffer, left, height - bottom, right, height - top, stride};
}

OutOfMemoryHandler ReportOutOfMemory(const CImageEditWnd& editor) {
  return [&editor] {
    if (editor.m_verbose) editor.ShowOutOfMemoryMessage();
  };
}

void RunColorPass(const PixelRect& r, const AdjustmentSettings& s) {
  AdjustColors(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride, s.brightness, s.contrast, s.redGamma, s.greenGamma,
               s.blueGamma, s.saturation, s.hue);
}

void RunFilterPass(const PixelRect& r, const AdjustmentSettings& s, const OutOfMemoryHandler& outOfMemory) {
  ApplyFilters(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride, s.whitenSteps, s.sharpenSteps, s.smoothSteps,
               s.invert, s.gray, outOfMemory);
}

// Refills the image rectangle from the original, hands its pixels to `passes` and
// writes them back; false when the pixels could not be read.
template <typename Passes>
bool RebuildImagePixels(CImageEditWnd& editor, Passes&& passes) {
  Surface& surface = editor.m_imageSurface;
  editor.RebuildImageSurface();
  int width = 0;
  int height = 0;
  int stride = 0;
  BYTE* buffer = editor.ReadSurfacePixels(surface.dc, surface.bitmap, &width, &height, &stride);
  if (!buffer) return false;
  passes(ImageRectInBuffer(buffer, editor.m_imageRect, width, height, stride));
  editor.WriteSurfacePixels(surface.dc, surface.bitmap, buffer);
  return true;
}

// What every setter does once its argument is mapped: nothing when the value is
// unchanged, otherwise a rebuild whose passes store the new value, a repaint and a
// history level, all under the wait cursor.
template <typename Passes>
void RunSetter(CImageEditWnd& editor, bool unchanged, Passes&& passes) {
  // Text being entered is committed here once the text tool exists.
  if (!editor.m_imageSurface.dc || unchanged) return;
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
    RunColorPass(rect, settings);
    RunFilterPass(rect, settings, ReportOutOfMemory(editor));
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
    RunColorPass(rect, settings);
    RunFilterPass(rect, withoutIt, ReportOutOfMemory(editor));
    settings.*setting = value;
    runAlone(rect, value);
  });
}

}  // namespace

void CImageEditWnd::RunAdjustedRebuild() {
  RebuildImagePixels(*this, [this](const PixelRect& rect) {
    RunColorPass(rect, m_settings);
    RunFilterPass(rect, m_settings, ReportOutOfMemory(*this));
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
  const double red = ClampSetterArgument(nRedGamma) * kGammaStep + 0.004;
  const double green = ClampSetterArgument(nGreenGamma) * kGammaStep + 0.004;
  const double blue = ClampSetterArgument(nBlueGamma) * kGammaStep + 0.004;
  AdjustmentSettings& s = m_settings;
  const bool unchanged = s.redGamma == red && s.greenGamma == green && s.blueGamma == blue;
  RunSetter(*this, unchanged, [&](const PixelRect& rect) {
    s.redGamma = red;
    s.greenGamma = green;
    s.blueGamma = blue;
    RunColorPass(rect, s);
    RunFilterPass(rect, s, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::GrayImage(bool bGraying) {
  SetFilterSetting(*this, &AdjustmentSettings::gray, bGraying, [](const PixelRect& r, bool on) {
    if (on) GrayPixels(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride);
  });
}

void CImageEditWnd::InvertImage(bool bInverting) {
  SetFilterSetting(*this, &AdjustmentSettings::invert, bInverting, [](const PixelRect& r, bool on) {
    if (on) InvertPixels(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride);
  });
}

void CImageEditWnd::SharpenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::sharpenSteps, nStep, [this](const PixelRect& r, int steps) {
    SharpenPixels(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride, steps, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::SmoothImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::smoothSteps, nStep, [this](const PixelRect& r, int steps) {
    SmoothPixels(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride, steps, ReportOutOfMemory(*this));
  });
}

void CImageEditWnd::WhitenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::whitenSteps, nStep, [this](const PixelRect& r, int steps) {
    WhitenPixels(r.buffer, r.x0, r.y0, r.x1, r.y1, r.stride, steps, ReportOutOfMemory(*this));
  });
}
