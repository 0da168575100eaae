// The destructive effects: pixels changed once, when the operation is called, instead
// of a setting that every rebuild applies again. The quarter turn changes the original
// picture itself and so lasts. The others change the image surface as it shows now
// and last until the surface is next refilled from the original (by any adjustment,
// undo, redo or new width); a history level records the settings, not those pixels.
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "editor/image_edit_wnd.h"
#include "imageio/image_loader.h"
#include "pixels/convolve.h"
#include "pixels/equalize.h"
#include "pixels/line_patterns.h"
#include "pixels/mirror.h"
#include "pixels/pixel_buffer.h"
#include "pixels/pixel_rows.h"
#include "pixels/rotate.h"

namespace {

// The surface's rows of `area` (kept inside the surface) as an effect works on them,
// bottom row first as a 24-bit buffer holds them: the surface's own rows where they
// are mapped, else a buffer of the whole surface read and written back. False when
// the pixels could not be read.
template <typename Effect>
bool ChangeSurfaceRows(CImageEditWnd& editor, const RECT& area, Effect&& effect) {
  const Surface& surface = editor.m_surfaces.imageSurface;
  PixelRows rows;
  if (editor.MapSurfaceRows(surface.bitmap(), area, &rows)) {
    rows.TurnOver();
    effect(rows);
    return true;
  }
  PixelBuffer pixels = editor.ReadSurfacePixels(surface.dc(), surface.bitmap());
  if (!pixels) return false;
  effect(RowsOf(pixels.Area(area)));
  editor.WriteSurfacePixels(surface.dc(), surface.bitmap(), std::move(pixels));
  return true;
}

// The image surface's pixels of `area` changed by `effect`, shown at once and
// recorded by a history level without a drawing-layer snapshot. The surface is not
// rebuilt first: the effect works on what it shows, adjustments and earlier effects
// included. Nothing happens when the pixels cannot be read.
template <typename Effect>
void RewriteImageSurface(CImageEditWnd& editor, const RECT& area, Effect&& effect) {
  if (!ChangeSurfaceRows(editor, area, std::forward<Effect>(effect))) return;
  editor.RedrawWindow();
  editor.CommitHistoryLevel(nullptr, 0, 0);
}

// Every surface effect closes text entry first and needs the image surface.
template <typename Effect>
void RunSurfaceEffect(CImageEditWnd& editor, const RECT& area, Effect&& effect) {
  editor.CloseTextEntry();
  if (!editor.m_surfaces.imageSurface.dc()) return;
  RewriteImageSurface(editor, area, std::forward<Effect>(effect));
}

// An edge beyond every surface: the area reaches the surface's own edge there.
constexpr LONG kBeyondTheSurface = std::numeric_limits<LONG>::max();

// The image rectangle's rows across the whole width of the surface. The surface is
// white outside the image rectangle after every refill, so exchanging only the
// rectangle's columns would show the same picture in most layouts; but when a
// surface's new bitmap cannot be made the old one stays, pixels of an earlier layout
// and all, and those are turned over with the rows as a 24-bit buffer's whole rows
// would be. The picture filling the surface, it costs nothing more.
RECT FullWidthRows(const RECT& image) { return RECT{0, image.top, kBeyondTheSurface, image.bottom}; }

// The image rectangle's columns from its top edge to the bottom of the surface: the
// line patterns run on below the picture.
RECT DownToTheBottom(const RECT& image) {
  return RECT{image.left, image.top, image.right, kBeyondTheSurface};
}

// A new bitmap compatible with `dc` holding `bitmap` turned a quarter; null (and
// `bitmap` untouched) when the new bitmap or either buffer cannot be had.
platform::OwnedBitmap TurnedBitmap(CImageEditWnd& editor, HDC dc, HBITMAP bitmap, int angle) {
  const PixelBuffer source = editor.ReadSurfacePixels(dc, bitmap);
  if (!source) return platform::OwnedBitmap();
  platform::OwnedBitmap turned(CreateCompatibleBitmap(dc, source.height(), source.width()));
  if (!turned) return turned;
  // The new bitmap's pixels are all about to be written: a buffer of its size will do,
  // without reading them first.
  PixelBuffer pixels(source.height(), source.width());
  if (!pixels) {
    editor.m_messages.ReportOutOfMemory();
    return platform::OwnedBitmap();
  }
  RotateQuarter(source.Whole(), angle, pixels.Whole());
  editor.WriteSurfacePixels(dc, turned.get(), std::move(pixels));
  return turned;
}

// A point of the picture as fractions of the displayed width and height from the
// image rectangle's left-top corner.
struct PicturePoint {
  double u, v;

  // Where a quarter turn of the picture takes it.
  PicturePoint Turned(bool counterClockwise) const {
    return counterClockwise ? PicturePoint{v, 1.0 - u} : PicturePoint{1.0 - v, u};
  }
};

// The point of the picture under an inserted object's centre; a centre beyond the
// picture counts from the picture's nearest edge. Worked in doubles: an object may
// lie anywhere an int reaches, and its centre beyond that.
PicturePoint PictureUnder(const CInsertedObject& object, const ViewPlacement& view) {
  const double centreX = static_cast<double>(object.x) + object.width / 2 + view.hScrollPos();
  const double centreY = static_cast<double>(object.y) + object.height / 2 + view.vScrollPos();
  const RECT& image = view.imageRect();
  const auto fraction = [](double offset, int length) {
    return length > 0 ? std::clamp(offset / length, 0.0, 1.0) : 0.5;
  };
  return PicturePoint{fraction(centreX - image.left, view.displayedWidth()),
                      fraction(centreY - image.top, view.displayedHeight())};
}

// Puts an inserted object's centre over that point of the picture as the view now
// shows it.
void CentreOver(CInsertedObject& object, PicturePoint point, const ViewPlacement& view) {
  const RECT image = view.ToWindow(view.imageRect());
  object.x = image.left + static_cast<int>(std::lround(point.u * view.displayedWidth())) - object.width / 2;
  object.y = image.top + static_cast<int>(std::lround(point.v * view.displayedHeight())) - object.height / 2;
}

}  // namespace

void CImageEditWnd::FlipImage() {
  RunSurfaceEffect(*this, FullWidthRows(m_view.imageRect()),
                   [this](const PixelRows& rows) { FlipRows(rows, m_messages.OutOfMemoryReporter()); });
}

void CImageEditWnd::ReverseImage() {
  RunSurfaceEffect(*this, m_view.imageRect(), [](const PixelRows& rows) { MirrorRows(rows); });
}

void CImageEditWnd::EmbossImage() {
  RunSurfaceEffect(*this, m_view.imageRect(),
                   [this](const PixelRows& rows) { EmbossPixels(rows, m_messages.OutOfMemoryReporter()); });
}

void CImageEditWnd::EqualizeHistogram() {
  RunSurfaceEffect(*this, m_view.imageRect(), [](const PixelRows& rows) { EqualizePixels(rows); });
}

void CImageEditWnd::CheckImage() {
  RunSurfaceEffect(*this, DownToTheBottom(m_view.imageRect()),
                   [](const PixelRows& rows) { DrawCheckLines(rows); });
}

void CImageEditWnd::BlockImage() {
  const RECT image = m_view.imageRect();
  RunSurfaceEffect(*this, DownToTheBottom(image),
                   [&image](const PixelRows& rows) { DrawBlockGrooves(rows, image); });
}

// The second picture is only loaded, to check that it can be, and the factor kept
// with the settings (and so in the history); no pixels are combined with it yet. The
// surface is still written back, shown and recorded whether or not it loaded.
void CImageEditWnd::BlendImage(LPCSTR lpszFilePath, int nAlpha) {
  CloseTextEntry();
  if (!m_surfaces.imageSurface.dc()) return;
  const int alpha = std::clamp(nAlpha, 0, 200);
  const platform::OwnedBitmap blended(imageio::LoadImage(lpszFilePath, m_messages.LoadContext(m_hWnd)));
  if (blended) m_settings.blend = alpha * 0.01;
  RewriteImageSurface(*this, m_view.imageRect(), [](const PixelRows&) {});
}

// No pattern is drawn: the operation marks a history level.
void CImageEditWnd::WaterDropImage() {
  CloseTextEntry();
  if (m_surfaces.imageSurface.dc()) CommitHistoryLevel(nullptr, 0, 0);
}

// A quarter turn of the picture: the original itself is replaced by its turned copy,
// so the turn outlasts every rebuild; no history level is recorded, and undo does not
// turn it back. Turning by 90 and then by -90 gives back the very same pixels.
//
// The strokes of the drawing layer turn with the picture: the layer is replaced by its
// turned copy, and the image rectangle is turned with it, so that the refit of the
// layer onto the new layout starts from where the turned picture now lies and each
// stroke stays on the feature it was drawn over. They turn only together with the
// picture: without a picture, or when it cannot be turned, they stay as they are; when
// the picture turns but the layer cannot, the layer is refitted unturned.
//
// Inserted objects are upright overlays in window coordinates (a balloon's text, an
// icon), so they are not turned: each keeps its size and its upright look, and its
// centre moves to where the turn takes the point of the picture under it (a centre
// beyond the picture counts from the picture's nearest edge), in the new layout. So an
// icon placed on a feature stays on it, and every object still lies on the picture.
void CImageEditWnd::RotateImage(int nDegree) {
  CloseTextEntry();
  if (nDegree != 90 && nDegree != -90) return;
  Surface& layer = m_surfaces.drawingLayer;
  HDC composition = m_surfaces.composition.dc();
  if (!composition || !layer.dc()) return;
  const bool counterClockwise = nDegree == 90;

  platform::OwnedBitmap original;
  if (m_surfaces.original) original = TurnedBitmap(*this, composition, m_surfaces.original.get(), nDegree);
  std::vector<std::pair<int, PicturePoint>> objects;
  if (original) {
    m_surfaces.original = std::move(original);
    std::swap(m_view.originalWidth, m_view.originalHeight);
    for (const int slot : m_objects.FrontToBack())
      objects.emplace_back(slot, PictureUnder(m_objects.Object(slot), m_view).Turned(counterClockwise));
    if (platform::OwnedBitmap strokes = TurnedBitmap(*this, layer.dc(), layer.bitmap(), nDegree)) {
      const int width = layer.width();
      const int height = layer.height();
      layer.Adopt(std::move(strokes), height, width);
      m_view.TurnQuarter(counterClockwise, width, height);
    }
  }

  SetImageWidth(m_view.requestedImageWidth >= 1 ? m_view.requestedImageWidth : -100);
  if (objects.empty()) return;
  for (const auto& [slot, point] : objects) CentreOver(m_objects.Object(slot), point, m_view);
  RedrawWindow();
}
