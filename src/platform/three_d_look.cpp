#include "platform/three_d_look.h"

#include "platform/gdi.h"

namespace platform::three_d {

void Fill(HDC dc, const RECT& r, COLORREF color) {
  if (r.right <= r.left || r.bottom <= r.top) return;
  HBRUSH brush = CreateSolidBrush(color);
  FillRect(dc, &r, brush);
  DeleteObject(brush);
}

void DrawRaisedButton(HDC dc, const RECT& r) {
  Fill(dc, r, kDarkShadow);
  Fill(dc, RECT{r.left, r.top, r.right - 1, r.bottom - 1}, kLight);
  Fill(dc, RECT{r.left + 1, r.top + 1, r.right - 1, r.bottom - 1}, kShadow);
  Fill(dc, RECT{r.left + 1, r.top + 1, r.right - 2, r.bottom - 2}, kHighlight);
  Fill(dc, RECT{r.left + 2, r.top + 2, r.right - 2, r.bottom - 2}, kFace);
}

}  // namespace platform::three_d
