// Popup menus: items with ids, texts, states and submenus; a host shows them.
#include <algorithm>
#include <map>
#include <vector>

#include "platform/host.h"
#include "platform/user.h"
#include "platform/user_internal.h"

namespace {

struct Item {
  UINT type = MFT_STRING;
  UINT state = 0;
  UINT id = 0;
  HMENU submenu = nullptr;
  std::string text;
};

struct Menus {
  std::map<std::uintptr_t, std::vector<Item>> live;
  std::uintptr_t nextHandle = 0x20000;
};

Menus& TheMenus() {
  static Menus menus;
  return menus;
}

std::vector<Item>* Find(HMENU menu) {
  auto& live = TheMenus().live;
  auto it = live.find(reinterpret_cast<std::uintptr_t>(menu));
  return it == live.end() ? nullptr : &it->second;
}

// An item by position, or by command id searched through the submenus as Windows does.
Item* FindItem(HMENU menu, UINT item, bool byPosition) {
  std::vector<Item>* items = Find(menu);
  if (items == nullptr) return nullptr;
  if (byPosition) return item < items->size() ? &(*items)[item] : nullptr;
  for (Item& candidate : *items) {
    if (candidate.submenu != nullptr) {
      if (Item* inner = FindItem(candidate.submenu, item, false)) return inner;
    } else if (candidate.id == item && candidate.type != MFT_SEPARATOR) {
      return &candidate;
    }
  }
  return nullptr;
}

// Whether a command the host answered is an enabled item of the menu.
bool IsChoosable(HMENU menu, UINT id) {
  const Item* item = FindItem(menu, id, false);
  return item != nullptr && (item->state & MFS_GRAYED) == 0;
}

}  // namespace

HMENU CreatePopupMenu() {
  Menus& menus = TheMenus();
  std::uintptr_t key = menus.nextHandle;
  menus.nextHandle += 4;
  menus.live[key] = {};
  return reinterpret_cast<HMENU>(key);
}

BOOL DestroyMenu(HMENU menu) {
  std::vector<Item>* items = Find(menu);
  if (items == nullptr) return FALSE;
  std::vector<Item> owned = std::move(*items);
  TheMenus().live.erase(reinterpret_cast<std::uintptr_t>(menu));
  for (const Item& item : owned) {
    if (item.submenu != nullptr) DestroyMenu(item.submenu);
  }
  return TRUE;
}

BOOL InsertMenuItemA(HMENU menu, UINT item, BOOL byPosition, const MENUITEMINFOA* info) {
  std::vector<Item>* items = Find(menu);
  if (items == nullptr || info == nullptr) return FALSE;
  Item added;
  if (info->fMask & MIIM_TYPE) {
    added.type = info->fType;
    if (info->fType == MFT_STRING && info->dwTypeData != nullptr) added.text = info->dwTypeData;
  }
  if (info->fMask & MIIM_STATE) added.state = info->fState;
  if (info->fMask & MIIM_ID) added.id = info->wID;
  if (info->fMask & MIIM_SUBMENU) {
    if (info->hSubMenu != nullptr && (Find(info->hSubMenu) == nullptr || info->hSubMenu == menu))
      return FALSE;
    added.submenu = info->hSubMenu;
  }
  // Before the item at that position (or with that command); at the end otherwise.
  auto where = items->end();
  if (byPosition) {
    if (item < items->size()) where = items->begin() + item;
  } else {
    where = std::find_if(items->begin(), items->end(), [item](const Item& i) { return i.id == item; });
  }
  items->insert(where, std::move(added));
  return TRUE;
}

BOOL AppendMenuA(HMENU menu, UINT flags, UINT_PTR id, LPCSTR text) {
  MENUITEMINFOA info{};
  info.fMask = MIIM_TYPE | MIIM_STATE;
  info.fType = (flags & MF_SEPARATOR) ? MFT_SEPARATOR : MFT_STRING;
  info.fState = (flags & (MF_GRAYED | MF_DISABLED)) | (flags & MF_CHECKED);
  info.dwTypeData = const_cast<LPSTR>(text);
  if (flags & MF_POPUP) {
    info.fMask |= MIIM_SUBMENU;
    info.hSubMenu = reinterpret_cast<HMENU>(id);
  } else {
    info.fMask |= MIIM_ID;
    info.wID = static_cast<UINT>(id);
  }
  std::vector<Item>* items = Find(menu);
  return items == nullptr ? FALSE : InsertMenuItemA(menu, static_cast<UINT>(items->size()), TRUE, &info);
}

namespace {

// Sets the item's `bit` of its state from `flags` (which also say whether the item is
// named by position) and returns the bit's previous value; -1 without such an item.
UINT ChangeItemState(HMENU menu, UINT item, UINT flags, UINT bit) {
  Item* found = FindItem(menu, item, (flags & MF_BYPOSITION) != 0);
  if (found == nullptr) return static_cast<UINT>(-1);
  const UINT previous = found->state & bit;
  found->state = (found->state & ~bit) | (flags & bit);
  return previous;
}

}  // namespace

UINT EnableMenuItem(HMENU menu, UINT item, UINT enable) {
  return ChangeItemState(menu, item, enable, MFS_GRAYED);
}

DWORD CheckMenuItem(HMENU menu, UINT item, UINT check) {
  return ChangeItemState(menu, item, check, MFS_CHECKED);
}

int GetMenuItemCount(HMENU menu) {
  std::vector<Item>* items = Find(menu);
  return items == nullptr ? -1 : static_cast<int>(items->size());
}

BOOL TrackPopupMenu(HMENU menu, UINT flags, int x, int y, int /*reserved*/, HWND owner,
                    const RECT* /*rect*/) {
  if (Find(menu) == nullptr || !IsWindow(owner)) return FALSE;
  // The owner may bring the items up to date before they are shown.
  SendMessageA(owner, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), MAKELPARAM(0, FALSE));
  UINT chosen = platform::CurrentHost().ShowPopupMenu(menu, x, y);
  // A dismissed menu, or an answer naming no enabled item, chooses nothing.
  if (chosen != 0 && !IsChoosable(menu, chosen)) chosen = 0;
  if (flags & TPM_RETURNCMD) return static_cast<BOOL>(chosen);
  if (chosen != 0) SendMessageA(owner, WM_COMMAND, chosen & 0xFFFF, 0);
  return TRUE;
}

namespace platform {

std::vector<MenuItem> MenuItems(HMENU menu) {
  std::vector<MenuItem> result;
  std::vector<Item>* items = Find(menu);
  if (items == nullptr) return result;
  for (const Item& item : *items) {
    result.push_back(MenuItem{item.text, item.id, item.type == MFT_SEPARATOR, (item.state & MFS_GRAYED) != 0,
                              (item.state & MFS_CHECKED) != 0, item.submenu});
  }
  return result;
}

namespace user {

int LiveMenus() { return static_cast<int>(TheMenus().live.size()); }

}  // namespace user
}  // namespace platform
