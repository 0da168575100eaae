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

// Rows of the buffer read, passed and written back together while they are in the
// cache, when every pass works pixel by pixel.
constexpr int kBlockRows = 64;

PixelRect RowsOf(const PixelRect& rect, int first, int end) {
  PixelRect part = rect;
  part.y0 = std::max(rect.y0, first);
  part.y1 = std::min(rect.y1, end);
  return part;
}

// Refills the image rectangle from the original, hands its pixels to `passes` and
// writes them back; false when the pixels could not be read. When the passes will run
// with neutral settings only the refill is needed: reading and writing back would
// give the same pixels. When no neighbourhood filter runs, every output pixel depends
// on that pixel alone, so the buffer goes through the passes a block of rows at a
// time, with the same result.
template <typename Passes>
bool RebuildImagePixels(CImageEditWnd& editor, const AdjustmentSettings& applied, Passes&& passes) {
  const Surface& surface = editor.m_surfaces.imageSurface;
  if (applied.IsNeutral()) {
    editor.RebuildImageSurface();
    return true;
  }
  HBITMAP source = editor.RebuiltImageSource();
  const bool pixelwise = applied.whitenSteps <= 0 && applied.sharpenSteps <= 0 && applied.smoothSteps <= 0;
  PixelBuffer buffer = pixelwise ? editor.AllocateSurfacePixels(surface.dc(), source)
                                 : editor.ReadSurfacePixels(surface.dc(), source);
  if (!buffer) {
    if (source != surface.bitmap()) editor.RebuildImageSurface();
    return false;
  }
  const PixelRect image = buffer.Area(editor.m_view.imageRect);
  if (!pixelwise) {
    passes(image);
    editor.WriteSurfacePixels(surface.dc(), surface.bitmap(), std::move(buffer));
    return true;
  }
  for (int first = 0; first < buffer.height(); first += kBlockRows) {
    const int count = std::min(kBlockRows, buffer.height() - first);
    ReadBitmapRows(surface.dc(), source, buffer, first, count);
    passes(RowsOf(image, first, first + count));
    WriteBitmapRows(surface.dc(), surface.bitmap(), buffer, first, count);
  }
  return true;
}

// What every setter does once its argument is mapped: nothing when the value is
// unchanged, otherwise a rebuild whose passes store the new value, a repaint and a
// history level, all under the wait cursor.
template <typename Passes>
void RunSetter(CImageEditWnd& editor, bool unchanged, const AdjustmentSettings& applied, Passes&& passes) {
  editor.CloseTextEntry();
  if (!editor.m_surfaces.imageSurface.dc() || unchanged) return;
  editor.BeginWaitCursor();
  if (RebuildImagePixels(editor, applied, passes)) {
    // The passes store the new value as they go; a neutral rebuild runs none of them.
    editor.m_settings = applied;
    editor.RedrawWindow();
    editor.CommitHistoryLevel(nullptr, 0, 0);
  }
  editor.EndWaitCursor();
}

// A colour setting is stored first and then applied with all the others.
// The settings as they stand once `setting` has the new value: what the passes apply.
template <typename Value>
AdjustmentSettings With(AdjustmentSettings settings, Value AdjustmentSettings::*setting, Value value) {
  settings.*setting = value;
  return settings;
}

template <typename Value>
void SetColorSetting(CImageEditWnd& editor, Value AdjustmentSettings::*setting, Value value) {
  AdjustmentSettings& settings = editor.m_settings;
  RunSetter(editor, settings.*setting == value, With(settings, setting, value), [&](const PixelRect& rect) {
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
  RunSetter(editor, settings.*setting == value, With(settings, setting, value), [&](const PixelRect& rect) {
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
  RebuildImagePixels(*this, m_settings, [this](const PixelRect& rect) {
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
  AdjustmentSettings applied = s;
  applied.redGamma = red;
  applied.greenGamma = green;
  applied.blueGamma = blue;
  RunSetter(*this, unchanged, applied, [&](const PixelRect& rect) {
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
