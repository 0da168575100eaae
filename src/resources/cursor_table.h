// The editor's twenty cursors: array position -> resource id and hot spot. Every
// cursor is 32 x 32 pixels.
#pragma once

#include "platform/types.h"

// The cursor resource ids, named after their pictures in cursors/ (201-pencil.txt ...).
inline constexpr int kPencilCursor = 201;
inline constexpr int kPaintBrushCursor = 202;
inline constexpr int kEraserCursor = 203;
inline constexpr int kCrossHairCursor = 204;
inline constexpr int kPaintBucketCursor = 205;
inline constexpr int kArrowLineCursor = 206;
inline constexpr int kArrowCurveCursor = 207;
inline constexpr int kArrowRectangleCursor = 208;
inline constexpr int kArrowEllipseCursor = 209;
inline constexpr int kArrowTiledSquareCursor = 210;
inline constexpr int kArrowSprayCursor = 211;
inline constexpr int kArrowSelectionCursor = 212;
inline constexpr int kArrowTextCursor = 213;
inline constexpr int kEyedropperCursor = 214;
inline constexpr int kOpenHandPanCursor = 215;
inline constexpr int kClosedHandPanCursor = 216;
inline constexpr int kOpenHandMoveCursor = 217;
inline constexpr int kClosedHandMoveCursor = 218;
inline constexpr int kFourWayArrowsCursor = 219;
inline constexpr int kArrowGridCursor = 220;

inline constexpr int kCursorCount = 20;

struct CursorResource {
  int resourceId;
  int hotX;
  int hotY;
};

inline constexpr CursorResource kCursorTable[kCursorCount] = {
    {kOpenHandPanCursor, 15, 8},    {kClosedHandPanCursor, 14, 9},  {kOpenHandMoveCursor, 15, 8},
    {kClosedHandMoveCursor, 14, 9}, {kFourWayArrowsCursor, 15, 15}, {kEyedropperCursor, 9, 21},
    {kPaintBucketCursor, 10, 22},   {kEraserCursor, 15, 15},        {kPencilCursor, 11, 22},
    {kPaintBrushCursor, 15, 23},    {kArrowSprayCursor, 3, 2},      {kArrowTiledSquareCursor, 3, 2},
    {kCrossHairCursor, 15, 15},     {kArrowLineCursor, 3, 2},       {kArrowCurveCursor, 3, 2},
    {kArrowRectangleCursor, 3, 2},  {kArrowEllipseCursor, 3, 2},    {kArrowTextCursor, 3, 2},
    {kArrowSelectionCursor, 3, 2},  {kArrowGridCursor, 0, 0},
};
