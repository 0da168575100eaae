// The commands of the inserted objects' shortcut menu, with the texts the menu shows
// them by in the user's language.
#pragma once

#include "platform/platform.h"
#include "resources/localized_text.h"

enum ObjectCommand : UINT {
  kObjectReverse = 0x8000,
  kObjectZOrder = 0x8001,  // opens the submenu; choosing it does nothing
  kObjectOriginal = 0x8002,
  kObjectDelete = 0x8003,
  kObjectTopmost = 0x8004,
  kObjectAbove = 0x8005,
  kObjectBelow = 0x8006,
  kObjectBottommost = 0x8007,
};

inline constexpr UINT kFirstObjectCommand = kObjectReverse;
inline constexpr UINT kLastObjectCommand = kObjectBottommost;

struct ObjectMenuItem {
  ObjectCommand command;
  LocalizedText text;
};

// The popup menu, top to bottom; "Z Order" carries the submenu.
inline constexpr ObjectMenuItem kObjectMenuItems[] = {
    {kObjectReverse, {"좌우 전환", "左右翻转", "Reverse"}},
    {kObjectZOrder, {"순서 정렬", "叠放次序", "Z Order"}},
    {kObjectOriginal, {"원래 크기", "原始大小", "Original"}},
    {kObjectDelete, {"삭제", "删除", "Delete"}},
};

inline constexpr ObjectMenuItem kZOrderMenuItems[] = {
    {kObjectTopmost, {"제일위로", "置于顶层", "Topmost"}},
    {kObjectAbove, {"한단계위", "上移一层", "Above"}},
    {kObjectBelow, {"한단계아래", "下移一层", "Below"}},
    {kObjectBottommost, {"제일아래", "置于底层", "Bottommost"}},
};
