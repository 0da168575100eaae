// The editor's adjustment settings: the ten setters and the adjusted rebuild that
// re-applies every stored setting to a fresh copy of the original picture.
#include <algorithm>
#include <utility>

#include "editor/image_edit_wnd.h"
#include "pixels/pass_plan.h"
#include "pixels/pixel_buffer.h"

namespace {

// 0.0249 as the nearest double above it (bit pattern 0x3F997F62B6AE7D57), so that 40
// maps to exactly 1.0.
constexpr double kGammaStep = 0x1.97F62B6AE7D57p-6;

int ClampSetterArgument(int value) { return std::clamp(value, 0, 200); }

double GammaOf(int argument) { return ClampSetterArgument(argument) * kGammaStep + 0.004; }

// The passes straight from the source bitmap's rows into the image surface's: no
// 24-bit buffer is read or written back, and the bytes are the same. False when the
// rows were not mapped.
bool RunOnSurfaceRows(CImageEditWnd& editor, HBITMAP source, const PassPlan& plan) {
  PixelRows rows;
  if (!editor.MapSurfaceRows(source, editor.m_view.imageRect(), &rows)) return false;
  plan.Run(rows, editor.m_messages.OutOfMemoryReporter());
  return true;
}

// Refills the image rectangle from the original and runs the plan's passes over its
// pixels; false when the pixels could not be read. When the passes will run with
// neutral settings only the refill is needed: reading and writing back would give the
// same pixels. Otherwise the passes go from bitmap rows to bitmap rows where the
// platform offers them, and through the surface's 24-bit buffer where it does not.
bool RebuildImagePixels(CImageEditWnd& editor, const AdjustmentSettings& applied, const PassPlan& plan) {
  const Surface& surface = editor.m_surfaces.imageSurface;
  if (applied.IsNeutral()) {
    editor.RebuildImageSurface();
    return true;
  }
  HBITMAP source = editor.RebuiltImageSource();
  if (RunOnSurfaceRows(editor, source, plan)) return true;
  PixelBuffer buffer = editor.ReadSurfacePixels(surface.dc(), source);
  if (!buffer) {
    if (source != surface.bitmap()) editor.RebuildImageSurface();
    return false;
  }
  plan.Run(buffer.Area(editor.m_view.imageRect()), editor.m_messages.OutOfMemoryReporter());
  editor.WriteSurfacePixels(surface.dc(), surface.bitmap(), std::move(buffer));
  return true;
}

// Both passes with every setting, as every rebuild runs them.
PassPlan AdjustedPlan(const AdjustmentSettings& settings) {
  PassPlan plan;
  plan.AddColors(settings);
  plan.AddFilters(settings);
  return plan;
}

// What every setter does once its argument is mapped: nothing when the value is
// unchanged, otherwise a rebuild that applies the new value, a repaint and a history
// level, all under the wait cursor. The value is stored only when the rebuild could
// read the pixels.
void RunSetter(CImageEditWnd& editor, bool unchanged, const AdjustmentSettings& applied,
               const PassPlan& plan) {
  editor.CloseTextEntry();
  if (!editor.m_surfaces.imageSurface.dc() || unchanged) return;
  editor.BeginWaitCursor();
  if (RebuildImagePixels(editor, applied, plan)) {
    editor.m_settings = applied;
    editor.RedrawWindow();
    editor.CommitHistoryLevel(nullptr, 0, 0);
  }
  editor.EndWaitCursor();
}

// The settings as they stand once `setting` has the new value.
template <typename Value>
AdjustmentSettings With(AdjustmentSettings settings, Value AdjustmentSettings::*setting, Value value) {
  settings.*setting = value;
  return settings;
}

// A colour setting is applied with all the others.
template <typename Value>
void SetColorSetting(CImageEditWnd& editor, Value AdjustmentSettings::*setting, Value value) {
  const AdjustmentSettings applied = With(editor.m_settings, setting, value);
  RunSetter(editor, editor.m_settings.*setting == value, applied, AdjustedPlan(applied));
}

// A filter setting runs last on this call: the passes run with it off, then its filter
// runs alone with the new value. Later rebuilds put it back in the fixed filter order.
template <typename Value, typename AddFilter>
void SetFilterSetting(CImageEditWnd& editor, Value AdjustmentSettings::*setting, Value value,
                      AddFilter&& addAlone) {
  const AdjustmentSettings& settings = editor.m_settings;
  PassPlan plan;
  plan.AddColors(settings);
  plan.AddFilters(With(settings, setting, Value{}));
  addAlone(plan, value);
  RunSetter(editor, settings.*setting == value, With(settings, setting, value), plan);
}

}  // namespace

void CImageEditWnd::RunAdjustedRebuild() { RebuildImagePixels(*this, m_settings, AdjustedPlan(m_settings)); }

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
  const AdjustmentSettings& s = m_settings;
  const bool unchanged = s.redGamma == red && s.greenGamma == green && s.blueGamma == blue;
  AdjustmentSettings applied = s;
  applied.redGamma = red;
  applied.greenGamma = green;
  applied.blueGamma = blue;
  RunSetter(*this, unchanged, applied, AdjustedPlan(applied));
}

void CImageEditWnd::GrayImage(bool bGraying) {
  SetFilterSetting(*this, &AdjustmentSettings::gray, bGraying, [](PassPlan& plan, bool on) {
    if (on) plan.AddGray();
  });
}

void CImageEditWnd::InvertImage(bool bInverting) {
  SetFilterSetting(*this, &AdjustmentSettings::invert, bInverting, [](PassPlan& plan, bool on) {
    if (on) plan.AddInvert();
  });
}

void CImageEditWnd::SharpenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::sharpenSteps, nStep, [](PassPlan& plan, int steps) {
    plan.AddNeighbourhood(NeighbourhoodFilter::Sharpen, steps);
  });
}

void CImageEditWnd::SmoothImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::smoothSteps, nStep, [](PassPlan& plan, int steps) {
    plan.AddNeighbourhood(NeighbourhoodFilter::Smooth, steps);
  });
}

void CImageEditWnd::WhitenImage(int nStep) {
  SetFilterSetting(*this, &AdjustmentSettings::whitenSteps, nStep, [](PassPlan& plan, int steps) {
    plan.AddNeighbourhood(NeighbourhoodFilter::Whiten, steps);
  });
}
