#!/usr/bin/env bash
# Installs what the build, the tests and the demo need on a fresh Debian machine.
# Safe to run again: it only installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

packages=(
  cmake ninja-build g++ clang clang-14 libclang-rt-14-dev pkg-config zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libjpeg-dev libpng-dev libgif-dev libcurl4-openssl-dev
  libfontconfig-dev libfreetype-dev fonts-liberation fonts-noto-cjk dpkg-dev fonttools
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

# The web build compiles FreeType from Debian's source package of the very version
# the native build links, so that glyphs are hinted alike in both; it is fetched once
# into build/third_party/ (apt-get source needs a deb-src entry for the Debian mirror).
freetype_version=$(dpkg-query -W -f='${source:Version}' libfreetype6)
freetype_dir=build/third_party/freetype-$freetype_version
if [ ! -f "$freetype_dir/CMakeLists.txt" ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  if ! grep -rqsE '^(Types:.*deb-src|deb-src )' /etc/apt/sources.list /etc/apt/sources.list.d/; then
    echo "setup: adding deb-src entries for the Debian mirror"
    # The Debian archive's and its security archive's entries, as deb822 stanzas and
    # as one-line entries, each kind into a file of its own kind.
    stanzas=$(awk 'BEGIN { RS = ""; ORS = "\n\n" }
                   /\nURIs:[^\n]*\/debian(-security)?\/?(\n|$)/ && /(^|\n)Types:[^\n]*deb/ {
                     sub(/Types:[^\n]*/, "Types: deb-src"); print }' /etc/apt/sources.list.d/*.sources 2>/dev/null || true)
    lines=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/*.list 2>/dev/null |
            sed -nE 's#^deb (\[[^]]*\] )?(\S+/debian(-security)?/?) #deb-src \1\2 #p' || true)
    [ -n "$stanzas" ] && echo "$stanzas" | $sudo_cmd tee /etc/apt/sources.list.d/imageedit-deb-src.sources >/dev/null
    [ -n "$lines" ] && echo "$lines" | $sudo_cmd tee /etc/apt/sources.list.d/imageedit-deb-src.list >/dev/null
    $sudo_cmd apt-get update -qq
  fi
  mkdir -p build/third_party
  fetch=$(mktemp -d build/freetype-source.XXXXXX)
  if ! (cd "$fetch" && apt-get source -qq "freetype=$freetype_version" >/dev/null); then
    echo "setup: cannot fetch the source of freetype $freetype_version; upgrade libfreetype6 to the mirror's version" >&2
    exit 1
  fi
  rm -rf "$freetype_dir"
  mv "$fetch"/freetype-*/ "$freetype_dir"
  rm -rf "$fetch"
fi

# The browser tests drive Chromium through playwright-core, pinned in package-lock.json.
if [ ! -d node_modules/playwright-core ] || [ package-lock.json -nt node_modules/.package-lock.json ]; then
  npm ci --no-audit --no-fund --loglevel=error
fi
