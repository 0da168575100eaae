// Owners for the USER and kernel handles the engine keeps: menus, cursors and loaded
// modules, each given back once when its owner goes.
#pragma once

#include "platform/kernel.h"
#include "platform/owned_handle.h"
#include "platform/user.h"

namespace platform {

using OwnedMenu = OwnedHandle<HMENU, &DestroyMenu>;
using OwnedCursor = OwnedHandle<HCURSOR, &DestroyCursor>;
using OwnedModule = OwnedHandle<HMODULE, &FreeLibrary>;

}  // namespace platform
