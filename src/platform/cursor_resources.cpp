// The module's cursor resources: the ids the program ships and their hot spots.
#include <map>

#include "platform/user.h"
#include "platform/user_internal.h"

namespace {

std::map<int, POINT>& Resources() {
  static std::map<int, POINT> resources;
  return resources;
}

}  // namespace

namespace platform {

void RegisterCursorResource(int id, int hotX, int hotY) { Resources()[id] = POINT{hotX, hotY}; }

// The cursors' pictures are not drawn yet: every id has none, and hosts fall back to
// their own arrow.
bool GetCursorArtwork(int /*resourceId*/, CursorArtwork* /*artwork*/) { return false; }

namespace user {

bool FindCursorResource(int id, POINT* hotSpot) {
  auto it = Resources().find(id);
  if (it == Resources().end()) return false;
  *hotSpot = it->second;
  return true;
}

}  // namespace user
}  // namespace platform
