// The module's cursor resources: the ids the program ships, their pictures and hot spots.
#include <map>
#include <utility>

#include "platform/user.h"
#include "platform/user_internal.h"

namespace {

std::map<int, platform::CursorArtwork>& Resources() {
  static std::map<int, platform::CursorArtwork> resources;
  return resources;
}

}  // namespace

namespace platform {

void RegisterCursorResource(int id, CursorArtwork artwork) { Resources()[id] = std::move(artwork); }

bool GetCursorArtwork(int resourceId, CursorArtwork* artwork) {
  auto it = Resources().find(resourceId);
  if (it == Resources().end() || it->second.pixels.empty()) return false;
  if (artwork) *artwork = it->second;
  return true;
}

namespace user {

bool FindCursorResource(int id, POINT* hotSpot) {
  auto it = Resources().find(id);
  if (it == Resources().end()) return false;
  *hotSpot = it->second.hotSpot;
  return true;
}

}  // namespace user
}  // namespace platform
