// The editor's twenty cursors: array position -> resource id and hot spot. Every
// cursor is 32 x 32 pixels.
#pragma once

#include "platform/types.h"

inline constexpr int kCursorCount = 20;

struct CursorResource {
  int resourceId;
  int hotX;
  int hotY;
};

inline constexpr CursorResource kCursorTable[kCursorCount] = {
    {215, 15, 8},  {216, 14, 9},  {217, 15, 8},  {218, 14, 9}, {219, 15, 15}, {214, 9, 21},  {205, 10, 22},
    {203, 15, 15}, {201, 11, 22}, {202, 15, 23}, {211, 3, 2},  {210, 3, 2},   {204, 15, 15}, {206, 3, 2},
    {207, 3, 2},   {208, 3, 2},   {209, 3, 2},   {213, 3, 2},  {212, 3, 2},   {220, 0, 0},
};

// Makes the module's resources (the cursors) known to the platform; runs once.
void RegisterModuleResources();
