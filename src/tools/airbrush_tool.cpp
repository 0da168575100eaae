#include "tools/airbrush_tool.h"

#include <algorithm>
#include <cstdlib>

#include "editor/image_edit_wnd.h"
#include "resources/cursor_table.h"
#include "tools/drag_area.h"

// r * r * 3.14 truncated, over the density. Worked in 64 bits: the diameter is
// whatever the host set, and a radius near 2^30 would overflow 32-bit arithmetic.
long long SprayTries(int radius, int density) {
  if (density <= 0) return 0;
  const double area = static_cast<double>(radius) * radius * 3.14;
  const long long tries = static_cast<long long>(std::min(area, 1e18)) / density;
  return std::min(tries, kMaxSprayTries);
}

void AirbrushTool::Press(POINT point) { SprayAt(point, density_); }

std::optional<RECT> AirbrushTool::Move(POINT point) {
  Stroke().lastPoint = point;
  density_ = kFullAirbrushDensity;
  SprayAt(point, kFullAirbrushDensity);
  return SprayArea(point);
}

void AirbrushTool::Release(POINT) {
  editor_.m_surfaces.CopyLayerToSnapshot();
  Stroke().lastPoint = POINT{0, 0};
  StopSpraying();
  density_ = kFullAirbrushDensity;
}

int AirbrushTool::Cursor() const { return kArrowSprayCursor; }

// The timer fires whatever tool is chosen meanwhile, with the width and colour of the
// moment.
void AirbrushTool::SprayAgain() {
  editor_.KillTimer(kSprayTimerId);
  sprayTimerId_ = 0;
  if (!Layer()) return;
  density_ >>= 1;
  const POINT last = Stroke().lastPoint;
  SprayAt(last, density_);
  editor_.RepaintSurfaceArea(SprayArea(last));
}

void AirbrushTool::StopSpraying() {
  if (sprayTimerId_ == 0) return;
  editor_.KillTimer(sprayTimerId_);
  sprayTimerId_ = 0;
}

// Each try picks a point in one quadrant of the square around the centre and keeps
// it only inside the disc: four tries a round, one per quadrant.
void AirbrushTool::SprayAirBrush(HDC dc, int cx, int cy, int radius, int density) {
  const long long tries = SprayTries(radius, density);
  const long long limit = static_cast<long long>(radius) * radius;
  const POINT signs[4] = {{-1, -1}, {1, 1}, {-1, 1}, {1, -1}};
  const COLORREF color = editor_.m_tools.color;
  for (long long i = 0; i < tries; ++i) {
    for (const POINT sign : signs) {
      const long long a = platform::Rand() % radius;
      const long long b = platform::Rand() % radius;
      if (a * a + b * b <= limit) {
        SetPixel(dc, static_cast<int>(cx + sign.x * a), static_cast<int>(cy + sign.y * b), color);
      }
    }
  }
  if (density > 1) sprayTimerId_ = editor_.SetTimer(kSprayTimerId, kSprayIntervalMs, nullptr);
}

void AirbrushTool::SprayAt(POINT pointer, int density) {
  const int width = Width();
  const POINT centre = ToolCorner(pointer, width);
  SprayAirBrush(Layer(), centre.x, centre.y, width / 2, density);
}

RECT AirbrushTool::SprayArea(POINT pointer) const {
  const int width = Width();
  const POINT centre = ToolCorner(pointer, width);
  return PaintedArea(centre, centre, std::abs(static_cast<long long>(width / 2)));
}
