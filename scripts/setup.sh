#!/usr/bin/env bash
# Installs what the build, the tests and the demo need on a fresh Debian machine.
# Safe to run again: it only installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  cmake ninja-build g++ clang clang-14 libclang-rt-14-dev pkg-config zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libjpeg-dev libpng-dev libgif-dev libcurl4-openssl-dev
  libfontconfig-dev libfreetype-dev fonts-liberation fonts-noto-cjk
  python3 python3-pil
  emscripten chromium
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -gt 0 ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  echo "setup: installing ${missing[*]}"
  $sudo_cmd apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# The browser tests drive Chromium through playwright-core, pinned in package-lock.json.
if [ ! -d node_modules/playwright-core ] || [ package-lock.json -nt node_modules/.package-lock.json ]; then
  npm ci --no-audit --no-fund --loglevel=error
fi
