#include "platform/platform.h"
#include "resources/cursor_table.h"

void RegisterModuleResources() {
  static const bool registered = [] {
    for (const CursorResource& cursor : kCursorTable) {
      platform::RegisterCursorResource(cursor.resourceId, cursor.hotX, cursor.hotY);
    }
    return true;
  }();
  (void)registered;
}
