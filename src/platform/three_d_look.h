// The classic three-dimensional look USER draws its scroll bars and dialogs in: a
// raised button of face colour with a light outer and white inner edge at the top
// left, grey and dark grey at the bottom right.
#pragma once

#include "platform/types.h"

namespace platform::three_d {

inline constexpr COLORREF kFace = RGB(0xF0, 0xF0, 0xF0);
inline constexpr COLORREF kLight = RGB(0xE3, 0xE3, 0xE3);
inline constexpr COLORREF kHighlight = RGB(0xFF, 0xFF, 0xFF);
inline constexpr COLORREF kShadow = RGB(0xA0, 0xA0, 0xA0);
inline constexpr COLORREF kDarkShadow = RGB(0x69, 0x69, 0x69);

// Fills the rectangle (nothing when it is empty) with a solid colour.
void Fill(HDC dc, const RECT& r, COLORREF color);
// A raised button filling the rectangle: its two edges and the face inside them.
void DrawRaisedButton(HDC dc, const RECT& r);

}  // namespace platform::three_d
