#include "editor/surfaces.h"

#include <utility>

void Surface::Create(HDC windowDC) {
  dc_ = platform::MemoryDC(windowDC);
  if (!dc_) return;
  bitmap_ = platform::OwnedBitmap(CreateCompatibleBitmap(windowDC, 1, 1));
  if (bitmap_) dc_.Show(bitmap_.get());
}

bool Surface::Recreate(int width, int height) {
  rect_ = RECT{0, 0, width, height};
  platform::OwnedBitmap bitmap(CreateCompatibleBitmap(dc(), width, height));
  if (!bitmap) return false;
  Adopt(std::move(bitmap), width, height);
  return true;
}

void Surface::Adopt(platform::OwnedBitmap bitmap, int width, int height) {
  if (bitmap_) dc_.ShowOriginal();
  bitmap_ = std::move(bitmap);
  rect_ = RECT{0, 0, width, height};
  dc_.Show(bitmap_.get());
}

void Surface::Release() {
  dc_ = platform::MemoryDC();
  bitmap_.reset();
}

void EditorSurfaces::Create(HDC windowDC) {
  for (Surface* surface : {&composition, &drawingLayer, &imageSurface}) surface->Create(windowDC);
  if (imageSurface.dc()) SetStretchBltMode(imageSurface.dc(), HALFTONE);
  snapshotDC = platform::MemoryDC(windowDC);
}

void EditorSurfaces::RestoreFromSnapshot(const RECT& area) {
  BitBlt(drawingLayer.dc(), area.left, area.top, area.right - area.left, area.bottom - area.top,
         snapshotDC.get(), area.left, area.top, SRCCOPY);
}

void EditorSurfaces::CopyLayerToSnapshot() {
  BitBlt(snapshotDC.get(), 0, 0, drawingLayer.width(), drawingLayer.height(), drawingLayer.dc(), 0, 0,
         SRCCOPY);
}
