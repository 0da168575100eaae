#include "platform/host.h"

namespace platform {
namespace {

Host*& InstalledHost() {
  static Host* host = nullptr;
  return host;
}

}  // namespace

void SetHost(Host* host) { InstalledHost() = host; }

Host& CurrentHost() {
  static Host silent;
  Host* host = InstalledHost();
  return host == nullptr ? silent : *host;
}

}  // namespace platform
